#!/usr/bin/env bash
# The Companion module's checks: its npm packages installed as package-lock.json pins them, its
# code linted (eslint, prettier), the module packaged by companion-module-build (the .tgz that
# Companion's "Import module package" takes), the package checked by companion-module-check,
# then the tests with Node's test runner, the package's own bundle among them, against the real
# program.
# Usage: run-tests.sh [KAIRON_BINARY]   (default: $KAIRON_BINARY, else build/src/app/kairon)
# Needs node (18.19 or later: Debian 12's 18.20 will do) and npm on the PATH, Xvfb and xauth for
# the program's display.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
cd "$here"

if [[ $# -ge 1 ]]; then
    export KAIRON_BINARY=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
fi

source ./node-env.sh
require_node
echo "Node.js $(node --version), npm $(npm --version)"
install_packages

# The code as Companion's module tools lint it, and its layout.
npx --no-install eslint . && npx --no-install prettier --check --log-level=warn . ||
    { echo "FAIL: eslint or prettier" >&2; exit 1; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# The package, built from the sources, then unpacked and checked as Companion would receive it.
package=$scratch/kairon-companion.tgz
build_package "$package" "$scratch/build.log"
echo "Packaged $(basename "$package") ($(stat -c %s "$package") bytes)"
tar -xzf "$package" -C "$scratch"
(cd "$scratch/pkg" && "$here/node_modules/.bin/companion-module-check") > "$scratch/check.log" 2>&1 ||
    { cat "$scratch/check.log"; echo "FAIL: companion-module-check on the package" >&2; exit 1; }
echo "companion-module-check: the package passes"

# One test file at a time: those that start the program measure its timing.
export KAIRON_COMPANION_PACKAGE=$scratch/pkg
node --test --test-concurrency=1 --test-reporter=tap test/*.test.js
