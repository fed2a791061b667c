#!/usr/bin/env bash
# The web pages in a real browser: the real program with remote control over the web enabled,
# driven with curl, and its /stage, /confidence and / pages in Debian's headless chromium
# (tests/app/web-pages.py over tests/app/cdp.py): the texts and the colours of the rendered
# pixels in every state, the digits' change instants against the engine's, the loss of the
# connection and its return without a reload. The program runs in Paris and the browser in New
# York, so the clocks must show the venue's time.
# Usage: web-pages.sh KAIRON_BINARY
set -euo pipefail
kairon=$1
here=$(cd "$(dirname "$0")" && pwd)
# web-pages.py writes the id of every process it starts to $dir/pids, and stops them itself;
# the scratch directory's cleanup is for when it could not.
source "$here/../support/scratch.sh"

code=K7M2P9QX
source "$here/../support/web-sandbox.sh"
web_sandbox "$dir" "$code"
export TZ=Europe/Paris
cat > "$dir/show.orvprjct" <<'JSON'
{"name": "Soirée de gala", "cues": [
 {"name": "Ouverture", "speaker": "Ana", "duration": 600},
 {"name": "Débat", "speaker": "Ben", "duration": 600, "colorHex": "#3B82F6"},
 {"name": "Clôture", "duration": 600}]}
JSON

/usr/bin/python3 "$here/web-pages.py" "$kairon" "$dir/show.orvprjct" "$port" "$code" "$dir"
