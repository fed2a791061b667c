#!/usr/bin/env bash
# The WebSocket feed of the real program, message by message, on a private X server: a 200-cue
# show, a viewer that comes mid-cue, ten seconds of a running cue, commands over HTTP, a viewer
# that missed a message, and a cue renamed in the cue editor with real keys and clicks
# (tests/app/web-feed.py).
# Usage: with-xvfb.sh web-feed.sh KAIRON_BINARY
set -euo pipefail
kairon=$1
here=$(cd "$(dirname "$0")" && pwd)
source "$here/../support/scratch.sh"
source "$here/../support/web-sandbox.sh"
source "$here/../support/window-geometry.sh"
code=F33D2K7M
web_sandbox "$dir" "$code"
export QT_QPA_PLATFORM=xcb QT_QUICK_BACKEND=software TZ=Europe/Paris
python3 - > "$dir/gala.orvprjct" <<'PY'
import json
print(json.dumps({"name": "Gala des lumières",
                  "cues": [{"name": f"Cue {i}", "duration": 600} for i in range(1, 201)]}))
PY

start_kairon "$kairon" "$dir/gala.orvprjct"
# After the splash, the console window.
deadline=$((SECONDS + 20))
until id=$(xdotool search --onlyvisible --name '^Kairon$' 2>/dev/null | head -n 1) && [[ -n $id ]]; do
    ((SECONDS < deadline)) || { echo "FAIL: the console did not show"; exit 1; }
    sleep 0.1
done
sleep 1.5 # the splash gone, the console drawn
geometry "$id"
/usr/bin/python3 "$here/web-feed.py" "$port" "$code" "$gx" "$gy"
