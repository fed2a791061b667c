# Sourced by the scripts that click in the real program's windows.
#
# geometry WINDOW_ID: sets gx gy gw gh to the window's place on the screen, its content without
# the window manager's frame (xdotool's own figures include part of it).
geometry() {
    local info
    info=$(xwininfo -id "$1")
    gx=$(awk '/Absolute upper-left X/ {print $NF}' <<<"$info")
    gy=$(awk '/Absolute upper-left Y/ {print $NF}' <<<"$info")
    gw=$(awk '/Width:/ {print $NF}' <<<"$info")
    gh=$(awk '/Height:/ {print $NF}' <<<"$info")
}

# The width of the console's cue list, from its QML: a third of a 1150-wide window set by
# geometry, its share growing to two fifths at 1920, from 320 to 800 wide.
cue_list_width() { python3 -c "print(round(max(320, min(800, $gw * (0.33 + 0.07 * min(max(($gw - 1150) / 770, 0), 1))))))"; }
