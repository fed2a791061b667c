#!/usr/bin/env bash
# The real program, driven by oscsend and heard by oscdump: with "Émettre aussi chaque
# changement d'état" stored on, a pause and a stop each send /kairon/state with the transport's
# flags, the cue's number and name and the show controls' flags; stored off, the same commands
# send nothing of the kind, while the per-second messages go on as before. A show without a start
# time sends no /kairon/offset; one with a start time sends it at each new whole second of its
# offset while it waits, and after /kairon/cue with the per-second messages.
# Usage: state-changes-osc.sh KAIRON_BINARY
set -euo pipefail
kairon=$1
source "$(dirname "$0")/../support/scratch.sh"
fail() {
    echo "FAIL: $*"
    echo "--- received:"
    cat "$run/received"
    exit 1
}
# Waits up to 5 s for a line of what oscdump printed that matches the pattern (grep -E).
wait_for() { wait_for_line "$run/received" "$1"; }
# A program of its own in $dir/$1, with the switch stored as $2 (true or false), and the show's
# planned start $3 if given (an Internet date).
start() {
    run=$dir/$1
    sandbox_home "$run"
    osc_preferences "oscSendStateChanges=$2" splashDuration=1
    local planned=""
    [[ $# -ge 3 ]] && planned="\"scheduledStart\": \"$3\", "
    cat > "$run/show.orvprjct" <<JSON
{"name": "Soirée", $planned"cues": [{"name": "Ouverture", "duration": 600}, {"name": "Débat", "duration": 900}]}
JSON
    oscdump -L "$send" > "$run/received" 2>&1 &
    pids+=($!)
    KAIRON_STARTUP_TRACE=1 "$kairon" "$run/show.orvprjct" 2> "$run/trace" &
    pids+=($!)
    wait_for_trace "$run/trace" osc-listening
}
command() { oscsend 127.0.0.1 "$listen" "$@"; }

# ---- Stored on ----------------------------------------------------------------------------
start on true
# Applied at launch: the state as it stands goes out once, nothing running, no cue, no message.
wait_for '/kairon/state iiisiii 0 0 0 "" 0 0 0$' || fail "no state at launch"
wait_for '/kairon/message si "" 0$' || fail "no message at launch"
command /kairon/play
wait_for '/kairon/state iiisiii 1 0 1 "Ouverture" 0 0 0$' || fail "no state after play"
command /kairon/pause
wait_for '/kairon/state iiisiii 1 1 1 "Ouverture" 0 0 0$' || fail "no state after pause"
command /kairon/stop
wait_for '/kairon/state iiisiii 0 0 1 "Ouverture" 0 0 0$' || fail "no state after stop"
command /kairon/blackout
wait_for '/kairon/state iiisiii 0 0 1 "Ouverture" 1 0 0$' || fail "no state after blackout"
command /kairon/message s "Merci de conclure"
wait_for '/kairon/message si "Merci de conclure" 0$' || fail "no message on air"
# One message per change, in order, and the per-second messages as they were.
states=$(grep -c '/kairon/state ' "$run/received")
((states == 5)) || fail "$states state messages instead of 5"
grep -q '/kairon/running i 1$' "$run/received" || fail "the per-second messages are gone"
grep -q '/kairon/cue s "Ouverture"$' "$run/received" || fail "the per-second messages are gone"
if grep -q '/kairon/offset ' "$run/received"; then
    fail "an offset was sent for a show without a start time"
fi
echo "switch on: a state at launch, then one per change (play, pause, stop, blackout) and the message"

# ---- Stored off ---------------------------------------------------------------------------
start off false
command /kairon/play
wait_for '/kairon/running i 1$' || fail "the per-second messages are gone"
command /kairon/pause
command /kairon/stop
command /kairon/blackout
command /kairon/message s "Merci de conclure"
# The commands are handled in order: once this one shows, all those before it were handled.
command /kairon/adjust i -60
wait_for '/kairon/remaining f 5[0-4][0-9]' || fail "the adjust never showed"
if grep -qE '/kairon/(state|message) ' "$run/received"; then
    fail "changes of state were sent with the switch off"
fi
echo "switch off: no /kairon/state nor /kairon/message"

# ---- A show with a start time, the switch on ----------------------------------------------
# Planned 150 s ago and not begun: 150 s late at launch, later each second while nothing runs.
# The offsets read are taken from 140 to 199 s: a sanitized program may take half a minute to
# its first frame.
start planned true "$(date -u -d "@$(( $(date +%s) - 150 ))" +%Y-%m-%dT%H:%M:%SZ)"
wait_for '/kairon/offset f 1[4-9][0-9]\.[0-9]+$' || fail "no offset at launch"
# The engine does not tick while no cue runs, yet the offset goes on growing and goes out at each
# new whole second (rounded, as the console shows it). Counted from the console's first frame,
# since a slow machine may hold the main loop while it builds the windows; that no second is
# skipped is proved on an injected clock by the coordinator's own test.
wait_for_trace "$run/trace" first-frame 1500 # up to 30 s under the sanitizers
after=$(grep -c '/kairon/offset ' "$run/received")
offset_seconds() {
    grep '/kairon/offset ' "$run/received" | tail -n +$((after + 1)) \
        | awk '{printf "%d\n", $NF + 0.5}'
}
for _ in $(seq 250); do
    (( $(offset_seconds | sort -u | wc -l) >= 3 )) && break
    sleep 0.02
done
seconds=$(offset_seconds)
(( $(sort -u <<< "$seconds" | wc -l) >= 3 )) || fail "the offset did not go out at each new second: $seconds"
sort -nc <<< "$seconds" && [[ $(sort -nu <<< "$seconds") == "$seconds" ]] \
    || fail "the offset went out twice for one second, or went back: $seconds"
command /kairon/play
wait_for '/kairon/running i 1$' || fail "the per-second messages are gone"
# With the per-second messages, right after the cue's name.
grep -A1 '/kairon/cue s "Ouverture"$' "$run/received" | grep -qE '/kairon/offset f 1[4-9][0-9]\.' \
    || fail "no offset after /kairon/cue"
echo "start time: /kairon/offset at launch, at each new second while waiting, and after /kairon/cue"
