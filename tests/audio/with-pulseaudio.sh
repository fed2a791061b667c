#!/usr/bin/env bash
# Runs a command against a private PulseAudio server of its own, with two virtual outputs
# at 48 kHz (kairon_main, the default, and kairon_stage) and one virtual input (kairon_micro), in a
# temporary home so that nothing of the machine's own settings is read or written.
set -euo pipefail

dir=$(mktemp -d)
pid=
cleanup() {
    [[ -n "$pid" ]] && kill "$pid" 2>/dev/null && wait "$pid" 2>/dev/null
    rm -rf "$dir"
}
trap cleanup EXIT

export HOME=$dir/home XDG_CONFIG_HOME=$dir/home/.config XDG_RUNTIME_DIR=$dir/run
export PULSE_RUNTIME_PATH=$dir/run/pulse PULSE_STATE_PATH=$dir/state
unset PULSE_SERVER
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$PULSE_RUNTIME_PATH" "$PULSE_STATE_PATH"
chmod 700 "$XDG_RUNTIME_DIR"

cat > "$dir/server.pa" <<'PA'
load-module module-native-protocol-unix auth-anonymous=1
load-module module-null-sink sink_name=kairon_main rate=48000 format=s16le channels=2 norewinds=1 sink_properties='device.description="Régie"'
load-module module-null-sink sink_name=kairon_stage rate=48000 format=s16le channels=2 norewinds=1 sink_properties='device.description="Retour scène"'
load-module module-null-source source_name=kairon_micro description=Micro
set-default-sink kairon_main
PA

pulseaudio --daemonize=no --exit-idle-time=-1 -n -F "$dir/server.pa" \
    --log-target="file:$dir/pulse.log" &
pid=$!
for _ in $(seq 100); do
    pactl info >/dev/null 2>&1 && break
    kill -0 "$pid" 2>/dev/null || { cat "$dir/pulse.log" >&2; exit 1; }
    sleep 0.05
done
pactl info >/dev/null
# This server, whatever the caller's environment named.
export PULSE_SERVER=unix:$PULSE_RUNTIME_PATH/native
pactl info >/dev/null

"$@"
