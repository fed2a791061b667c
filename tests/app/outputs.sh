#!/usr/bin/env bash
# The stage and confidence windows of the real program on a private X server, as an operator
# meets them in a venue, driven by clicks and keys (xdotool) and observed from outside (xwininfo,
# xprop, screenshots, the web API, OSC caught by oscdump):
# 1. one monitor, the console maximised: both outputs opened by their buttons leave the top bar,
#    the timer and the transport uncovered, the console keeps the keyboard, and each output
#    moves when dragged and resizes from its edge;
# 2. two monitors: both sent full screen to the second through their menus; the second monitor
#    removed while a cue runs (both park beside the console, showing the show, Space still
#    pauses and OSC still counts) and back (both return full screen there by themselves);
#    another monitor added while they wait does not take them;
# 3. the program launched again with the second monitor: each button puts its output back
#    full screen there;
# 4. "Projets": both outputs show the idle state, as the web API and OSC say.
# Usage: with-xvfb.sh outputs.sh KAIRON_BINARY
# With KAIRON_SCREENSHOT_DIR set, keeps a screenshot of every step there (outputs-NN-*.png).
set -euo pipefail
kairon=$1
here=$(cd "$(dirname "$0")" && pwd)
source "$here/../support/scratch.sh"
source "$here/../support/web-sandbox.sh"
source "$here/../support/window-geometry.sh"
code=K7M2P9QX
web_sandbox "$dir" "$code"
listen=$(free_udp_port)
send=$(free_udp_port)
conf=$XDG_CONFIG_HOME/Kairon/Kairon.conf
printf 'oscListenEnabled=true\noscListenPort=%d\noscSendEnabled=true\noscSendHost=127.0.0.1\noscSendPort=%d\n' \
    "$listen" "$send" >> "$conf"
export QT_QPA_PLATFORM=xcb QT_QUICK_BACKEND=software TZ=Europe/Paris
python3 - > "$dir/gala.orvprjct" <<'PY'
import json
print(json.dumps({"id": "0B7E5C1A-2D3F-4A5B-9C6D-7E8F9A0B1C2D", "name": "Gala des lumières",
                  "cues": [{"name": f"Cue {i}", "duration": 600} for i in range(1, 21)]}))
PY

# state_is EXPRESSION: the web API's state document, as `s`, makes the Python expression true.
state_is() { curl -s "$base/api/state" | python3 -c "import json,sys; s=json.load(sys.stdin); sys.exit(0 if ($1) else 1)"; }
pixels() { python3 "$here/screen.py" "$@"; }
now() { echo "${EPOCHREALTIME/,/.}"; }
# poll SECONDS COMMAND…: true once COMMAND succeeds, false when it never did in time (whole seconds).
poll() {
    local deadline=$((${EPOCHREALTIME/[.,]/} + $1 * 1000000))
    shift
    until "$@" 2>/dev/null; do
        ((${EPOCHREALTIME/[.,]/} < deadline)) || return 1
        sleep 0.05
    done
}
shot=0
snap() { import -window root "$dir/now.ppm"; }
# A screenshot of the whole X screen, kept as outputs-NN-NAME.png when KAIRON_SCREENSHOT_DIR is set.
keep() {
    [[ -n ${KAIRON_SCREENSHOT_DIR:-} ]] || return 0
    mkdir -p "$KAIRON_SCREENSHOT_DIR"
    shot=$((shot + 1))
    import -window root "$KAIRON_SCREENSHOT_DIR/outputs-$(printf %02d $shot)-$1.png"
}

# The interface's colours.
accent=255,107,0
bg_elevated=35,35,40
text_muted=112,112,120
state_normal=46,204,113
state_danger=231,76,60
# The operator window's layout: the menu bar, then the console's top bar.
menu_bar=28
top_bar=56

window_id() { xdotool search --onlyvisible --name "$1" 2>/dev/null | head -n 1; }
console_id() { window_id '^Kairon$'; }
stage_id() { window_id 'Kairon — Stage$'; }
confidence_id() { window_id 'Kairon — Confidence$'; }
# place ID: "x y w h" of the window's content on the screen.
place() { geometry "$1"; echo "$gx $gy $gw $gh"; }
fullscreen() { xprop -id "$1" _NET_WM_STATE | grep -q _NET_WM_STATE_FULLSCREEN; }
# full_screen_on ID X Y W H: the window is full screen, exactly there.
full_screen_on() { [[ $(place "$1") == "$2 $3 $4 $5" ]] && fullscreen "$1"; }
both_on_monitor_2() { full_screen_on "$(stage_id)" 1920 0 1280 720 && full_screen_on "$(confidence_id)" 1920 0 1280 720; }
# overlap "X Y W H" "X Y W H": the two rectangles share a pixel.
overlap() {
    python3 -c "
import sys
a, b = [list(map(int, r.split())) for r in sys.argv[1:3]]
sys.exit(0 if a[0] < b[0] + b[2] and b[0] < a[0] + a[2] and a[1] < b[1] + b[3] and b[1] < a[1] + a[3] else 1)" "$1" "$2"
}
# inside "X Y W H" "X Y W H": the first lies within the second.
inside() {
    python3 -c "
import sys
a, b = [list(map(int, r.split())) for r in sys.argv[1:3]]
sys.exit(0 if b[0] <= a[0] and a[0] + a[2] <= b[0] + b[2] and b[1] <= a[1] and a[1] + a[3] <= b[1] + b[3] else 1)" "$1" "$2"
}

# The console's top bar buttons filled with the elevated grey, left to right, as "x y w h":
# "Projets", "Doors", "Stage", its display arrow, "Confidence", its display arrow.
top_bar_buttons() {
    geometry "$(console_id)"
    snap
    pixels blobs "$dir/now.ppm" "$gx" $((gy + menu_bar)) "$gw" "$top_bar" $bg_elevated 1 2>/dev/null |
        awk '$4 >= 26 && $3 >= 18' | sort -n -k1,1
}
centre_of() { awk '{print $1 + int($3 / 2), $2 + int($4 / 2)}'; }
# button N: the centre of the Nth wide button (1 "Projets", 3 "Stage", 4 "Confidence");
# arrow N: of the Nth display arrow (1 the stage's, 2 the confidence's).
button() { top_bar_buttons | awk '$3 > 30' | sed -n "$1p" | centre_of; }
arrow() { top_bar_buttons | awk '$3 <= 30' | sed -n "$1p" | centre_of; }
click_at() { xdotool mousemove "$1" "$2" click 1; xdotool mousemove 960 1070; }
# send_to_monitor_2 N NAME: "Plein écran sur : VIRTUAL-2" in the menu under display arrow N,
# the open menu kept as NAME.
send_to_monitor_2() {
    local x y
    read -r x y < <(arrow "$1")
    click_at "$x" "$y"
    sleep 0.5 # the menu opens
    keep "$2"
    xdotool key Down Down Return
}

launch() {
    start_kairon "$kairon" "$dir/gala.orvprjct"
    # After the splash, the console: the play button's orange in its main panel, and its top bar.
    poll 20 console_shown || fail "the console did not show"
}
console_shown() {
    geometry "$(console_id)" || return 1
    snap
    (($(pixels count "$dir/now.ppm" $((gx + $(cue_list_width))) $((gy + menu_bar + top_bar)) $((gw - $(cue_list_width))) $((gh / 2)) $accent 6) > 3500)) &&
        # the splash has as much orange: the top bar's six buttons tell the console
        (($(top_bar_buttons | wc -l) >= 6))
}
quit() { kill -TERM "$kairon_pid"; wait "$kairon_pid" 2>/dev/null || true; }

# What of the console must stay uncovered, "x y w h" each: the menu and top bars, and the main
# panel from its top to the foot of the transport (the play button, the large orange square).
console_controls() {
    local list play
    geometry "$(console_id)"
    list=$(cue_list_width)
    snap
    play=$(pixels blobs "$dir/now.ppm" $((gx + list)) $((gy + menu_bar + top_bar)) $((gw - list)) $((gh * 3 / 4)) $accent 6 |
           awk '$3 >= 60 && $3 <= 80 && $4 >= 60 && $4 <= 80 {print $2 + $4; exit}')
    [[ -n $play ]] || { fail "no play button in the console"; return; }
    echo "$gx $gy $gw $((menu_bar + top_bar))"
    echo "$((gx + list)) $((gy + menu_bar + top_bar)) $((gw - list)) $((play + 8 - gy - menu_bar - top_bar))"
}
# uncovered WHAT ID…: none of the windows covers the console's controls; each is 16:9.
uncovered() {
    local what=$1 id r
    shift
    mapfile -t controls < <(console_controls)
    for id in "$@"; do
        r=$(place "$id")
        for c in "${controls[@]}"; do
            overlap "$r" "$c" && fail "$what: $(xdotool getwindowname "$id") at $r covers the console's $c"
        done
        read -r _ _ w h <<<"$r"
        python3 -c "import sys; sys.exit(0 if abs($w / $h - 16 / 9) < 0.02 else 1)" ||
            fail "$what: $(xdotool getwindowname "$id") is ${w}x$h, not 16:9"
    done
    return 0
}
console_has_the_keyboard() {
    [[ $(xdotool getactivewindow) == "$(console_id)" && $(xdotool getwindowfocus) == "$(console_id)" ]]
}
# The toast's icon at the top of the console, in the kind's colour.
toast_shows() {
    geometry "$(console_id)"
    snap
    (($(pixels count "$dir/now.ppm" $((gx + gw / 2 - 350)) "$gy" 700 70 "$1" 12) > 20))
}
# drag ID DX DY: a press inside the window (its middle, or at X Y given after), a move and a release.
drag() {
    local id=$1 dx=$2 dy=$3 x y
    geometry "$id"
    x=${4:-$((gx + gw / 2))} y=${5:-$((gy + gh / 2))}
    xdotool mousemove "$x" "$y" mousedown 1
    sleep 0.2
    for step in 1 2 3 4 5; do
        xdotool mousemove $((x + dx * step / 5)) $((y + dy * step / 5))
        sleep 0.05
    done
    sleep 0.2
    xdotool mouseup 1
    xdotool mousemove 960 1070
}

# ---- 1. One monitor, the console maximised -----------------------------------------------------
xrandr --delmonitor VIRTUAL-2 >/dev/null
launch
cid=$(console_id)
geometry "$cid"
top=$(xprop -id "$cid" _NET_FRAME_EXTENTS | awk -F', ' '{print $3}')
# A double click on its title bar maximises it (openbox's default).
xdotool mousemove $((gx + gw / 2)) $((gy - top / 2)) click --repeat 2 --delay 100 1
poll 5 bash -c "[[ \$(xwininfo -id $cid | awk '/Width:/ {print \$NF}') -ge 1900 ]]" || fail "the console was not maximised"
poll 5 console_shown
keep one-monitor-console
read -r x y < <(button 3)
click_at "$x" "$y"
read -r x y < <(button 4)
click_at "$x" "$y"
poll 10 bash -c '[[ -n $(xdotool search --onlyvisible --name "Kairon — Stage$") && -n $(xdotool search --onlyvisible --name "Kairon — Confidence$") ]]' ||
    fail "the outputs did not open"
sleep 0.5 # both drawn
keep one-monitor-outputs-open
sid=$(stage_id) fid=$(confidence_id)
echo "console $(place "$cid"), stage $(place "$sid"), confidence $(place "$fid")"
uncovered "one monitor" "$sid" "$fid"
overlap "$(place "$sid")" "$(place "$fid")" && fail "the stage and the confidence overlap"
[[ $(place "$sid") == *" 480 270" ]] || fail "the stage is $(place "$sid"), 480x270 expected (a quarter of 1920, 16:9)"
fullscreen "$sid" && fail "the stage opened full screen"
console_has_the_keyboard || fail "an output took the keyboard"
xdotool key space
poll 3 state_is 's["running"]' ||
    fail "Space did not start the cue"

# Dragged from their middle, they move; dragged from an edge, they resize.
read -r sx sy sw sh < <(place "$sid")
drag "$sid" 300 -150
poll 3 bash -c "[[ \"\$(xwininfo -id $sid | awk '/Absolute upper-left [XY]/ {print \$NF}' | tr '\n' ' ')\" == '$((sx + 300)) $((sy - 150)) ' ]]" ||
    fail "the stage dragged by 300,-150 from $sx,$sy is at $(place "$sid")"
read -r fx fy fw fh < <(place "$fid")
drag "$fid" 0 -300
poll 3 bash -c "[[ \"\$(xwininfo -id $fid | awk '/Absolute upper-left [XY]/ {print \$NF}' | tr '\n' ' ')\" == '$fx $((fy - 300)) ' ]]" ||
    fail "the confidence dragged by 0,-300 from $fx,$fy is at $(place "$fid")"
read -r sx sy sw sh < <(place "$sid")
drag "$sid" 120 0 $((sx + sw - 3)) $((sy + sh / 2))
poll 3 bash -c "[[ \$(xwininfo -id $sid | awk '/Width:/ {print \$NF}') == $((sw + 120)) ]]" ||
    fail "the stage's right edge dragged by 120 left it $(place "$sid")"
keep one-monitor-outputs-dragged
console_has_the_keyboard || fail "dragging an output took the keyboard"
xdotool key space
poll 3 state_is 's["paused"]' || fail "Space after the drags did not pause"
post stop
quit
xrandr --setmonitor VIRTUAL-2 1280/338x720/190+1920+0 none >/dev/null

# ---- 2. Two monitors: sent to the second, which goes and comes back ------------------------------
oscdump -L "$send" > "$dir/osc.txt" 2>&1 &
pids+=($!)
launch
cid=$(console_id)
keep two-monitors-console
send_to_monitor_2 1 stage-display-menu
poll 10 bash -c "[[ -n \$(xdotool search --onlyvisible --name 'Kairon — Stage\$') ]]"
sid=$(stage_id)
poll 10 full_screen_on "$sid" 1920 0 1280 720 || fail "the stage did not go full screen on VIRTUAL-2"
send_to_monitor_2 2 confidence-display-menu
poll 10 bash -c "[[ -n \$(xdotool search --onlyvisible --name 'Kairon — Confidence\$') ]]"
fid=$(confidence_id)
poll 10 full_screen_on "$fid" 1920 0 1280 720 || fail "the confidence did not go full screen on VIRTUAL-2"
grep -q '^stageDisplayName=VIRTUAL-2$' "$conf" && grep -q '^stageDisplayGeometry=1280x720+1920+0$' "$conf" &&
    grep -q '^confidenceDisplayName=VIRTUAL-2$' "$conf" && grep -q '^confidenceDisplayGeometry=1280x720+1920+0$' "$conf" ||
    { fail "the displays the outputs were sent to are not in the preferences"; cat "$conf"; }
post start '{"index":2}'
sleep 1.2
keep two-monitors-both-on-monitor-2
console_has_the_keyboard || fail "the console lost the keyboard to the outputs"

parked() {
    local id
    for id in "$sid" "$fid"; do
        fullscreen "$id" && return 1
        inside "$(place "$id")" "0 0 1920 1080" || return 1
    done
}
# out_of_full_screen ID…: none of the windows is full screen any more (one quick look each).
out_of_full_screen() { local id; for id in "$@"; do fullscreen "$id" && return 1; done; return 0; }
# timed WHAT COMMAND…: in the background (its id in $timed_pid), the seconds until COMMAND
# first succeeds, in $dir/WHAT.
timed() {
    local what=$1 from
    shift
    from=$(now)
    (poll 8 "$@" && python3 -c "print(round($(now) - $from, 2))" > "$dir/$what") &
    timed_pid=$!
}
xrandr --delmonitor VIRTUAL-2 >/dev/null
timed unplugged out_of_full_screen "$sid" "$fid"
# The toast first: it shows for 5 s.
poll 4 toast_shows $state_danger || fail "no warning toast when VIRTUAL-2 went"
poll 5 parked || fail "the outputs did not park when VIRTUAL-2 went: stage $(place "$sid"), confidence $(place "$fid")"
wait "$timed_pid" || true
echo "out of full screen $(cat "$dir/unplugged") s after VIRTUAL-2 went; parked: stage $(place "$sid"), confidence $(place "$fid")"
keep monitor-2-removed-outputs-parked
uncovered "parked" "$sid" "$fid"
geometry "$cid"
for id in "$sid" "$fid"; do
    overlap "$(place "$id")" "$gx $((gy - 30)) $gw $((gh + 30))" && fail "$(xdotool getwindowname "$id") parked over the console"
done
overlap "$(place "$sid")" "$(place "$fid")" && fail "the parked outputs overlap"
# Still showing the show: the running cue's green digits in each.
snap
for id in "$sid" "$fid"; do
    read -r x y w h < <(place "$id")
    (($(pixels count "$dir/now.ppm" "$x" "$y" "$w" "$h" $state_normal 12) > 300)) ||
        fail "$(xdotool getwindowname "$id") does not show the running cue once parked"
done
console_has_the_keyboard || fail "the console lost the keyboard when the outputs parked"
osc_lines=$(wc -l < "$dir/osc.txt")
xdotool key space
poll 3 state_is 's["paused"]' || fail "Space did not pause with the outputs parked"
xdotool key space
poll 3 state_is 'not s["paused"]' || fail "Space did not resume with the outputs parked"
sleep 2.5
counted=$(tail -n +$((osc_lines + 1)) "$dir/osc.txt" | grep -c '/kairon/remaining f' || true)
((counted >= 2)) || fail "OSC sent $counted remaining times in the 2.5 s after the park"

xrandr --setmonitor VIRTUAL-2 1280/338x720/190+1920+0 none >/dev/null
timed replugged bash -c "xprop -id $sid _NET_WM_STATE | grep -q FULLSCREEN && xprop -id $fid _NET_WM_STATE | grep -q FULLSCREEN"
poll 3 toast_shows $state_normal || fail "no toast when VIRTUAL-2 came back"
poll 8 both_on_monitor_2 || fail "the outputs did not go back full screen on VIRTUAL-2: stage $(place "$sid"), confidence $(place "$fid")"
wait "$timed_pid" || true
echo "full screen again $(cat "$dir/replugged") s after VIRTUAL-2 came back"
keep monitor-2-back-outputs-returned
console_has_the_keyboard || fail "the console lost the keyboard when the outputs came back"

# Another monitor appearing while they wait does not take them; their own does.
xrandr --delmonitor VIRTUAL-2 >/dev/null
poll 5 parked || fail "the outputs did not park the second time"
sleep 0.5
before="$(place "$sid") / $(place "$fid")"
xrandr --setmonitor VIRTUAL-3 1280/338x360/95+1920+720 none >/dev/null
sleep 2
keep monitor-3-added-outputs-stay
[[ "$(place "$sid") / $(place "$fid")" == "$before" ]] && parked ||
    fail "another monitor took the outputs: $before became $(place "$sid") / $(place "$fid")"
xrandr --setmonitor VIRTUAL-2 1280/338x720/190+1920+0 none >/dev/null
poll 8 both_on_monitor_2 || fail "the outputs did not go back to VIRTUAL-2 with VIRTUAL-3 there"
xrandr --delmonitor VIRTUAL-3 >/dev/null
sleep 1.5
both_on_monitor_2 || fail "VIRTUAL-3 going moved the outputs off VIRTUAL-2"
keep monitor-3-removed-outputs-stay
quit

# ---- 3. The next launch: each button puts its output back on VIRTUAL-2 ---------------------------
launch
read -r x y < <(button 3)
click_at "$x" "$y"
poll 10 bash -c "[[ -n \$(xdotool search --onlyvisible --name 'Kairon — Stage\$') ]]"
sid=$(stage_id)
poll 10 full_screen_on "$sid" 1920 0 1280 720 || fail "the Stage button did not put the stage on VIRTUAL-2: $(place "$sid")"
read -r x y < <(button 4)
click_at "$x" "$y"
poll 10 bash -c "[[ -n \$(xdotool search --onlyvisible --name 'Kairon — Confidence\$') ]]"
fid=$(confidence_id)
poll 10 full_screen_on "$fid" 1920 0 1280 720 || fail "the Confidence button did not put the confidence on VIRTUAL-2: $(place "$fid")"
keep relaunch-outputs-on-monitor-2

# ---- 4. "Projets": nothing of the show stays on the outputs ---------------------------------------
post start '{"index":4}'
post message '{"text":"Merci de conclure","urgent":false}'
post freeze
post blackout
sleep 0.5
xdotool windowraise "$sid"
sleep 0.3
snap
[[ $(pixels dark "$dir/now.ppm" 1920 0 1280 720 4) == 1.0000 ]] || fail "the stage is not black in the blackout"
keep show-on-air-stage-black
osc_lines=$(wc -l < "$dir/osc.txt")
read -r x y < <(button 1)
click_at "$x" "$y"
poll 5 state_is 's["activeCueIndex"] is None' || fail "a cue is still active after Projets"
state_is 'not s["running"] and not s["paused"] and s.get("message") is None and not s["blackout"] and not s["freeze"] and not s["clockMode"] and s["cueName"] == "—" and s.get("nextCueName") is None' ||
    fail "the state after Projets is not idle: $(curl -s "$base/api/state" | head -c 400)"
# The stage: no longer black, its digits muted (no cue), no banner.
idle_stage() {
    snap
    [[ $(pixels dark "$dir/now.ppm" 1920 0 1280 720 4) != 1.0000 ]] &&
        (($(pixels count "$dir/now.ppm" 1920 150 1280 400 $text_muted 10) > 3000)) &&
        (($(pixels count "$dir/now.ppm" 1920 0 1280 720 $accent 12) == 0)) &&
        (($(pixels count "$dir/now.ppm" 1920 0 1280 720 $state_normal 12) == 0))
}
poll 3 idle_stage || fail "the stage does not show the idle state after Projets"
keep projets-stage-idle
xdotool windowraise "$fid"
idle_confidence() {
    snap
    (($(pixels count "$dir/now.ppm" 1920 200 1280 300 $text_muted 10) > 2000)) &&
        (($(pixels count "$dir/now.ppm" 1920 0 1280 720 $accent 12) == 0)) &&
        (($(pixels count "$dir/now.ppm" 1920 0 1280 720 $state_normal 12) == 0))
}
poll 3 idle_confidence || fail "the confidence does not show the idle state after Projets"
keep projets-confidence-idle
poll 3 bash -c "tail -n +$((osc_lines + 1)) '$dir/osc.txt' | grep -q '/kairon/running i 0'" ||
    fail "OSC did not say the show stopped"
quit

((failures == 0)) || { echo "$failures failure(s)"; exit 1; }
echo "outputs: every step passed"
