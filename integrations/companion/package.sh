#!/usr/bin/env bash
# Packages the Companion module: its npm packages installed as locked, then
# companion-module-build's .tgz (the one Companion's "Import module package" takes) written to
# OUTPUT. `cmake --build build --target companion-module` runs it to put
# build/kairon-companion-VERSION.tgz beside the Debian package.
# Usage: package.sh OUTPUT
set -euo pipefail
output=$(realpath -m "$1")
cd "$(dirname "$0")"
source ./node-env.sh
require_node
install_packages
log=$(mktemp)
trap 'rm -f "$log"' EXIT
build_package "$output" "$log"
echo "Companion module: $output ($(stat -c %s "$output") bytes)"
