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

# The program's own OSC out, each /kairon/remaining with the instant it arrived.
python3 -u - "$send" > "$dir/remaining" <<'PY' &
import socket, struct, sys, time
s = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
s.bind(("127.0.0.1", int(sys.argv[1])))
print("ready")
while True:
    datagram = s.recv(2048)
    if datagram.startswith(b"/kairon/remaining\0"):
        print(f"{time.time():.4f} {struct.unpack('>f', datagram[-4:])[0]:.3f}")
PY
pids+=($!)
# A server that takes every connection and never answers.
silent=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
python3 -u -c "import socket, time
s = socket.socket(); s.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
s.bind(('127.0.0.1', $silent)); s.listen(200); print('listening'); time.sleep(3600)" > "$dir/silent" &
pids+=($!)
wait_for "$dir/remaining" ready || fail "the OSC out receiver did not start"
wait_for "$dir/silent" listening || fail "the silent server did not start"

osc() { printf '{"host": "127.0.0.1", "port": %d, "address": "%s", "args": [%s]}' "$triggers" "$1" "${2:-}"; }
# A hundred triggers that fail at the start of "Table ronde": half to the silent server (no
# answer in 2 s), half to a host no resolver knows.
failing_triggers() {
    local i
    for i in $(seq 50); do
        ((i > 1)) && printf ', '
        printf '{"when": "start", "name": "Muet %d", "http": {"method": "GET", "url": "http://127.0.0.1:%d/%d"}}' "$i" "$silent" "$i"
        printf ', {"when": "start", "name": "Inconnu %d", "osc": {"host": "regie-%d.invalid", "port": 9000, "address": "/go"}}' "$i" "$i"
    done
}
cat > "$dir/show.orvprjct" <<JSON
{"name": "Soirée", "cues": [
  {"name": "Ouverture", "speaker": "Ana", "duration": 4, "warningThreshold": 3, "dangerThreshold": 1,
   "triggers": [
     {"when": "start", "name": "Lumières", "osc": $(osc /lights/go '{"type": "i", "value": "{index}"}, {"type": "s", "value": "{speaker}"}')},
     {"when": "warning", "name": "Avertissement", "osc": $(osc /warning '{"type": "i", "value": "{remaining}"}')},
     {"when": "danger", "name": "Danger", "osc": $(osc /danger)},
     {"when": "zero", "name": "Zéro", "osc": $(osc /zero)},
     {"when": "end", "name": "Régie vidéo", "http": {"method": "GET", "url": "http://127.0.0.1:$http/go/?end={cue}"}}]},
  {"name": "Débat", "duration": 600},
  {"name": "Table ronde", "duration": 900, "triggers": [$(failing_triggers)]}],
 "triggers": [{"when": "start", "name": "Son", "http": {"method": "GET", "url": "http://127.0.0.1:$http/go/?start={index}"}}]}
JSON
KAIRON_STARTUP_TRACE=1 "$kairon" "$dir/show.orvprjct" 2> "$dir/trace" &
pids+=($!)
wait_for_trace "$dir/trace" osc-listening
wait_for_trace "$dir/trace" first-frame 1500 # up to 30 s under the sanitizers

oscsend 127.0.0.1 "$listen" /kairon/play
wait_for "$dir/osc" '/lights/go is 1 "Ana"$' || fail "no start trigger"
wait_for "$dir/http" '"GET /go/\?start=1 HTTP/1.1" 200' || fail "no show-wide start trigger"
# The warning's band is two seconds wide: the views' first yellow frame keeps a sanitized program
# busy for a moment, which on a loaded machine can pass the tick that comes at 3 s left.
wait_for "$dir/osc" '/warning i [12]$' || fail "no warning trigger (3 s left, 2 shown, 1 a moment later)"
wait_for "$dir/osc" '/danger ,?$' || fail "no danger trigger"
wait_for "$dir/osc" '/zero ,?$' || fail "no zero trigger"
# In order, each once.
order=$(awk '{print $2}' "$dir/osc" | tr '\n' ' ')
[[ $order == "/lights/go /warning /danger /zero " ]] || fail "the OSC triggers came as: $order"
oscsend 127.0.0.1 "$listen" /kairon/next
wait_for "$dir/http" '"GET /go/\?end=Ouverture HTTP/1.1" 200' || fail "no end trigger"
wait_for "$dir/http" '"GET /go/\?start=2 HTTP/1.1" 200' || fail "no show-wide start for the next cue"

# The clock against the hundred failing triggers: each new second of the remaining time still
# goes out over OSC, none skipped, and how late each is against the earliest is measured.
oscsend 127.0.0.1 "$listen" /kairon/next
wait_for "$dir/http" '"GET /go/\?start=3 HTTP/1.1" 200' || fail "no show-wide start for the third cue"
wait_for_line "$dir/remaining" ' 89[01]\.' 1000 || fail "Table ronde's seconds did not go out"
lateness=$(awk '$2 < 900 && $2 > 890 {
        second = int($2 + 0.5); k = 899 - second
        if (k in at) bad = "twice " second
        at[k] = $1; if (k > last) last = k
    }
    END {
        for (k = 0; k <= last && !bad; k++) if (!(k in at)) bad = "missing " 899 - k
        if (bad) { print bad; exit }
        base = at[0]
        for (k = 0; k <= last; k++) if (at[k] - k < base) base = at[k] - k
        for (k = 0; k <= last; k++) if (at[k] - k - base > worst) worst = at[k] - k - base
        printf "%d %.0f\n", last + 1, worst * 1000
    }' "$dir/remaining")
read -r count worst <<< "$lateness"
[[ $count =~ ^[0-9]+$ ]] && ((count >= 7)) || fail "the seconds of Table ronde: $lateness"
# Far above any real lateness, below a second: a clock that waits for the triggers fails it.
((worst < 500)) || fail "a second went out $worst ms late during the failing triggers"
wait_for "$dir/trace" 'Déclencheur « Muet 1 » : pas de réponse de 127.0.0.1' \
    || fail "the silent server's failure was not logged"
wait_for "$dir/trace" 'Déclencheur « Inconnu 1 » : hôte inconnu : regie-1.invalid' \
    || fail "the unknown host's failure was not logged"
echo "triggers: start, warning, danger, zero over OSC; end and the show-wide start over HTTP"
echo "100 failing triggers: $count seconds out over OSC, the latest $worst ms after the earliest's pace"
