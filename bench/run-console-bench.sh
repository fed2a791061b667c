#!/usr/bin/env bash
# Runs bench_console on a private X server with room for three 1080p windows side by side.
# Usage: bench/run-console-bench.sh [seconds]
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
display=:$((90 + RANDOM % 100))
home=$(mktemp -d)
Xvfb "$display" -screen 0 5760x1080x24 -nolisten tcp -noreset >/dev/null 2>&1 &
xvfb=$!
trap 'kill $xvfb 2>/dev/null; rm -rf "$home"' EXIT
for _ in $(seq 50); do xdpyinfo -display "$display" >/dev/null 2>&1 && break; sleep 0.1; done
HOME=$home DISPLAY=$display QT_QPA_PLATFORM=xcb "$here/build/bench/bench_console" "$@"
