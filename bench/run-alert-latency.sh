#!/usr/bin/env bash
# Measures the alert latency against a private PulseAudio server, on an output without
# rewinds (as the tests use) and on one with the server's defaults, each with the cores idle
# and then with every core held by an endless shell loop.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
bench=${1:-$here/build/bench/bench_alertlatency}
cores=$(nproc)
"$here/tests/audio/with-pulseaudio.sh" bash -c "
    '$bench' kairon_stage 20
    '$bench' kairon_stage 20 $cores
    pactl load-module module-null-sink sink_name=kairon_plain rate=48000 >/dev/null
    sleep 0.5
    '$bench' kairon_plain 20
    '$bench' kairon_plain 20 $cores
"
