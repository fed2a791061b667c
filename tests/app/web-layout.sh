#!/usr/bin/env bash
# The web stage and confidence pages at a phone's sizes and the operators' screens, in Debian's
# headless chromium (tests/app/web-layout.py over tests/app/cdp.py): with one to three lines of
# message the stage's banner stays 60 above the bottom edge and the digits and the bar stay
# whole above it; the confidence page shows a long message whole and its time whole, and, the
# show having a start time 5 min 40 s ago, how it runs against its timetable under the clock.
# Usage: web-layout.sh KAIRON_BINARY
set -euo pipefail
kairon=$1
here=$(cd "$(dirname "$0")" && pwd)
source "$here/../support/scratch.sh"

code=K7M2P9QX
source "$here/../support/web-sandbox.sh"
web_sandbox "$dir" "$code"
# Its first cue begun within 50 s, the show is between 5 min 40 s and 6 min 30 s late:
# "Programme : +6 min de retard".
show_start=$(( $(date +%s) - 340 ))
cat > "$dir/show.orvprjct" <<JSON
{"name": "Gala", "scheduledStart": "$(date -u -d "@$show_start" +%Y-%m-%dT%H:%M:%SZ)",
 "cues": [{"name": "Keynote", "speaker": "Claire Martin", "duration": 600},
 {"name": "Table ronde", "speaker": "Invités", "duration": 1200}]}
JSON

KAIRON_STARTUP_TRACE=1 "$kairon" "$dir/show.orvprjct" 2> "$dir/trace" &
pids+=($!)
wait_for_web "$dir/trace"

/usr/bin/python3 "$here/web-layout.py" "$port" "$code" "$dir" "$((show_start * 1000))"
