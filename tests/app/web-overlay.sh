#!/usr/bin/env bash
# The overlay page for video mixers in Debian's headless chromium with a transparent default
# background, as a mixer's browser source has it (tests/app/web-overlay.py): nothing on air when
# idle, blacked out or disconnected but a grey dot; the digits opaque in the state colour with a
# dark outline, the corners fully transparent, at 1920x1080 and 3840x2160; placed and sized by
# the query. Usage: web-overlay.sh KAIRON_BINARY
set -euo pipefail
kairon=$1
here=$(cd "$(dirname "$0")" && pwd)
source "$here/../support/scratch.sh"

code=K7M2P9QX
source "$here/../support/web-sandbox.sh"
web_sandbox "$dir" "$code"
cat > "$dir/show.orvprjct" <<'JSON'
{"name": "Gala", "cues": [
 {"name": "Keynote d'ouverture", "speaker": "Claire Martin", "duration": 600,
  "warningThreshold": 120, "dangerThreshold": 30},
 {"name": "Table ronde", "speaker": "Invités", "duration": 1200}]}
JSON
start_kairon "$kairon" "$dir/show.orvprjct"

/usr/bin/python3 "$here/web-overlay.py" "$port" "$code" "$dir" "$kairon_pid"
