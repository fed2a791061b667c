#!/usr/bin/env bash
# Opens a project as a double-click in a file manager does, and checks over OSC that the
# installed program came up on it. Run by install-package.sh on a private X server
# (tests/support/with-xvfb.sh), in the temporary home that gives.
#
# xdg-open, on no particular desktop, asks xdg-mime for the file's type and that type's default
# application, and runs the command of its menu entry with the file. The program's remote
# control is stored as enabled: /kairon/play sent by oscsend starts the first cue, whose name
# comes back to oscdump. Once its window has drawn, the files the program has mapped (libraries,
# plugins, drivers, typefaces) are written to OUT/mapped, for the caller to check that the
# package depends on each one's package.
# Usage: open-from-desktop.sh PROJECT OUT
set -euo pipefail
project=$1
out=$2
source "$(dirname "$0")/../support/scratch.sh"
mkdir -p "$XDG_CONFIG_HOME/Kairon"
osc_preferences splashDuration=1

# Waits up to $1 seconds for a line matching $2 in file $3.
wait_for() {
    local tries=$(($1 * 20))
    for _ in $(seq "$tries"); do
        grep -q -- "$2" "$3" && return 0
        sleep 0.05
    done
    grep -q -- "$2" "$3"
}

# The kairon process whose parent is $1.
program_started_by() {
    local stat pid comm state ppid rest
    for stat in /proc/[0-9]*/stat; do
        read -r pid comm state ppid rest < "$stat" 2>/dev/null || continue
        if [[ "$ppid" == "$1" && "$comm" == "(kairon)" ]]; then
            echo "$pid"
            return 0
        fi
    done
    return 1
}

oscdump -L "$send" > "$dir/received" 2>&1 &
pids+=($!)

# No desktop environment's own opener: the menu entries decide.
unset DESKTOP_SESSION KDE_FULL_SESSION GNOME_DESKTOP_SESSION_ID MATE_DESKTOP_SESSION_ID
unset DBUS_SESSION_BUS_ADDRESS XDG_DATA_DIRS XDG_CONFIG_DIRS
export XDG_CURRENT_DESKTOP=X-Generic
KAIRON_STARTUP_TRACE=1 xdg-open "$project" > "$dir/trace" 2>&1 &
opener=$!
pids+=("$opener")

if ! wait_for 20 "kairon-startup osc-listening" "$dir/trace"; then
    cat "$dir/trace"
    echo "FAIL: no program listening for OSC 20 s after xdg-open"
    exit 1
fi
program=$(program_started_by "$opener") || {
    cat "$dir/trace"
    echo "FAIL: xdg-open started no kairon process"
    exit 1
}
# First, so that it is stopped before its opener.
pids=("$program" "${pids[@]}")
executable=$(readlink "/proc/$program/exe")
if [[ "$executable" != /usr/bin/kairon ]]; then
    echo "FAIL: xdg-open ran $executable, not /usr/bin/kairon"
    exit 1
fi
echo "xdg-open ran $executable with: $(tr '\0' ' ' < "/proc/$program/cmdline")"

oscsend 127.0.0.1 "$listen" /kairon/play
if ! wait_for 10 '/kairon/cue s "Ouverture"' "$dir/received"; then
    cat "$dir/received"
    echo "FAIL: the project's first cue was never named over OSC"
    exit 1
fi
echo "the project is open: its first cue plays"

if ! wait_for 20 "kairon-startup first-frame" "$dir/trace"; then
    cat "$dir/trace"
    echo "FAIL: the operator window never drew"
    exit 1
fi
awk '$6 ~ /^\// { print $6 }' "/proc/$program/maps" | sort -u > "$out/mapped"
