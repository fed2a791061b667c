# The acceptance test's eyes and hands on the program's windows: where its controls are and how
# each state shows on the screen, read from the views' layout and the interface's colours, and
# the settings window's step. Sourced by acceptance.sh, which provides snap, pixels, poll,
# click, press, keep, geometry and the colour names.

# ---- The program's windows, read on the screen -----------------------------------------------

# The operator window's layout, from its QML: the menu bar, then the page; in the console the
# top bar, then the cue list on the left (cue_list_width).
menu_bar=28
top_bar=56
# The centre of the cue list's row I (0 first): below the list's header (14 + 30 + 8), rows of
# 64 spaced by 8.
cue_row_y() { echo $((gy + menu_bar + top_bar + 52 + 72 * $1 + 32)); }

operator_window() {
    local id
    id=$(window_id '^Kairon$')
    [[ -n "$id" ]] || return 1
    geometry "$id"
}

# The splash: the logo's orange square and wordmark on the deep background.
splash_shows() {
    operator_window || return 1
    snap
    (($(pixels count "$work/now.ppm" "$gx" $((gy + menu_bar)) "$gw" $((gh - menu_bar)) $bg_deep 2) > gw * gh / 2)) &&
        (($(pixels count "$work/now.ppm" $((gx + gw / 4)) $((gy + gh / 4)) $((gw / 2)) $((gh / 2)) $accent 10) > 3000))
}

# The library page: its background, and "Nouveau projet" filled orange at the header's right.
library_shows() {
    snap
    (($(pixels count "$work/now.ppm" "$gx" $((gy + menu_bar)) "$gw" $((gh - menu_bar)) $bg_main 1) > gw * gh / 2)) &&
        new_project_button >/dev/null
}
new_project_button() {
    local at
    at=$(pixels centre "$work/now.ppm" $((gx + gw - 300)) $((gy + menu_bar + 28)) 300 56 $accent 6)
    [[ "$at" != none ]] && (($(pixels count "$work/now.ppm" $((gx + gw - 300)) $((gy + menu_bar + 28)) 300 56 $accent 6) > 2000)) &&
        echo "$at"
}
# The library's empty state: its "Créer un projet" button, orange, in the middle of the page.
library_empty() {
    (($(pixels count "$work/now.ppm" $((gx + gw / 2 - 150)) $((gy + gh / 2)) 300 200 $accent 6) > 2000)) &&
        ! library_row >/dev/null
}
# A project's row: a panel-coloured band across the list, as "x y w h".
library_row() {
    pixels blobs "$work/now.ppm" "$gx" $((gy + menu_bar + 100)) "$gw" 200 $bg_panel 1 2>/dev/null |
        awk -v min=$((gw * 3 / 4)) '$3 >= min && $4 >= 55 && $4 <= 75 {print $1, $2, $3, $4; found=1; exit} END {exit !found}'
}

# The project sheet is open: the page behind it is dimmed, so "Nouveau projet" is no longer the
# interface's orange, and the sheet's confirm button sits at its lower right.
sheet_confirm_button() {
    snap
    local count
    count=$(pixels count "$work/now.ppm" $((gx + gw / 2)) $((gy + gh / 2)) $((gw / 2 - 280)) $((gh / 2)) $accent 6)
    ((count > 2000)) && pixels centre "$work/now.ppm" $((gx + gw / 2)) $((gy + gh / 2)) $((gw / 2 - 280)) $((gh / 2)) $accent 6
}
sheet_open() {
    snap
    ! new_project_button >/dev/null &&
        (($(pixels count "$work/now.ppm" $((gx + gw / 2 - 280)) $((gy + 100)) 560 $((gh - 200)) $bg_panel 1) > 50000))
}

# The console: the play button, a large orange square, in the transport under the timer.
console_shows() {
    snap
    local list
    list=$(cue_list_width)
    (($(pixels count "$work/now.ppm" $((gx + list)) $((gy + menu_bar + top_bar)) $((gw - list)) $((gh / 2)) $accent 6) > 3500))
}
# Row I of the cue list has a name: white text at the left of the row.
cue_row_named() {
    snap
    (($(pixels count "$work/now.ppm" $((gx + 50)) $(($(cue_row_y "$1") - 24)) 200 22 $text_primary 30) > 40))
}
# The cue list header's "+", orange, at the right of "CUES".
add_cue_button() {
    local list
    list=$(cue_list_width)
    pixels centre "$work/now.ppm" $((gx + list - 60)) $((gy + menu_bar + top_bar + 8)) 60 40 $accent 10
}
# The cue editor is open: its "Enregistrer", filled orange, at its lower right.
editor_save_button() {
    snap
    local x=$((gx + gw / 2 + 60)) y=$((gy + gh / 2 + 100))
    (($(pixels count "$work/now.ppm" $x $y 200 $((gh / 2 - 120)) $accent 6) > 2000)) &&
        pixels centre "$work/now.ppm" $x $y 200 $((gh / 2 - 120)) $accent 6
}
editor_closed() { ! editor_save_button >/dev/null; }

# The console's top bar buttons on the grey they are filled with, left to right, as
# "x y w h": "Projets", "Doors", "Stage", the stage's display menu (the narrow one),
# "Confidence", the confidence's display menu.
top_bar_buttons() {
    snap
    pixels blobs "$work/now.ppm" "$gx" $((gy + menu_bar)) "$gw" "$top_bar" $bg_elevated 1 2>/dev/null |
        awk '$4 >= 26 && $3 >= 18' | sort -n -k1,1
}
centre_of() { awk '{print $1 + int($3 / 2), $2 + int($4 / 2)}'; }

# The stage on the second monitor, 1280x720 at 1920,0.
stage_x=1920 stage_y=0 stage_w=1280 stage_h=720
stage_fullscreen() {
    local id gx gy gw gh
    id=$(window_id 'Stage$')
    [[ -n "$id" ]] || return 1
    geometry "$id"
    [[ "$gx,$gy,$gw,$gh" == "$stage_x,$stage_y,$stage_w,$stage_h" ]] &&
        xprop -id "$id" _NET_WM_STATE | grep -q _NET_WM_STATE_FULLSCREEN
}
# Pixels of a colour in the stage's middle band, where its digits are.
stage_digits() {
    pixels count "$work/now.ppm" $stage_x $((stage_y + 200)) $stage_w 300 "$1" 12
}
stage_green() { snap; (($(stage_digits $state_normal) > 8000)); }
stage_yellow() { snap; (($(stage_digits $state_warning) > 8000)) && (($(stage_digits $state_normal) < 500)); }
stage_black() {
    snap
    [[ $(pixels dark "$work/now.ppm" $stage_x $stage_y $stage_w $stage_h 4) == 1.0000 ]]
}
# The message banner: its orange text in the lower part of the stage, above the digits.
stage_banner() {
    snap
    (($(pixels count "$work/now.ppm" $stage_x $((stage_y + stage_h / 2 + 80)) $stage_w $((stage_h / 2 - 80)) $accent 12) > 3000)) &&
        (($(stage_digits $state_warning) + $(stage_digits $state_danger) > 8000))
}

# The confidence window where the window manager put it: cx cy cw ch, its part on the screen.
confidence_window() {
    local id gx gy gw gh
    id=$(window_id 'Confidence$')
    [[ -n "$id" ]] || return 1
    geometry "$id"
    cx=$gx cy=$gy cw=$gw ch=$gh
    ((cx + cw > 3200)) && cw=$((3200 - cx))
    ((cy + ch > 1080)) && ch=$((1080 - cy))
    ((cw >= 240 && ch >= 135))
}
# How many pixels a count of N at 1280 wide is at the confidence window's width: its sizes are
# fractions of its width, and it opens as a small window beside the console.
confidence_pixels() { echo $(($1 * cw * cw / (1280 * 1280))); }
# Its time, in the middle third of its height (the wall clock is above, the next cue below).
confidence_digits() {
    pixels count "${2:-$work/now.ppm}" "$cx" $((cy + ch * 2 / 5)) "$cw" $((ch / 3)) "$1" 12
}
confidence_differs_from() {
    snap
    (($(pixels differ "$1" "$work/now.ppm" "$cx" $((cy + ch * 2 / 5)) "$cw" $((ch / 3))) > $(confidence_pixels 500)))
}
# The message, orange, at the confidence window's lower right.
confidence_message() {
    snap
    (($(pixels count "$work/now.ppm" $((cx + cw / 2)) $((cy + ch * 4 / 5)) $((cw / 2)) $((ch / 5)) $accent 12) > $(confidence_pixels 1000)))
}

osc_seen() { grep -qE -- "$1" "$work/osc.txt"; }
file_there() { compgen -G "$1" >/dev/null; }

launch() {
    log "launching $kairon"
    (cd "$HOME" && exec "$kairon") >>"$work/kairon.log" 2>&1 &
    kairon_pid=$!
}

quit_program() {
    press ctrl+q
    local deadline=$(($(date +%s) + 30))
    while kill -0 "$kairon_pid" 2>/dev/null; do
        (($(date +%s) < deadline)) || fail "Ctrl+Q did not quit the program"
        sleep 0.2
    done
    local status=0
    wait "$kairon_pid" || status=$?
    kairon_pid=
    ((status == 0)) || fail "the program ended with status $status"
}

# ---- Step 4: the settings -------------------------------------------------------------------

# The settings window (520x460, fixed) where the window manager put it: wx wy.
settings_window() {
    local id gx gy gw gh
    id=$(window_id '^Réglages$')
    [[ -n "$id" ]] || return 1
    geometry "$id"
    wx=$gx wy=$gy
    ((gw == 520 && gh == 460))
}
# What the settings wrote in the preferences file.
stored() { grep -qxF "$1" "$XDG_CONFIG_HOME/Kairon/Kairon.conf" 2>/dev/null; }
# The OSC tab's status line: its check-mark icon, green, at the line's left.
osc_listening_line() {
    snap
    (($(pixels count "$work/now.ppm" $((wx + 18)) $((wy + 296)) 24 26 46,204,113 8) > 60))
}
# Replaces the text of the field at X Y (in the window) with TEXT, as a person would.
retype() {
    click $((wx + $1)) $((wy + $2))
    press ctrl+a BackSpace
    xdotool type --delay 40 "$3"
}

# Opened from the console with Ctrl+,; the places of its controls come from its QML layout (tabs
# along the top, each tab's content 20 from the edges).
configure_settings() {
    press ctrl+comma
    poll 20 "Ctrl+, opens the settings" settings_window
    snap
    keep settings-opened
    # "Général": the alert output menu, opened with a click; "Retour scène" is its third entry,
    # after the system output and "Régie".
    click $((wx + 150)) $((wy + 129))
    press Down Down Return
    poll 10 "the alerts' output is stored as Retour scène" stored "alertOutputUID=kairon_stage"
    snap
    keep settings-alert-output
    # "OSC", the second of five tabs: receiving on, its port; sending on, its port; applied.
    click $((wx + 158)) $((wy + 32))
    click $((wx + 38)) $((wy + 96))
    poll 10 "receiving OSC is stored as on" stored "oscListenEnabled=true"
    retype 112 128 "$listen_port"
    click $((wx + 38)) $((wy + 166))
    poll 10 "sending OSC is stored as on" stored "oscSendEnabled=true"
    retype 340 198 "$send_port"
    poll 10 "the receiving port is stored" stored "oscListenPort=$listen_port"
    poll 10 "the sending port is stored" stored "oscSendPort=$send_port"
    click $((wx + 133)) $((wy + 272))
    poll 10 "the status line says OSC listens" osc_listening_line
    keep settings-osc-applied
    # Closed as any window, with the window manager's key.
    press alt+F4
    poll 10 "the settings close" bash -c "! xdotool search --onlyvisible --name '^Réglages$' >/dev/null"
}
