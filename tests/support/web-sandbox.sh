# Sourced, after scratch.sh, by the scripts that start the real program with remote control over
# the web.
#
# web_sandbox DIR CODE: a private home under DIR and preferences with the web server on a free
# port of its own (set in $port) with access code CODE and a one-second splash.
web_sandbox() {
    port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
    sandbox_home "$1"
    printf '[General]\nwebEnabled=true\nwebPort=%d\nwebAccessCode=%s\nsplashDuration=1\n' \
        "$port" "$2" > "$XDG_CONFIG_HOME/Kairon/Kairon.conf"
}

# wait_for_web TRACE: waits (5 s at most) until the program, its standard error in TRACE, serves.
wait_for_web() { wait_for_trace "$1" web-listening; }
