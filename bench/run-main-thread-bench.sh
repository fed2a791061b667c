#!/usr/bin/env bash
# How long the real program's main thread, where the engine ticks, stays busy at a stretch while a
# cue runs through its warning, danger and zero with the stage and confidence windows open: the
# program on a private X server and sound server, its main thread alone traced by strace from
# just before "play". A busy stretch is the time between two of its system calls; the longest
# ones are printed with the instant they began, from "play". The cue: 10 s, warning at 7 s left
# (3 s after play), danger at 4 s left (6 s), zero at 10 s.
# Usage: bench/run-main-thread-bench.sh [KAIRON_BINARY]
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
kairon=$(realpath "${1:-$here/build/src/app/kairon}")
if [[ -z ${KAIRON_BENCH_INSIDE:-} ]]; then
    export KAIRON_BENCH_INSIDE=1
    exec "$here/tests/support/with-xvfb.sh" "$here/tests/audio/with-pulseaudio.sh" "$0" "$kairon"
fi
source "$here/tests/support/scratch.sh"
source "$here/tests/support/web-sandbox.sh"
web_sandbox "$dir" K7M2P9QX
export QT_QPA_PLATFORM=xcb
unset QT_QUICK_BACKEND
printf '{"name": "Gala", "cues": [{"name": "Ouverture", "duration": 10, "warningThreshold": 7, "dangerThreshold": 4}]}' \
    > "$dir/gala.orvprjct"
start_kairon "$kairon" "$dir/gala.orvprjct"
# "Stage" and "Confidence" in the console's top bar, at its first size.
console=$(xdotool search --all --onlyvisible --pid "$kairon_pid" --name '^Kairon$' | head -1)
sleep 1 # placed by the window manager
xdotool mousemove --window "$console" 860 56 click 1
sleep 0.5
xdotool mousemove --window "$console" 1005 56 click 1
for _ in $(seq 100); do
    (($(xdotool search --onlyvisible --name '^Kairon — (Stage|Confidence)$' | wc -l) == 2)) && break
    sleep 0.1
done
sleep 1 # their first frames
echo "open: $(xdotool search --onlyvisible --name '^Kairon' getwindowname %@ | tr '\n' ' ')"

strace -tt -T -o "$dir/strace" -p "$kairon_pid" 2>/dev/null &
tracer=$!
sleep 1
played=$(date +%s.%N)
post play
sleep 11
kill "$tracer"
wait "$tracer" || true
python3 - "$dir/strace" "$played" <<'PY'
import datetime, re, sys
path, played = sys.argv[1], float(sys.argv[2])
day = datetime.datetime.fromtimestamp(played, datetime.timezone.utc)
played_in_day = day.hour * 3600 + day.minute * 60 + day.second + day.microsecond / 1e6
calls = []  # (start, end) of each system call, in seconds of the day
for line in open(path):
    m = re.match(r"(\d+):(\d+):([\d.]+) .*<([\d.]+)>\s*$", line)
    if m:
        start = int(m[1]) * 3600 + int(m[2]) * 60 + float(m[3])
        calls.append((start, start + float(m[4])))
busy = sorted(((b[0] - a[1], a[1] - played_in_day) for a, b in zip(calls, calls[1:])), reverse=True)
after = [b for b in busy if b[1] >= 0]
print(f"{len(calls)} system calls of the main thread traced")
print("longest busy stretches after play: " + ", ".join(f"{d * 1000:.1f} ms at {t:.2f} s" for d, t in after[:6]))
print(f"longest in the warning's second (3 to 4 s): {max([d for d, t in after if 3 <= t < 4] or [0]) * 1000:.1f} ms")
PY
