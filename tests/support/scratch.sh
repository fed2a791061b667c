# Sourced by the test scripts that start processes: a scratch directory in $dir, removed at exit
# after every process is stopped (those whose id was added to $pids, and those a helper script
# wrote one per line to $dir/pids; a process stopped with SIGSTOP is continued first), and
# helpers to start the real program in a private home.
scratch_support=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
dir=$(mktemp -d)
pids=()
cleanup() {
    local pid listed=()
    [[ -f $dir/pids ]] && mapfile -t listed < "$dir/pids"
    for pid in "${pids[@]}" "${listed[@]}"; do
        kill -CONT "$pid" 2>/dev/null || true
        kill "$pid" 2>/dev/null || true
    done
    wait 2>/dev/null || true
    rm -rf "$dir"
}
trap cleanup EXIT

# Prints a UDP port of 127.0.0.1 that nothing uses.
free_udp_port() { "$scratch_support/free-udp-port"; }

# sandbox_home DIR: exports a private home under DIR (nothing of the machine's own settings is
# read or written) with Qt drawn offscreen in software; the preferences go in
# $XDG_CONFIG_HOME/Kairon/Kairon.conf.
sandbox_home() {
    export HOME=$1/home XDG_CONFIG_HOME=$1/home/.config XDG_CACHE_HOME=$1/home/.cache
    export XDG_RUNTIME_DIR=$1/run QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
    mkdir -p "$XDG_CONFIG_HOME/Kairon" "$XDG_RUNTIME_DIR"
    chmod 700 "$XDG_RUNTIME_DIR"
}

# osc_preferences [KEY=VALUE…]: stores OSC listening and sending on, each on a free port of its
# own (set in $listen and $send; sending to 127.0.0.1), then the given preferences, in the home's
# preferences file.
osc_preferences() {
    listen=$(free_udp_port)
    send=$(free_udp_port)
    printf '[General]\noscListenEnabled=true\noscListenPort=%d\noscSendEnabled=true\n' "$listen" \
        > "$XDG_CONFIG_HOME/Kairon/Kairon.conf"
    printf 'oscSendHost=127.0.0.1\noscSendPort=%d\n' "$send" >> "$XDG_CONFIG_HOME/Kairon/Kairon.conf"
    printf '%s\n' "$@" >> "$XDG_CONFIG_HOME/Kairon/Kairon.conf"
}

# wait_for_line FILE PATTERN [TRIES]: waits (TRIES × 20 ms, 5 s unless told) until a line of
# FILE matches PATTERN (grep -E); fails quietly otherwise.
wait_for_line() {
    for _ in $(seq "${3:-250}"); do
        grep -qE "$2" "$1" && return 0
        sleep 0.02
    done
    return 1
}

# wait_for_trace TRACE MARK [TRIES]: waits (TRIES × 20 ms, 5 s unless told) until the program
# started with KAIRON_STARTUP_TRACE=1, its standard error in TRACE, says "kairon-startup MARK";
# else prints TRACE and fails.
wait_for_trace() {
    for _ in $(seq "${3:-250}"); do
        grep -q "kairon-startup $2" "$1" && return 0
        sleep 0.02
    done
    cat "$1"
    echo "FAIL: the program never reported $2" >&2
    return 1
}
