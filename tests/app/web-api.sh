#!/usr/bin/env bash
# The real program with remote control over the web stored as enabled: every route and every
# error case driven with curl (status and JSON body checked exactly, and the state unchanged
# after each refusal), then WebSocket clients for pushes and commands, and 100 viewers at once.
# Usage: web-api.sh KAIRON_BINARY
set -euo pipefail
kairon=$1
here=$(cd "$(dirname "$0")" && pwd)
source "$here/../support/scratch.sh"

code=K7M2P9QX
source "$here/../support/web-sandbox.sh"
web_sandbox "$dir" "$code"
cat > "$dir/show.orvprjct" <<'JSON'
{"name": "Soirée", "cues": [{"name": "Ouverture", "speaker": "Ana", "duration": 600},
 {"name": "Débat", "duration": 90, "colorHex": "#FF0000"}]}
JSON

KAIRON_STARTUP_TRACE=1 "$kairon" "$dir/show.orvprjct" 2> "$dir/trace" &
pids+=($!)
wait_for_web "$dir/trace"

base=http://127.0.0.1:$port
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# request METHOD PATH [BODY] [AUTH]: prints "STATUS BODY"
request() {
    local args=(-s -o "$dir/body" -w '%{http_code}' -X "$1")
    [[ $# -ge 3 && -n $3 ]] && args+=(-H 'Content-Type: application/json' --data-binary "$3")
    [[ $# -ge 4 ]] && args+=(-H "Authorization: $4")
    local status
    status=$(curl "${args[@]}" "$base$2")
    echo "$status $(cat "$dir/body")"
}
# The state without the server's clock, which moves between two reads.
state() { curl -s "$base/api/state" | sed -E 's/"serverTimeMs":[0-9.e+]+//'; }
field() { curl -s "$base/api/state" | python3 -c "import json,sys; print(json.dumps(json.load(sys.stdin)$1, ensure_ascii=False))"; }
expect() { # expect DESCRIPTION ACTUAL EXPECTED
    [[ "$2" == "$3" ]] || fail "$1: got [$2], expected [$3]"
}

# ---- Viewing is open --------------------------------------------------------------------------
expect "state names the show" "$(field '["sessionName"]')" '"Soirée"'
expect "state lists the cues" "$(field '["cues"]')" \
    '[{"active": false, "color": null, "colorHex": null, "dangerThreshold": 30, "duration": 600, "name": "Ouverture", "speaker": "Ana", "warningThreshold": 120}, {"active": false, "color": "#FF0000", "colorHex": "#FF0000", "dangerThreshold": 30, "duration": 90, "name": "Débat", "speaker": "", "warningThreshold": 120}]'
expect "a stopped clock has no next second" "$(field '["nextSecondAtMs"]')" 'null'
expect "a stopped cue clock has no next second" "$(field '["liveNextSecondAtMs"]')" 'null'
expect "the displays' calendar" "$(field '["locale"]')" '"fr"'
expect "a show without a start time has no schedule" "$(field '["schedule"]')" 'null'

# ---- Refusals change nothing ------------------------------------------------------------------
bearer="Bearer $code"
refuse() { # refuse DESCRIPTION EXPECTED_STATUS_AND_BODY METHOD PATH [BODY] [AUTH]
    local description=$1 expected=$2
    shift 2
    local before after
    before=$(state)
    expect "$description" "$(request "$@")" "$expected"
    after=$(state)
    [[ "$before" == "$after" ]] || fail "$description changed the state"
}
refuse "unknown path" '404 {"error":"Chemin inconnu : /nulle-part"}' GET /nulle-part
refuse "unknown command" '404 {"error":"Chemin inconnu : /api/danse"}' POST /api/danse '' "$bearer"
refuse "GET on a command" '405 {"error":"Méthode non autorisée pour /api/play (POST attendu)"}' GET /api/play
refuse "POST on the state" '405 {"error":"Méthode non autorisée pour /api/state (GET attendu)"}' POST /api/state
refuse "no code" '401 {"error":"Code d'"'"'accès manquant ou incorrect"}' POST /api/play
refuse "wrong code" '401 {"error":"Code d'"'"'accès manquant ou incorrect"}' POST /api/play '' "Bearer 00000000"
refuse "code without Bearer" '401 {"error":"Code d'"'"'accès manquant ou incorrect"}' POST /api/play '' "$code"
refuse "malformed body" '400 {"error":"Corps invalide : un objet JSON est attendu"}' POST /api/message '{"text":' "$bearer"
refuse "body not an object" '400 {"error":"Corps invalide : un objet JSON est attendu"}' POST /api/message '[1]' "$bearer"
refuse "message without text" '400 {"error":"« text » doit être un texte ou null"}' POST /api/message '{"urgent":true}' "$bearer"
refuse "urgent not a boolean" '400 {"error":"« urgent » doit être un booléen"}' POST /api/message '{"text":"x","urgent":"oui"}' "$bearer"
refuse "adjust without seconds" '400 {"error":"« seconds » doit être un nombre de secondes (±86400 au plus)"}' POST /api/adjust '{}' "$bearer"
refuse "adjust by text" '400 {"error":"« seconds » doit être un nombre de secondes (±86400 au plus)"}' POST /api/adjust '{"seconds":"60"}' "$bearer"
refuse "start at a fraction" '400 {"error":"« index » doit être un entier positif ou nul"}' POST /api/start '{"index":1.5}' "$bearer"
refuse "start at a negative index" '400 {"error":"« index » doit être un entier positif ou nul"}' POST /api/start '{"index":-1}' "$bearer"
refuse "start beyond the list" '400 {"error":"Aucun cue à l'"'"'index 9 (de 0 à 1)"}' POST /api/start '{"index":9}' "$bearer"
refuse "doors without a time" '400 {"error":"« at » doit être une heure « HH:mm » ou null"}' POST /api/doors '{}' "$bearer"
refuse "doors at no time of day" '400 {"error":"« at » doit être une heure « HH:mm » ou null"}' POST /api/doors '{"at":"24:00"}' "$bearer"
refuse "a page by POST" '405 {"error":"Méthode non autorisée pour /stage (GET attendu)"}' POST /stage
refuse "plain GET on the WebSocket" '400 {"error":"/api/ws attend une connexion WebSocket"}' GET /api/ws
head -c 70000 /dev/zero | tr '\0' 'a' > "$dir/big"
before=$(state)
expect "oversized request" "$(curl -s -w ' %{http_code}' -X POST -H "Authorization: $bearer" --data-binary @"$dir/big" "$base/api/message")" \
    '{"error":"Requête trop volumineuse (64 Kio au plus)"} 413'
[[ "$before" == "$(state)" ]] || fail "the oversized request changed the state"
slow=$(python3 - "$port" <<'PY'
import socket, sys
s = socket.create_connection(("127.0.0.1", int(sys.argv[1])))
s.sendall(b"POST /api/play HTTP/1.1\r\nHost: x\r\n")  # and nothing more
s.settimeout(15)
data = b""
while True:
    chunk = s.recv(4096)
    if not chunk:
        break
    data += chunk
status = data.split(b"\r\n", 1)[0].decode()
body = data.split(b"\r\n\r\n", 1)[1].decode()
print(status, body)
PY
)
expect "slow client" "$slow" 'HTTP/1.1 408 Request Timeout {"error":"Requête trop lente : elle n'"'"'est pas arrivée en entier à temps"}'
[[ "$before" == "$(state)" ]] || fail "the slow request changed the state"

# ---- Every command ----------------------------------------------------------------------------
command() { request POST "/api/$1" "${2:-}" "$bearer" | cut -c1-3; }
expect "play" "$(command play)" 200
expect "running after play" "$(field '["running"]')" 'true'
next_ok=$(curl -s "$base/api/state" | python3 -c '
import json,sys; s=json.load(sys.stdin)
print(0 <= s["nextSecondAtMs"] - s["serverTimeMs"] <= 1000)')
expect "next second within the second" "$next_ok" True
expect "pause" "$(command pause)" 200
expect "paused" "$(field '["paused"]')" 'true'
expect "adjust" "$(command adjust '{"seconds":-60}')" 200
expect "remaining after adjust" "$(field '["remaining"] < 541')" 'true'
expect "message" "$(command message '{"text":"Plus fort","urgent":true}')" 200
expect "message on air" "$(field '["message"]')" '"Plus fort"'
expect "urgent" "$(field '["messageUrgent"]')" 'true'
expect "message cleared" "$(command message '{"text":null}')" 200
expect "no message" "$(field '.get("message")')" 'null'
expect "blackout" "$(command blackout)" 200
expect "blackout on" "$(field '["blackout"]')" 'true'
expect "blackout again" "$(command blackout)" 200
expect "blackout toggles off" "$(field '["blackout"]')" 'false'
expect "blink" "$(command blink)" 200
expect "blinking" "$(field '["blinkActive"]')" 'true'
expect "next" "$(command next)" 200
expect "next cue" "$(field '["activeCueIndex"]')" '1'
expect "prev" "$(command prev)" 200
expect "previous cue" "$(field '["activeCueIndex"]')" '0'
expect "start" "$(command start '{"index":1}')" 200
expect "started cue" "$(field '["cueName"]')" '"Débat"'
expect "freeze" "$(command freeze)" 200
expect "frozen" "$(field '["freeze"]')" 'true'
expect "frozen digits stand" "$(field '["nextSecondAtMs"]')" 'null'
expect "the cue clock runs on" "$(field '["liveNextSecondAtMs"] > 0')" 'true'
expect "freeze again" "$(command freeze)" 200
expect "released" "$(field '["freeze"]')" 'false'
expect "clock mode" "$(command clockmode)" 200
expect "clock mode on" "$(field '["clockMode"]')" 'true'
expect "clock mode again" "$(command clockmode)" 200
expect "clock mode toggles off" "$(field '["clockMode"]')" 'false'
expect "doors" "$(command doors '{"at":"23:59"}')" 200
doors_at=$(curl -s "$base/api/state" | python3 -c '
import datetime, json, sys, zoneinfo
s = json.load(sys.stdin)
at = datetime.datetime.fromtimestamp(s["doorsTargetMs"] / 1000, zoneinfo.ZoneInfo(s["timeZone"]))
print(at.strftime("%H:%M:%S"), s["doorsTargetMs"] > s["serverTimeMs"])')
expect "doors at the next 23:59 of the displays' time zone" "$doors_at" '23:59:00 True'
expect "doors cancelled" "$(command doors '{"at":null}')" 200
expect "no doors" "$(field '["doorsTargetMs"]')" 'null'
expect "reset" "$(command reset)" 200
expect "stop" "$(command stop)" 200
expect "stopped" "$(field '["running"]')" 'false'

# ---- WebSocket: pushes, commands, 100 viewers --------------------------------------------------
/usr/bin/python3 "$here/web-viewers.py" "$port" "$code" || fail "WebSocket clients"

if (( failures > 0 )); then
    echo "$failures failure(s)"
    exit 1
fi
echo "web API: every route and every refusal as expected"
