#!/usr/bin/env bash
# The Companion module (integrations/companion) against the real program on loopback, with a
# show of 200 one-hour cues, a cue running. Goals: a key press reaches the module's variable
# (command over HTTP, the program's change, its WebSocket patch) in 5 ms at the median and 20 ms
# at p99; 20 modules connected cost the program at most 2 % of a core more than none.
# Usage: bench/companion/run-companion-bench.sh [SECONDS]   (each CPU phase, default 20)
# Needs node and npm (see integrations/companion/run-tests.sh), Xvfb and xauth.
set -euo pipefail
here=$(cd "$(dirname "$0")/../.." && pwd)
module=$here/integrations/companion
[[ -d $module/node_modules/@companion-module/base ]] ||
    (cd "$module" && npm ci --no-audit --no-fund --loglevel=error)
exec node "$here/bench/companion/companion-bench.mjs" "${1:-20}"
