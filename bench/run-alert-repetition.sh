#!/usr/bin/env bash
# Plays alerts in a row (500 unless told) on one output of a private PulseAudio server and
# compares the last one with the first.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
count=${1:-500}
bench=${2:-$here/build/bench/bench_alertrepetition}
"$here/tests/audio/with-pulseaudio.sh" "$bench" kairon_stage "$count"
