#!/usr/bin/env bash
# Runs bench_displays on a private X server with room for two 1080p windows side by side.
# Usage: bench/run-display-bench.sh [seconds] [--opengl]
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 3840x1080x24 -nolisten tcp -noreset >/dev/null 2>&1 &
xvfb=$!
trap 'kill $xvfb 2>/dev/null' EXIT
for _ in $(seq 50); do xdpyinfo -display "$display" >/dev/null 2>&1 && break; sleep 0.1; done
DISPLAY=$display QT_QPA_PLATFORM=xcb "$here/build/bench/bench_displays" "$@"
