#!/usr/bin/env bash
# The real program, used as a new user would from start to finish, and observed only from
# outside: a fresh home, an X server with two monitors and a window manager, a sound server with
# two outputs ("Régie", the default, and "Retour scène"), and an OSC peer on each side.
#
# It is driven by real key presses and mouse clicks (xdotool), and checked on what a person or
# the venue's equipment would see: screenshots of the whole screen, read pixel by pixel, the OSC
# messages the program sends, the files it writes, and the sound recorded from each output.
#
#   1. the splash shows, a click skips it, the empty library shows;
#   2. "Nouveau projet", a name, "Créer le projet": the console opens with the starter cue;
#   3. two cues added from the templates; one renamed, cut to 1 min with its warning at 30 s
#      and auto-follow on, in the cue editor; saved with Ctrl+S;
#   4. the settings window: alerts on "Retour scène", OSC in and out on free ports, applied;
#   5. the stage sent full screen to the second monitor, the confidence window opened; Space
#      starts the edited cue: its name and time go out over OSC, the stage's digits are green,
#      then yellow 30 s later with the warning's bell on "Retour scène" and nothing on "Régie";
#   6. Ctrl+B blacks the stage out while the confidence window keeps counting; a message sent
#      over OSC waits behind the blackout and shows on the stage once Ctrl+B lifts it; the cue
#      reaches zero and the next one follows by itself;
#   7. the CSV report and the PDF rundown exported from the cue list; "Projets" saves and shows
#      the project in the library; Ctrl+Q quits; a second launch lists the project again.
#
# Usage: acceptance.sh KAIRON_BINARY
# Starts its own servers (tests/audio/with-pulseaudio.sh around tests/support/with-xvfb.sh) unless
# it already runs inside them. With KAIRON_SCREENSHOT_DIR set, keeps a numbered screenshot of
# each step there (created if needed), and failure.png when a check fails.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
tests=$(dirname "$here")

if [[ $# -ne 1 ]]; then
    echo "usage: $0 KAIRON_BINARY" >&2
    exit 2
fi
kairon=$(realpath "$1")

if [[ -z "${KAIRON_ACCEPTANCE_SERVERS:-}" ]]; then
    export KAIRON_ACCEPTANCE_SERVERS=1
    exec "$tests/audio/with-pulseaudio.sh" "$tests/support/with-xvfb.sh" "$0" "$kairon"
fi

# ---- Surroundings ---------------------------------------------------------------------------

now_ms() { echo $(($(date +%s%N) / 1000000)); }
# Milliseconds as seconds with one decimal.
seconds() { printf '%d.%d' $(($1 / 1000)) $(($1 % 1000 / 100)); }
started=$(now_ms)
work=$(mktemp -d)
kairon_pid=
helper_pids=()

log() { printf '[acceptance %6ss] %s\n' "$(seconds $(($(now_ms) - started)))" "$*"; }

cleanup() {
    set +e
    [[ -n "$kairon_pid" ]] && kill "$kairon_pid" 2>/dev/null && wait "$kairon_pid" 2>/dev/null
    local pid
    for pid in "${helper_pids[@]}"; do
        kill "$pid" 2>/dev/null
        wait "$pid" 2>/dev/null
    done
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 143' TERM
trap 'exit 130' INT

shots=${KAIRON_SCREENSHOT_DIR:-}
[[ -n "$shots" ]] && mkdir -p "$shots"
shot_number=0

fail() {
    echo "FAILED: $*" >&2
    import -window root "$work/failure.png" 2>/dev/null && [[ -n "$shots" ]] \
        && cp "$work/failure.png" "$shots/failure.png"
    echo "--- the program's output (last lines):" >&2
    tail -n 30 "$work/kairon.log" >&2 2>/dev/null || true
    echo "--- OSC received (last lines):" >&2
    tail -n 10 "$work/osc.txt" >&2 2>/dev/null || true
    exit 1
}

# The screen as it is now, into $work/now.ppm (uncompressed: the checks read it many times).
snap() { import -window root "$work/now.ppm"; }

# Keeps the last screenshot as the next numbered one: keep NAME.
keep() {
    [[ -n "$shots" ]] || return 0
    shot_number=$((shot_number + 1))
    convert "$work/now.ppm" "$shots/$(printf '%02d' "$shot_number")-$1.png"
}

# Runs a check until it passes: poll SECONDS "what is awaited" COMMAND [ARGS…]. Each try of a
# check that reads the screen takes its own screenshot, so the waits follow the program's own
# pace on a loaded machine.
poll() {
    local timeout=$1 what=$2
    shift 2
    local deadline=$(($(date +%s) + timeout))
    while ! "$@" >/dev/null; do
        (($(date +%s) < deadline)) || fail "$what (not within ${timeout} s)"
        sleep 0.2
    done
}

pixels() { python3 "$here/screen.py" "$@"; }

# Colours of the interface, sRGB.
accent=255,107,0
bg_deep=10,10,12
bg_main=18,18,20
bg_panel=26,26,30
bg_elevated=35,35,40
bg_input=42,42,48
text_primary=255,255,255
text_secondary=184,184,192
state_normal=46,204,113
state_warning=241,196,15
state_danger=231,76,60

# The mouse rests in a corner after each click, so that no tooltip or hover colour lingers on
# what the next screenshot reads.
park() { xdotool mousemove 4 1076; }
click() { xdotool mousemove "$1" "$2" click 1; park; }
press() {
    local key
    for key in "$@"; do
        xdotool key "$key"
        sleep 0.08
    done
}

# A visible window of the program, by its title's regular expression; empty when none.
window_id() { xdotool search --onlyvisible --name "$1" 2>/dev/null | head -n 1 || true; }
source "$tests/support/window-geometry.sh"

free_udp_port() { "$tests/support/free-udp-port"; }

# A user's session, as little of this machine's as possible: no session bus (the exports would
# ask its file manager to show their file), French time.
unset DBUS_SESSION_BUS_ADDRESS SESSION_MANAGER
export TZ=Europe/Paris LANG=C.UTF-8 LC_ALL=C.UTF-8

# The exports then show their folder through xdg-open; this desktop has no file manager, so a
# stand-in records what it was asked to open instead of starting a browser.
mkdir -p "$work/bin"
cat > "$work/bin/xdg-open" <<SH
#!/bin/sh
echo "\$@" >> "$work/revealed"
SH
chmod +x "$work/bin/xdg-open"
export PATH=$work/bin:$PATH

pactl list short sinks | grep -q kairon_stage || fail "no sound server with the two outputs"
[[ -n "${DISPLAY:-}" ]] || fail "no X display"

listen_port=$(free_udp_port)
send_port=$(free_udp_port)
projects=$HOME/Documents/Kairon/Projets
reports=$HOME/Documents/Kairon/Reports

# The program's windows read on the screen, and the settings' step.
# shellcheck source=acceptance-probes.sh
source "$here/acceptance-probes.sh"

# ---- The show -------------------------------------------------------------------------------

oscdump -L "$send_port" >"$work/osc.txt" 2>&1 &
helper_pids+=($!)

# Step 1: the splash, skipped with a click, then the empty library.
launch
poll 60 "the splash shows" splash_shows
keep splash
log "splash shown"
click $((gx + gw / 2)) $((gy + gh / 2))
poll 30 "the library shows after the splash" library_shows
poll 10 "the empty library invites to create a project" library_empty
keep library-empty
log "empty library shown"

# Step 2: a new project.
project_name="Soirée de lancement"
read -r x y < <(new_project_button)
click "$x" "$y"
poll 20 "the project sheet opens" sheet_open
xdotool type --delay 40 "$project_name"
poll 10 "the sheet's confirm button is enabled once named" sheet_confirm_button
keep new-project-sheet
read -r x y < <(sheet_confirm_button)
click "$x" "$y"
poll 30 "the console opens" console_shows
poll 10 "the starter cue is listed" cue_row_named 0
keep console-starter-cue
poll 10 "the new project is saved in the library" file_there "$projects/*.orvprjct"
log "project created, console open"

# Step 3: two cues from the templates of the add menu (keyboard through the menu: the blank
# cue, then the templates in order), then the second cue edited.
add_template() {
    local downs=$1 row=$2 name=$3
    snap
    local before="$work/before-menu.ppm"
    cp "$work/now.ppm" "$before"
    read -r x y < <(add_cue_button)
    [[ -n "${x:-}" && "$x" != none ]] || fail "no add button over the cue list"
    click "$x" "$y"
    menu_open() {
        snap
        (($(pixels differ "$before" "$work/now.ppm" $((gx + 100)) $((y + 10)) 260 180) > 3000))
    }
    poll 10 "the add menu opens" menu_open
    [[ "$row" == 1 ]] && keep add-cue-menu
    local i
    for ((i = 0; i < downs; i++)); do press Down; done
    press Return
    poll 10 "the cue \"$name\" is added" cue_row_named "$row"
}
add_template 6 1 "Pitch 5 min"
add_template 4 2 "Q&A 10 min"
log "two cues added from templates"

# The second cue: selected with a click, opened with Return. Its name is selected, ready to be
# typed over; Tab then goes through the speaker, the two modes, the minutes, the seconds, the
# fixed start's box and the warning threshold.
click $((gx + 150)) "$(cue_row_y 1)"
press Return
poll 10 "the cue editor opens" editor_save_button
xdotool type --delay 40 "Pitch express"
press Tab Tab Tab Tab Down Down Down Down # 5 min → 1 min
press Tab Tab Tab Down                     # warning 60 s → 30 s
# The auto-follow switch is clicked: Space, outside a text field, is the show's key.
read -r x y < <(editor_save_button)
click $((x - 363)) $((y - 216))            # auto-follow on
snap
keep cue-editor
click "$x" "$y"
poll 10 "the cue editor closes on Enregistrer" editor_closed
press ctrl+s
saved_show_is() {
    python3 - "$projects" "$@" <<'PY'
import glob, json, sys
folder, name, cues = sys.argv[1], sys.argv[2], sys.argv[3:]
files = glob.glob(folder + "/*.orvprjct")
if len(files) != 1:
    sys.exit(1)
show = json.load(open(files[0], encoding="utf-8"))
listed = [c["name"] for c in show["cues"]]
edited = [c for c in show["cues"] if c["name"] == "Pitch express"]
ok = (show["name"] == name and listed == cues and len(edited) == 1
      and edited[0]["duration"] == 60 and edited[0]["autoFollow"] is True
      and edited[0]["warningThreshold"] == 30 and edited[0]["mode"] == "duration")
sys.exit(0 if ok else 1)
PY
}
poll 10 "Ctrl+S saves the three cues, the edited one 1 min with auto-follow" \
    saved_show_is "$project_name" "Keynote 20 min" "Pitch express" "Q&A 10 min"
snap
keep three-cues
log "cue edited to 1 min with auto-follow, saved"

# Step 4: the alerts on "Retour scène", OSC in and out, applied.
configure_settings
log "settings: alerts on Retour scène, OSC on ports $listen_port and $send_port, applied"

# Step 5: the stage, full screen on the second monitor through the menu beside "Stage" (the
# main display, then the second one), and the confidence window.
buttons=$(top_bar_buttons)
read -r x y < <(awk '$3 <= 30' <<<"$buttons" | head -n 1 | centre_of)
[[ -n "${x:-}" ]] || fail "no display menu beside the Stage button"
snap
cp "$work/now.ppm" "$work/before-menu.ppm"
click "$x" "$y"
display_menu_open() {
    snap
    (($(pixels differ "$work/before-menu.ppm" "$work/now.ppm" $((gx + gw - 260)) $((y + 18)) 260 60) > 2000))
}
poll 10 "the stage's display menu opens" display_menu_open
keep stage-display-menu
press Down Down Return
poll 20 "the stage goes full screen on the second monitor" stage_fullscreen
read -r x y < <(top_bar_buttons | awk '$3 > 30' | tail -n 1 | centre_of)
click "$x" "$y"
poll 20 "the confidence window opens" confidence_window
log "confidence window at ${cx},${cy} (${cw}x${ch} on screen)"
snap
keep outputs-open

# Both outputs recorded from before the start: the alerts must sound on "Retour scène" only.
parec -d kairon_stage.monitor --format=s16le --rate=16000 --channels=1 --raw >"$work/stage.raw" &
helper_pids+=($!)
parec -d kairon_main.monitor --format=s16le --rate=16000 --channels=1 --raw >"$work/main.raw" &
helper_pids+=($!)
recording_started=$(now_ms)
sleep 0.5 # the recorders connect; only their start time matters

press space
show_started=$(now_ms)
log "Space pressed"
poll 10 "the cue's name goes out over OSC" osc_seen '/kairon/cue s "Pitch express"'
poll 10 "the remaining seconds go out over OSC" osc_seen '/kairon/remaining f 5[0-9]\.'
poll 10 "the running state goes out over OSC" osc_seen '/kairon/running i 1'
poll 15 "the stage's digits are green" stage_green
keep show-green
log "show running: OSC out, stage green"
poll 45 "the stage's digits turn yellow at the warning threshold" stage_yellow
yellow_at=$(seconds $(($(now_ms) - show_started)))
keep show-yellow
log "stage yellow ${yellow_at} s after Space"
# Seen within a few seconds of 30 s: the screenshots follow each other at the machine's pace.
python3 -c "import sys; sys.exit(0 if 28 <= $yellow_at <= 42 else 1)" ||
    fail "yellow ${yellow_at} s after Space, expected 30 s (1 min, warning at 30 s)"
(($(confidence_digits $state_warning) > $(confidence_pixels 5000))) || fail "the confidence window's digits are not yellow"

# Step 6: the blackout on the stage, the confidence window still counting.
press ctrl+b
poll 10 "Ctrl+B blacks out the stage" stage_black
keep blackout
cp "$work/now.ppm" "$work/blackout.ppm"
poll 10 "the confidence window keeps counting during the blackout" confidence_differs_from "$work/blackout.ppm"
(($(confidence_digits $state_warning) + $(confidence_digits $state_danger) > $(confidence_pixels 5000))) ||
    fail "the confidence window shows no time during the blackout"
log "stage black, confidence counting"

oscsend 127.0.0.1 "$listen_port" /kairon/message s "Merci de conclure"
poll 10 "the OSC message reaches the confidence window" confidence_message
stage_black || fail "the message shows through the blackout"
keep blackout-message
press ctrl+b
poll 10 "Ctrl+B lifts the blackout and the stage shows the message banner" stage_banner
keep stage-message
log "message banner on the stage after the blackout"

# The cue reaches zero at 60 s and the next one follows by itself.
poll 45 "the next cue follows by itself at zero" osc_seen '/kairon/cue s "Q&A 10 min"'
poll 10 "the stage counts the next cue in green" stage_green
keep auto-follow
log "auto-follow to the next cue"

# The sounds: the warning's bell on "Retour scène" when the digits turned yellow (then the
# danger's and the zero's), and nothing at all on "Régie".
sleep 1.5 # the zero's sound (0.9 s) ends in the recording
for pid in "${helper_pids[@]:1}"; do kill "$pid" 2>/dev/null || true; done
python3 "$here/sound.py" bursts "$work/stage.raw" 16000 >"$work/stage.bursts"
python3 "$here/sound.py" bursts "$work/main.raw" 16000 >"$work/main.bursts"
log "sounds on Retour scène (start end dBFS Hz): $(tr '\n' ';' <"$work/stage.bursts")"
[[ ! -s "$work/main.bursts" ]] || fail "sound on Régie, the default output: $(cat "$work/main.bursts")"
python3 - "$work/stage.bursts" "$(seconds $((show_started - recording_started)))" "$yellow_at" <<'PY' ||
import sys
bursts = [line.split() for line in open(sys.argv[1])]
space, yellow = float(sys.argv[2]), float(sys.argv[3])
if not bursts:
    sys.exit("nothing sounded on Retour scène")
start, _, _, frequency = bursts[0]
at = float(start) - space
if float(frequency) != 1318.51:
    sys.exit(f"the first sound is at {frequency} Hz, not the warning's bell")
if not (27 <= at <= 33):
    sys.exit(f"the warning's bell sounded {at:.1f} s after Space, expected 30 s")
if not (at - 1 <= yellow <= at + 10):
    sys.exit(f"the bell ({at:.1f} s) and the yellow digits ({yellow:.1f} s) are apart")
later = [float(b[3]) for b in bursts[1:]]
if 1760.0 not in later or 220.0 not in later:
    sys.exit(f"the danger's and the zero's sounds are missing: {later}")
PY
    fail "the alerts on Retour scène are not as expected"
log "warning bell recorded on Retour scène, silence on Régie"

# Step 7: the show stopped, the report and the rundown exported from the cue list's footer.
press ctrl+period
# The confidence window may cover the console: a click on the console's title bar brings it
# to the front.
click $((gx + gw / 2)) $((gy - 8))
list=$(cue_list_width)
export_y=$((gy + gh - 26))
footer_visible() {
    snap
    (($(pixels count "$work/now.ppm" $((gx + list - 90)) $((export_y - 16)) 80 32 $bg_input 1) > 800))
}
poll 10 "the console comes to the front with the cue list's footer" footer_visible
click $((gx + list - 10 - 32 - 6 - 16)) "$export_y"
poll 15 "the CSV report is written" file_there "$reports/Rapport_*.csv"
click $((gx + list - 10 - 16)) "$export_y"
poll 15 "the PDF rundown is written" file_there "$reports/Rundown_*.pdf"
snap
keep exports
grep -qF "$reports" "$work/revealed" 2>/dev/null || fail "the exports did not show their folder"
log "report and rundown exported"

# "Projets": saved, back to the library, the project listed with its detail line.
read -r x y < <(top_bar_buttons | head -n 1 | centre_of)
click "$x" "$y"
row_with_detail() {
    library_shows || return 1
    local row
    row=$(library_row) || return 1
    read -r rx ry rw rh <<<"$row"
    # Its name, white, over its detail line (date, cues, length), grey.
    (($(pixels count "$work/now.ppm" $((rx + 50)) "$ry" 400 $((rh / 2)) $text_primary 30) > 100)) &&
        (($(pixels count "$work/now.ppm" $((rx + 50)) $((ry + rh / 2)) 400 $((rh / 2)) $text_secondary 30) > 60))
}
poll 20 "\"Projets\" shows the library with the project's row and detail line" row_with_detail
keep library-project
poll 5 "the project is saved with its three cues" \
    saved_show_is "$project_name" "Keynote 20 min" "Pitch express" "Q&A 10 min"
log "back in the library, project saved"

quit_program
log "quit with Ctrl+Q"

# A second launch: the library lists the project.
launch
poll 60 "the splash shows again" splash_shows
click $((gx + gw / 2)) $((gy + gh / 2))
poll 30 "the library lists the project after a relaunch" row_with_detail
keep relaunch-library
log "the library lists the project after a relaunch"

# The exports' contents.
csv=$(compgen -G "$reports/Rapport_*.csv")
pdf=$(compgen -G "$reports/Rundown_*.pdf")
log "reports: $(ls "$reports" | tr '\n' ' ')"
grep -q "^Projet;$project_name" "$csv" || fail "the report does not name the project"
grep -q "^Pitch express;60;" "$csv" || fail "the report does not log the 1-min cue"
grep -q "^Q&A 10 min;600;" "$csv" || fail "the report does not log the cue that followed"
pdftotext -layout "$pdf" "$work/rundown.txt"
for text in "$project_name" "Keynote 20 min" "Pitch express" "Q&A 10 min" "3 cues"; do
    grep -qF "$text" "$work/rundown.txt" || fail "the rundown lacks \"$text\""
done

quit_program
log "passed in $(seconds $(($(now_ms) - started))) s"
