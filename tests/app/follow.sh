#!/usr/bin/env bash
# A main and its backup, two real programs on 127.0.0.1 (tests/app/follow.py), on a private X
# server for the backup's window and its keys. Usage: follow.sh KAIRON_BINARY
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QT_QUICK_BACKEND=software
python3 -u "$here/follow.py" "$1" "$work"
