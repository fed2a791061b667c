#!/usr/bin/env bash
# The real program given two project files (a double-click on two files in a file manager):
# the first opens, and the second is named as not opened, on stderr as in the console's toast.
# Then SIGTERM saves and quits with status 0.
# Usage: two-projects.sh KAIRON_BINARY
set -euo pipefail
kairon=$1
source "$(dirname "$0")/../support/scratch.sh"
sandbox_home "$dir"
printf '{"name": "Soirée", "cues": [{"name": "Ouverture", "duration": 600}]}' > "$dir/a.orvprjct"
printf '{"name": "Matinée", "cues": [{"name": "Accueil", "duration": 300}]}' > "$dir/b.orvprjct"

KAIRON_STARTUP_TRACE=1 "$kairon" "$dir/a.orvprjct" "$dir/b.orvprjct" 2> "$dir/stderr" &
pid=$!
pids+=("$pid")
wait_for_trace "$dir/stderr" first-frame
expected="kairon : Un seul projet s’ouvre à la fois : « $dir/b.orvprjct » n’est pas ouvert."
grep -qxF "$expected" "$dir/stderr" || { cat "$dir/stderr"; echo "FAIL: no line: $expected"; exit 1; }
kill -TERM "$pid"
status=0
wait "$pid" || status=$?
((status == 0)) || { cat "$dir/stderr"; echo "FAIL: ended with status $status"; exit 1; }
echo "the first project opened, the second was named as not opened"
