#!/usr/bin/env bash
# Remote control over the web: the real program (offscreen, its windows drawn in software) with
# a one-hour cue and the web server on, measured by bench/web-bench.py on loopback.
# Usage: bench/run-web-bench.sh [SECONDS]   (the 100-viewer phase lasts SECONDS, default 30)
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
dir=$(mktemp -d)
pid=
trap '[[ -n $pid ]] && kill $pid 2>/dev/null; wait 2>/dev/null; rm -rf "$dir"' EXIT

port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
code=B3NCH2K7
export HOME=$dir/home XDG_CONFIG_HOME=$dir/home/.config XDG_CACHE_HOME=$dir/home/.cache
export XDG_RUNTIME_DIR=$dir/run QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
mkdir -p "$XDG_CONFIG_HOME/Kairon" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
printf '[General]\nwebEnabled=true\nwebPort=%d\nwebAccessCode=%s\nsplashDuration=1\n' \
    "$port" "$code" > "$XDG_CONFIG_HOME/Kairon/Kairon.conf"
echo '{"name": "Banc", "cues": [{"name": "Longue", "duration": 3600}]}' > "$dir/show.orvprjct"

KAIRON_STARTUP_TRACE=1 "$here/build/src/app/kairon" "$dir/show.orvprjct" 2> "$dir/trace" &
pid=$!
for _ in $(seq 250); do
    grep -q "kairon-startup web-listening" "$dir/trace" && break
    sleep 0.02
done
sleep 2 # the splash gone, the operator window settled
/usr/bin/python3 "$here/bench/web-bench.py" "$port" "$code" "$pid" "${1:-30}"
