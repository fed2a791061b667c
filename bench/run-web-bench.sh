#!/usr/bin/env bash
# Remote control over the web: the real program (offscreen, its windows drawn in software) with
# a show of 200 one-hour cues and the web server on, measured by bench/web-bench.py on loopback.
# Goals: a command over HTTP reaches the first viewer in 1 ms at the median and 5 ms at p99; a
# viewer gets at most 50 bytes a second while a cue runs (pings aside); 100 viewers cost the
# program at most 0.5 % of a core more than none.
# Usage: bench/run-web-bench.sh [SECONDS]   (each viewer phase lasts SECONDS, default 30)
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
source "$here/tests/support/scratch.sh"

code=B3NCH2K7
source "$here/tests/support/web-sandbox.sh"
web_sandbox "$dir" "$code"
python3 -c 'import json; print(json.dumps({"name": "Banc", "cues": [{"name": f"Cue {i}", "duration": 3600} for i in range(1, 201)]}))' > "$dir/show.orvprjct"

KAIRON_STARTUP_TRACE=1 "$here/build/src/app/kairon" "$dir/show.orvprjct" 2> "$dir/trace" &
pids+=($!)
wait_for_web "$dir/trace"
sleep 2 # the splash gone, the operator window settled
/usr/bin/python3 "$here/bench/web-bench.py" "$port" "$code" "${pids[0]}" "${1:-30}"
