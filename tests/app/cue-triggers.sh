#!/usr/bin/env bash
# The real program sends a cue's triggers to real receivers: oscdump hears the OSC ones and
# Python's http.server logs the HTTP ones, each at its moment: the cue's start, its warning and
# danger thresholds, zero, and its end when it is left; the show-wide start with them.
# Usage: cue-triggers.sh KAIRON_BINARY
set -euo pipefail
kairon=$1
source "$(dirname "$0")/../support/scratch.sh"
fail() {
    echo "FAIL: $*"
    echo "--- OSC received:"; cat "$dir/osc"
    echo "--- HTTP received:"; cat "$dir/http"
    exit 1
}
# Waits up to 10 s for a line of FILE that matches the pattern (grep -E).
wait_for() { wait_for_line "$1" "$2" 500; }

sandbox_home "$dir"
osc_preferences splashDuration=1
triggers=$(free_udp_port)
http=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
mkdir -p "$dir/www/go"
(cd "$dir/www" && exec python3 -u -m http.server "$http" --bind 127.0.0.1) > "$dir/http" 2>&1 &
pids+=($!)
oscdump -L "$triggers" > "$dir/osc" 2>&1 &
pids+=($!)
wait_for "$dir/http" "Serving HTTP" || fail "http.server did not start"

osc() { printf '{"host": "127.0.0.1", "port": %d, "address": "%s", "args": [%s]}' "$triggers" "$1" "${2:-}"; }
cat > "$dir/show.orvprjct" <<JSON
{"name": "Soirée", "cues": [
  {"name": "Ouverture", "speaker": "Ana", "duration": 3, "warningThreshold": 2, "dangerThreshold": 1,
   "triggers": [
     {"when": "start", "name": "Lumières", "osc": $(osc /lights/go '{"type": "i", "value": "{index}"}, {"type": "s", "value": "{speaker}"}')},
     {"when": "warning", "name": "Avertissement", "osc": $(osc /warning '{"type": "i", "value": "{remaining}"}')},
     {"when": "danger", "name": "Danger", "osc": $(osc /danger)},
     {"when": "zero", "name": "Zéro", "osc": $(osc /zero)},
     {"when": "end", "name": "Régie vidéo", "http": {"method": "GET", "url": "http://127.0.0.1:$http/go/?end={cue}"}}]},
  {"name": "Débat", "duration": 600}],
 "triggers": [{"when": "start", "name": "Son", "http": {"method": "GET", "url": "http://127.0.0.1:$http/go/?start={index}"}}]}
JSON
KAIRON_STARTUP_TRACE=1 "$kairon" "$dir/show.orvprjct" 2> "$dir/trace" &
pids+=($!)
wait_for_trace "$dir/trace" osc-listening
wait_for_trace "$dir/trace" first-frame 1500 # up to 30 s under the sanitizers

oscsend 127.0.0.1 "$listen" /kairon/play
wait_for "$dir/osc" '/lights/go is 1 "Ana"$' || fail "no start trigger"
wait_for "$dir/http" '"GET /go/\?start=1 HTTP/1.1" 200' || fail "no show-wide start trigger"
wait_for "$dir/osc" '/warning i 1$' || fail "no warning trigger (2 s left, 1 shown)"
wait_for "$dir/osc" '/danger ,?$' || fail "no danger trigger"
wait_for "$dir/osc" '/zero ,?$' || fail "no zero trigger"
# In order, each once.
order=$(awk '{print $2}' "$dir/osc" | tr '\n' ' ')
[[ $order == "/lights/go /warning /danger /zero " ]] || fail "the OSC triggers came as: $order"
oscsend 127.0.0.1 "$listen" /kairon/next
wait_for "$dir/http" '"GET /go/\?end=Ouverture HTTP/1.1" 200' || fail "no end trigger"
wait_for "$dir/http" '"GET /go/\?start=2 HTTP/1.1" 200' || fail "no show-wide start for the next cue"
echo "triggers: start, warning, danger, zero over OSC; end and the show-wide start over HTTP"
