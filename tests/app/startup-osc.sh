#!/usr/bin/env bash
# The real program, started with OSC listening stored as enabled and a project on its command
# line, applies a command sent by a real peer while its splash still shows: /kairon/play from
# oscsend, then /kairon/running 1 seen by oscdump, well within the 10 s splash. The show planned
# to start 30 s before, its offset follows the cue's name in the per-second messages.
# Usage: startup-osc.sh KAIRON_BINARY
set -euo pipefail
kairon=$1
source "$(dirname "$0")/../support/scratch.sh"
sandbox_home "$dir"
osc_preferences splashDuration=10
cat > "$dir/show.orvprjct" <<JSON
{"name": "Soirée", "scheduledStart": "$(date -u -d "@$(( $(date +%s) - 30 ))" +%Y-%m-%dT%H:%M:%SZ)",
 "cues": [{"name": "Ouverture", "duration": 600}]}
JSON

oscdump -L "$send" > "$dir/received" 2>&1 &
pids+=($!)
start=$(date +%s%N)
KAIRON_STARTUP_TRACE=1 "$kairon" "$dir/show.orvprjct" 2> "$dir/trace" &
pids+=($!)

# Listening, as the program itself reports it.
wait_for_trace "$dir/trace" osc-listening

oscsend 127.0.0.1 "$listen" /kairon/play
for _ in $(seq 250); do
    grep -q "/kairon/running i 1" "$dir/received" && break
    sleep 0.02
done
received=$(date +%s%N)
grep -q "/kairon/running i 1" "$dir/received" || { cat "$dir/received"; echo "the command was not applied"; exit 1; }
grep -q '/kairon/cue s "Ouverture"' "$dir/received" || { cat "$dir/received"; echo "no cue name"; exit 1; }
grep -A1 '/kairon/cue s "Ouverture"' "$dir/received" | grep -qE '/kairon/offset f [34][0-9]\.' \
    || { cat "$dir/received"; echo "no offset after the cue's name"; exit 1; }
elapsed_ms=$(( (received - start) / 1000000 ))
if (( elapsed_ms >= 10000 )); then
    echo "applied after ${elapsed_ms} ms, after the splash"
    exit 1
fi
echo "applied ${elapsed_ms} ms after launch, while the splash shows"
