#!/usr/bin/env bash
# The real program interrupted in the middle of a show and launched again: killed (kill -9) at a
# running cue with the blackout, a message and the stage output on air, at a paused cue, during
# the doors countdown; then a recovery file that cannot be read; then SIGTERM, which saves.
# Driven and observed over the web API, the windows seen on a private X server.
# Usage: with-xvfb.sh recovery.sh KAIRON_BINARY
set -euo pipefail
kairon=$1
here=$(cd "$(dirname "$0")" && pwd)
source "$here/../support/scratch.sh"
source "$here/../support/web-sandbox.sh"
code=K7M2P9QX
web_sandbox "$dir" "$code"
export QT_QPA_PLATFORM=xcb QT_QUICK_BACKEND=software TZ=Europe/Paris
recovery=$XDG_DATA_HOME/Kairon/Kairon/recovery.json
[[ -n ${XDG_DATA_HOME:-} ]] || { recovery=$HOME/.local/share/Kairon/Kairon/recovery.json; }
projects=$HOME/Documents/Kairon/Projets
id=6F1C2B3A-0D4E-4F5A-8B6C-7D8E9FA0B1C2
python3 - "$id" > "$dir/gala.orvprjct" <<'PY'
import json, sys
print(json.dumps({"id": sys.argv[1], "name": "Gala",
                  "cues": [{"name": f"Cue {i}", "duration": 600} for i in range(1, 21)]}))
PY

base=http://127.0.0.1:$port
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
post() { curl -s -o /dev/null -X POST -H "Authorization: Bearer $code" -H 'Content-Type: application/json' --data-binary "${2:-{\}}" "$base/api/$1"; }
field() { curl -s "$base/api/state" | python3 -c "import json,sys; print(json.dumps(json.load(sys.stdin)$1, ensure_ascii=False))"; }
# waits (10 s at most) until the recovery file says what the Python expression on `s` checks
wait_recovery() {
    for _ in $(seq 200); do
        [[ -f $recovery ]] && python3 -c "import json,sys; s=json.load(open('$recovery')); sys.exit(0 if ($1) else 1)" 2>/dev/null && return 0
        sleep 0.05
    done
    fail "the recovery file never showed: $1"; cat "$recovery" 2>/dev/null; echo
}
run=0
launch() {
    run=$((run + 1))
    KAIRON_STARTUP_TRACE=1 "$kairon" "$dir/gala.orvprjct" 2> "$dir/trace$run" &
    kairon_pid=$!
    pids+=("$kairon_pid")
    wait_for_web "$dir/trace$run"
    wait_for_trace "$dir/trace$run" first-frame
}
crash() { kill -9 "$kairon_pid"; wait "$kairon_pid" 2>/dev/null || true; }
stage_shown() { xdotool search --onlyvisible --name 'Kairon — Stage' >/dev/null 2>&1; }
near() { python3 -c "import sys; sys.exit(0 if abs($1 - ($2)) <= $3 else 1)"; }

# 1. A running cue, with the blackout, a message and the stage output on air.
launch
post start '{"index":8}'
post message '{"text":"Plus fort","urgent":true}'
post blackout
# The console's stage output button, at the right of its top bar.
read -r wx wy ww _ < <(xdotool search --onlyvisible --name '^Kairon$' getwindowgeometry --shell | python3 -c '
import sys; d=dict(l.strip().split("=") for l in sys.stdin if "=" in l); print(d["X"], d["Y"], d["WIDTH"], d["HEIGHT"])')
xdotool mousemove $((wx + ww - 265)) $((wy + 35))
for _ in $(seq 20); do
    stage_shown && break
    xdotool click 1
    sleep 0.25
done
for _ in $(seq 100); do stage_shown && break; sleep 0.05; done
stage_shown || fail "the stage window did not open"
wait_recovery 's["blackout"] and s["message"] == "Plus fort" and s["outputs"] and s["activeCue"]'
before=$(field '["liveRemaining"]')
died=$(date +%s.%N)
crash
[[ -f $recovery ]] || fail "the recovery file went with the program"
sleep 10 # the show goes on while the program is gone
launch
after=$(field '["liveRemaining"]')
back=$(date +%s.%N)
expected=$(python3 -c "print($before - ($back - $died))")
near "$after" "$expected" 1 || fail "remaining $after after the relaunch, $expected expected"
[[ $(field '["activeCueIndex"]') == 8 ]] || fail "cue $(field '["activeCueIndex"]') active, cue 9 expected"
[[ $(field '["running"]') == true && $(field '["paused"]') == false ]] || fail "not running on"
[[ $(field '["blackout"]') == true ]] || fail "the blackout is gone"
[[ $(field '["message"]') == '"Plus fort"' && $(field '["messageUrgent"]') == true ]] || fail "the message is gone"
for _ in $(seq 100); do stage_shown && break; sleep 0.05; done
stage_shown || fail "the stage window did not come back"

# 2. A paused cue stays at its value.
post blackout
post pause
wait_recovery 's["paused"] and not s["blackout"]'
paused_at=$(field '["liveRemaining"]')
crash
sleep 2
launch
[[ $(field '["paused"]') == true ]] || fail "the paused cue runs after the relaunch"
near "$(field '["liveRemaining"]')" "$paused_at" 0.01 || fail "the paused cue moved: $(field '["liveRemaining"]') for $paused_at"

# 3. The doors countdown goes on to the same time.
post stop
doors=$(date -d '+10 minutes' +%H:%M)
post doors "{\"at\":\"$doors\"}"
wait_recovery 's["doorsTarget"] is not None and not s["running"]'
target=$(field '["doorsTargetMs"]')
crash
launch
[[ $(field '["doorsTargetMs"]') == "$target" ]] || fail "doors at $(field '["doorsTargetMs"]'), $target expected"

# 4. A recovery file that cannot be read is set aside; the program starts as usual.
crash
printf '{"version": 1, "session": ' > "$recovery"
launch
compgen -G "$recovery.illisible-*" >/dev/null || fail "the unreadable recovery file was not set aside"
[[ $(field '["activeCueIndex"]') == null ]] || fail "a cue is active after an unreadable recovery file"

# 5. SIGTERM saves an edit made a moment before (the stopped cue's actual time) and leaves no
# recovery behind.
post start '{"index":3}'
sleep 1.5
post stop
kill -TERM "$kairon_pid"
status=0
wait "$kairon_pid" || status=$?
[[ $status == 0 ]] || fail "SIGTERM ended the program with status $status"
[[ ! -f $recovery ]] || fail "the recovery file stayed after SIGTERM"
python3 - "$projects/$id.orvprjct" <<'PY' || fail "the project file lacks the stopped cue's actual time"
import json, sys
cues = json.load(open(sys.argv[1]))["cues"]
sys.exit(0 if cues[3].get("actualElapsed", 0) >= 1.4 else 1)
PY

((failures == 0)) || { echo "$failures failure(s)"; exit 1; }
echo "recovery: every interruption resumed"
