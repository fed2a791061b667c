# Sourced, after scratch.sh, by the scripts that start the real program with remote control over
# the web.
#
# web_sandbox DIR CODE: a private home under DIR and preferences with the web server on a free
# port of its own (set in $port, its address in $base) with access code CODE and a one-second
# splash.
web_sandbox() {
    port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
    base=http://127.0.0.1:$port
    web_code=$2
    sandbox_home "$1"
    printf '[General]\nwebEnabled=true\nwebPort=%d\nwebAccessCode=%s\nsplashDuration=1\n' \
        "$port" "$2" > "$XDG_CONFIG_HOME/Kairon/Kairon.conf"
}

# post COMMAND [JSON]: the command to the sandbox's server, with its code.
post() { curl -s -o /dev/null -X POST -H "Authorization: Bearer $web_code" -H 'Content-Type: application/json' --data-binary "${2:-{\}}" "$base/api/$1"; }

# fail MESSAGE: says what failed and counts it in $failures; the script goes on.
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# start_kairon BINARY [PROJECT]: the real program on PROJECT, its standard error in $dir/traceN
# (N counting the launches), its id in $kairon_pid and $pids; returns once it serves and has
# drawn its first frame.
launches=0
start_kairon() {
    launches=$((launches + 1))
    KAIRON_STARTUP_TRACE=1 "$1" "${@:2}" 2> "$dir/trace$launches" &
    kairon_pid=$!
    pids+=("$kairon_pid")
    wait_for_web "$dir/trace$launches"
    wait_for_trace "$dir/trace$launches" first-frame
}

# wait_for_web TRACE: waits (5 s at most) until the program, its standard error in TRACE, serves.
wait_for_web() { wait_for_trace "$1" web-listening; }
