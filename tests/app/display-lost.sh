#!/usr/bin/env bash
# The X server gone in the middle of a cue, as when the display server crashes: the program ends
# at once with status 1, without a crash, and its next launch takes the show up where its clock
# is. The server is a private Xvfb of this script's own, stopped under the program's feet. The
# show was opened from a file outside the library that does not write its id, and never saved:
# the next launch, from the desktop, names no file and still finds it.
# Usage: display-lost.sh KAIRON_BINARY
set -euo pipefail
kairon=$1
here=$(cd "$(dirname "$0")" && pwd)
source "$here/../support/scratch.sh"
source "$here/../support/web-sandbox.sh"
web_sandbox "$dir" K7M2P9QX
printf '{"name": "Gala", "cues": [{"name": "Ouverture", "duration": 600}, {"name": "Débat", "duration": 900}]}' \
    > "$dir/gala.orvprjct"
# The engine's state over the web, with the instant the program read its clock (not the instant
# the answer arrived, which a busy program can delay): "cue running paused remaining instant".
state() {
    curl -s "$base/api/state" | python3 -c '
import json, sys
s = json.load(sys.stdin)
print(s["activeCueIndex"], s["running"], s["paused"], s["remaining"], s["serverTimeMs"] / 1000)'
}

Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp 3>"$dir/display" 2>"$dir/xvfb.log" &
xvfb_pid=$!
pids+=("$xvfb_pid")
for _ in $(seq 200); do [[ -s $dir/display ]] && break; sleep 0.05; done
export DISPLAY=:$(tr -dc 0-9 <"$dir/display") QT_QPA_PLATFORM=xcb
start_kairon "$kairon" "$dir/gala.orvprjct"
post play
post adjust '{"seconds": -60}'
read -r cue running paused remaining read_at < <(state)
[[ "$cue $running $paused" == "0 True False" ]] || fail "the cue did not start: $cue $running $paused"
# The recovery file written with the minute taken off, as it is within moments of each change.
recovery=$HOME/.local/share/Kairon/Kairon/recovery.json
for _ in $(seq 100); do grep -qs '"plannedDuration":540,' "$recovery" && break; sleep 0.05; done
grep -qs '"plannedDuration":540,' "$recovery" || fail "the recovery file never held the running cue"

kill "$xvfb_pid"
status=0
timeout 30 tail --pid="$kairon_pid" -f /dev/null || fail "the program still runs 30 s after its X server went"
wait "$kairon_pid" || status=$?
grep -q "The X11 connection broke" "$dir/trace1" || fail "the program did not see its X server go: $(cat "$dir/trace1")"
((status == 1)) || fail "the program ended with status $status once its X server went, not 1"
! grep -q "Sanitizer" "$dir/trace1" || fail "the program crashed as it ended: $(cat "$dir/trace1")"

# Launched again, without a display and without a file named: the cue runs on from where its
# clock is.
QT_QPA_PLATFORM=offscreen start_kairon "$kairon"
read -r cue2 running2 paused2 remaining2 read_at2 < <(state)
[[ "$cue2 $running2 $paused2" == "0 True False" ]] ||
    fail "the show did not come back running: cue $cue2, running $running2, paused $paused2"
show=$(curl -s "$base/api/state" | python3 -c 'import json, sys; print(json.load(sys.stdin)["sessionName"])')
[[ $show == Gala ]] || fail "the show that came back is \"$show\", not \"Gala\""
python3 -c "import sys; sys.exit(0 if abs($remaining2 - ($remaining - ($read_at2 - $read_at))) < 0.5 else 1)" ||
    fail "the cue came back at $remaining2 s, not at $remaining s less the $(python3 -c "print(round($read_at2 - $read_at, 1))") s since"
echo "remaining $remaining before the X server went, $remaining2 at the next launch $(python3 -c "print(round($read_at2 - $read_at, 1))") s later"
kill -TERM "$kairon_pid"
status=0
wait "$kairon_pid" || status=$?
((status == 0)) || fail "the program ended with status $status on SIGTERM"

((failures == 0)) || exit 1
echo "display-lost: every check passed"
