#!/usr/bin/env bash
# Remote control over the web: the real program (offscreen, its windows drawn in software) with
# a one-hour cue and the web server on, measured by bench/web-bench.py on loopback.
# Usage: bench/run-web-bench.sh [SECONDS]   (the 100-viewer phase lasts SECONDS, default 30)
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
source "$here/tests/support/scratch.sh"

code=B3NCH2K7
source "$here/tests/support/web-sandbox.sh"
web_sandbox "$dir" "$code"
echo '{"name": "Banc", "cues": [{"name": "Longue", "duration": 3600}]}' > "$dir/show.orvprjct"

KAIRON_STARTUP_TRACE=1 "$here/build/src/app/kairon" "$dir/show.orvprjct" 2> "$dir/trace" &
pids+=($!)
wait_for_web "$dir/trace"
sleep 2 # the splash gone, the operator window settled
/usr/bin/python3 "$here/bench/web-bench.py" "$port" "$code" "${pids[0]}" "${1:-30}"
