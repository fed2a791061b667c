#!/usr/bin/env bash
# Runs a command on a private X server of its own: Xvfb with one 3200x1080 screen split into two
# monitors, VIRTUAL-1 (1920x1080 at 0,0) and VIRTUAL-2 (1280x720 at 1920,0), managed by openbox,
# with DISPLAY, XAUTHORITY and QT_QPA_PLATFORM=xcb set for it. Everything runs in a temporary
# home; the server and the window manager stop when the command ends. Several can run at once:
# the server picks a free display number itself.
set -euo pipefail

dir=$(mktemp -d)
xvfb_pid=
wm_pid=
command_pid=
cleanup() {
    set +e
    local pid
    for pid in "$command_pid" "$wm_pid" "$xvfb_pid"; do
        [[ -n "$pid" ]] || continue
        kill "$pid" 2>/dev/null
        wait "$pid" 2>/dev/null
    done
    rm -rf "$dir"
}
trap cleanup EXIT
# Stopped from outside (a test timeout, Ctrl-C): stop the command and the servers too.
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

export HOME=$dir/home XDG_CONFIG_HOME=$dir/home/.config XDG_CACHE_HOME=$dir/home/.cache
export XDG_DATA_HOME=$dir/home/.local/share XDG_RUNTIME_DIR=$dir/run
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
unset WAYLAND_DISPLAY

# One cookie for the server and its clients. The server reads every entry of its file, whatever
# display it names; the clients' entry is written once the display number is known.
cookie=$(od -An -N16 -tx1 /dev/urandom | tr -d ' \n')
xauth -q -f "$dir/server.auth" add :0 . "$cookie" 2>/dev/null

# -displayfd: the server takes the first free display number and writes it once it accepts
# connections. -noreset keeps the monitors when the last client (xrandr) disconnects.
Xvfb -displayfd 3 -screen 0 3200x1080x24 -nolisten tcp -noreset -auth "$dir/server.auth" \
    3>"$dir/display" 2>"$dir/xvfb.log" &
xvfb_pid=$!
for _ in $(seq 200); do
    [[ -s "$dir/display" ]] && break
    kill -0 "$xvfb_pid" 2>/dev/null || { cat "$dir/xvfb.log" >&2; exit 1; }
    sleep 0.05
done
number=$(tr -dc 0-9 <"$dir/display")
[[ -n "$number" ]] || { echo "Xvfb did not start" >&2; cat "$dir/xvfb.log" >&2; exit 1; }

export DISPLAY=:$number XAUTHORITY=$dir/client.auth
xauth -q add "$DISPLAY" . "$cookie" 2>/dev/null

xrandr --setmonitor VIRTUAL-1 1920/508x1080/286+0+0 screen >/dev/null
xrandr --setmonitor VIRTUAL-2 1280/338x720/190+1920+0 none >/dev/null
# French letters get keys of their own (on keycodes the server leaves empty), as on a French
# keyboard. Otherwise xdotool types each one by remapping a spare key, pressing it and mapping it
# back at once; a busy program reads the key after that and loses the letter.
xmodmap -e "keycode 93 = eacute Eacute" -e "keycode 97 = egrave Egrave" \
        -e "keycode 103 = agrave Agrave" -e "keycode 120 = ccedilla Ccedilla" \
        -e "keycode 132 = ecircumflex Ecircumflex"

openbox --sm-disable >"$dir/openbox.log" 2>&1 &
wm_pid=$!
# The window manager is up once it has announced itself on the root window.
wm_ready() { [[ $(xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null) == *'window id'* ]]; }
for _ in $(seq 200); do
    wm_ready && break
    kill -0 "$wm_pid" 2>/dev/null || { cat "$dir/openbox.log" >&2; exit 1; }
    sleep 0.05
done
wm_ready || { echo "openbox did not start" >&2; cat "$dir/openbox.log" >&2; exit 1; }

export QT_QPA_PLATFORM=xcb
# In the background, so that a signal to this script is handled at once rather than after it.
"$@" &
command_pid=$!
status=0
wait "$command_pid" || status=$?
command_pid=
exit "$status"
