#!/usr/bin/env bash
# The real program interrupted in the middle of a show and launched again: killed (kill -9) at a
# running cue with the blackout, a message and the stage full screen on the second monitor, its
# report exported before and after; at a paused cue; during the doors countdown; then a recovery
# file that cannot be read; then SIGTERM, SIGINT and SIGHUP, each of which saves and quits.
# Driven over the web API and by clicks and keys (xdotool), on a private X server.
# Usage: with-xvfb.sh recovery.sh KAIRON_BINARY
# With KAIRON_SCREENSHOT_DIR set, keeps screenshots of the screen after the recovery there.
set -euo pipefail
kairon=$1
here=$(cd "$(dirname "$0")" && pwd)
source "$here/../support/scratch.sh"
source "$here/../support/web-sandbox.sh"
source "$here/../support/window-geometry.sh"
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

field() { curl -s "$base/api/state" | python3 -c "import json,sys; print(json.dumps(json.load(sys.stdin)$1, ensure_ascii=False))"; }
# waits (10 s at most) until the recovery file says what the Python expression on `s` checks
wait_recovery() {
    for _ in $(seq 200); do
        [[ -f $recovery ]] && python3 -c "import json,sys; s=json.load(open('$recovery')); sys.exit(0 if ($1) else 1)" 2>/dev/null && return 0
        sleep 0.05
    done
    fail "the recovery file never showed: $1"; cat "$recovery" 2>/dev/null; echo
}
launch() {
    start_kairon "$kairon" "$dir/gala.orvprjct"
    # After the splash, the console: its cue list's footer with the export buttons.
    for _ in $(seq 100); do console_shown && return 0; sleep 0.1; done
    fail "the console did not show"
}
crash() { kill -9 "$kairon_pid"; wait "$kairon_pid" 2>/dev/null || true; }
near() { python3 -c "import sys; sys.exit(0 if abs($1 - ($2)) <= $3 else 1)"; }
# within LOW HIGH VALUE TOLERANCE: LOW - TOLERANCE <= VALUE <= HIGH + TOLERANCE
within() { python3 -c "import sys; sys.exit(0 if ($1) - $4 <= $3 <= ($2) + $4 else 1)"; }
now() { date +%s.%N; }

# The console's place on the screen, without the window manager's frame: gx gy gw gh.
console_geometry() { geometry "$(xdotool search --onlyvisible --name '^Kairon$' | head -n 1)"; }
# The console shows: the export buttons' fill at the foot of the cue list.
console_shown() {
    console_geometry 2>/dev/null || return 1
    import -window root "$dir/now.ppm"
    (($(python3 "$here/screen.py" count "$dir/now.ppm" $((gx + $(cue_list_width) - 90)) $((gy + gh - 42)) 80 32 42,42,48 1) > 800))
}
# The report exported from the cue list's footer (its first button), copied to FILE: rows only,
# without the line that dates the export.
reports=$HOME/Documents/Kairon/Reports
export_report() {
    rm -rf "$reports"
    console_geometry
    xdotool mousemove $((gx + $(cue_list_width) - 10 - 32 - 6 - 16)) $((gy + gh - 26)) click 1
    for _ in $(seq 200); do compgen -G "$reports/Rapport_*.csv" >/dev/null && break; sleep 0.05; done
    compgen -G "$reports/Rapport_*.csv" >/dev/null || { fail "no report was exported"; return; }
    grep -v '^Généré par' "$reports"/Rapport_*.csv > "$1"
}
# A screenshot of both monitors kept as NAME.png when KAIRON_SCREENSHOT_DIR is set.
keep() { [[ -z ${KAIRON_SCREENSHOT_DIR:-} ]] || { mkdir -p "$KAIRON_SCREENSHOT_DIR"; import -window root "$KAIRON_SCREENSHOT_DIR/$1.png"; }; }
# The stage full screen on the second monitor, as it was put there.
stage_on_second_monitor() {
    [[ $(xdotool search --onlyvisible --name 'Kairon — Stage' getwindowgeometry 2>/dev/null |
         tr -d '\n') == *'Position: 1920,0'*'Geometry: 1280x720'* ]]
}
# No export asks a file manager to show its folder.
mkdir -p "$dir/bin"
printf '#!/bin/sh\nexit 0\n' > "$dir/bin/xdg-open"
chmod +x "$dir/bin/xdg-open"
export PATH=$dir/bin:$PATH
unset DBUS_SESSION_BUS_ADDRESS SESSION_MANAGER

# 1. Cues 1 to 8 played, cue 9 running with the blackout, a message and the stage full screen on
# the second monitor.
launch
post start '{"index":0}'
for _ in $(seq 7); do post next; done
next_sent=$(now)
post next
cue9_at=$(now) # cue 9 started between these two instants
export_report "$dir/before.csv"
[[ $(grep -c ';600;00:10:00;' "$dir/before.csv") == 8 ]] || fail "the report before the crash lacks the 8 cues played"
post message '{"text":"Plus fort","urgent":true}'
post blackout
# "Plein écran sur : VIRTUAL-2", the second entry of the menu under the arrow beside "Stage".
console_geometry
xdotool mousemove $((gx + gw - 231)) $((gy + 56)) click 1
sleep 0.5 # the menu opens
xdotool key Down Down Return
for _ in $(seq 100); do stage_on_second_monitor && break; sleep 0.05; done
stage_on_second_monitor || fail "the stage did not go full screen on the second monitor"
wait_recovery 's["blackout"] and s["message"] == "Plus fort" and s["activeCue"] and any(o["window"] == "stage" and o["fullScreen"] and o["screen"] == "VIRTUAL-2" for o in s["outputs"])'
b0=$(now)
before=$(field '["liveRemaining"]')
b1=$(now)
crash
[[ -f $recovery ]] || fail "the recovery file went with the program"
sleep 10 # the show goes on while the program is gone
launch
a0=$(now)
after=$(field '["liveRemaining"]')
a1=$(now)
keep recovered-console
# What a show never interrupted would show, read between the same instants.
within "$before - ($a1 - $b0)" "$before - ($a0 - $b1)" "$after" 1 ||
    fail "remaining $after after the relaunch, $before less the $(python3 -c "print($a0 - $b1)") s since expected"
[[ $(field '["activeCueIndex"]') == 8 ]] || fail "cue $(field '["activeCueIndex"]') active, cue 9 expected"
[[ $(field '["running"]') == true && $(field '["paused"]') == false ]] || fail "not running on"
[[ $(field '["blackout"]') == true ]] || fail "the blackout is gone"
[[ $(field '["message"]') == '"Plus fort"' && $(field '["messageUrgent"]') == true ]] || fail "the message is gone"
for _ in $(seq 100); do stage_on_second_monitor && break; sleep 0.05; done
stage_on_second_monitor || fail "the stage did not come back full screen on the second monitor"
keep recovered-stage
# The report covers the cues played before the crash, and the cue on air counts its time
# through the interruption.
export_report "$dir/after.csv"
cmp -s "$dir/before.csv" "$dir/after.csv" || { fail "the report changed across the crash"; diff "$dir/before.csv" "$dir/after.csv" || true; }
n0=$(now)
post next
n1=$(now)
export_report "$dir/later.csv"
grep -q '^Cue 9;600;00:10:00;' "$dir/later.csv" || fail "cue 9 is not in the report"
actual=$(awk -F';' '$1 == "Cue 9" {print $4}' "$dir/later.csv")
# The report writes whole seconds, truncated.
within "$n0 - $cue9_at - 1" "$n1 - $next_sent" "$actual" 1 ||
    fail "cue 9 ran $actual s by the report, $(python3 -c "print($n0 - $cue9_at)") s at least by the wall clock"
cmp -s <(grep -E '^Cue [1-8];' "$dir/before.csv") <(grep -E '^Cue [1-8];' "$dir/later.csv") ||
    fail "the rows of the cues played before the crash changed"

# 2. A paused cue (cue 10) stays at its value.
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

# 5. SIGTERM, SIGINT and SIGHUP each save an edit made a moment before (a cue started, then
# stopped: its actual time is written into the show), quit cleanly and leave no recovery behind.
cue=3
for signal in TERM INT HUP; do
    ((cue == 3)) || launch
    post start "{\"index\":$cue}"
    post stop
    kill -"$signal" "$kairon_pid"
    status=0
    wait "$kairon_pid" || status=$?
    [[ $status == 0 ]] || fail "SIG$signal ended the program with status $status"
    [[ ! -f $recovery ]] || fail "the recovery file stayed after SIG$signal"
    python3 - "$projects/$id.orvprjct" "$cue" <<'PY' || fail "SIG$signal: the project file lacks cue $((cue + 1))'s actual time"
import json, sys
cues = json.load(open(sys.argv[1]))["cues"]
sys.exit(0 if cues[int(sys.argv[2])].get("actualElapsed", 0) > 0 else 1)
PY
    cue=$((cue + 1))
done

((failures == 0)) || { echo "$failures failure(s)"; exit 1; }
echo "recovery: every interruption resumed"
