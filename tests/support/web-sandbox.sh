# Sourced by the scripts that start the real program with remote control over the web.
#
# web_sandbox DIR CODE: a private home under DIR (nothing of the machine's own settings is read
# or written), Qt drawn offscreen in software, and preferences with the web server on a free
# port of its own (set in $port) with access code CODE and a one-second splash.
web_sandbox() {
    local dir=$1
    port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
    export HOME=$dir/home XDG_CONFIG_HOME=$dir/home/.config XDG_CACHE_HOME=$dir/home/.cache
    export XDG_RUNTIME_DIR=$dir/run QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
    mkdir -p "$XDG_CONFIG_HOME/Kairon" "$XDG_RUNTIME_DIR"
    chmod 700 "$XDG_RUNTIME_DIR"
    printf '[General]\nwebEnabled=true\nwebPort=%d\nwebAccessCode=%s\nsplashDuration=1\n' \
        "$port" "$2" > "$XDG_CONFIG_HOME/Kairon/Kairon.conf"
}

# wait_for_web TRACE: waits (5 s at most) until the program started with KAIRON_STARTUP_TRACE=1
# and its standard error in TRACE says it serves.
wait_for_web() {
    for _ in $(seq 250); do
        grep -q "kairon-startup web-listening" "$1" && return 0
        sleep 0.02
    done
    cat "$1"
    echo "the program never served the web" >&2
    return 1
}
