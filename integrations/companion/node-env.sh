# Sourced by the module's scripts: the Node.js check and the npm packages as locked.

# Fails with a clear message unless node is 18.19 or later (Debian 12 gives 18.20) and npm is
# there.
require_node() {
    command -v node >/dev/null && command -v npm >/dev/null ||
        { echo "Node.js and npm are needed (tools/kairon.sh test installs them)" >&2; return 1; }
    node -e '
const [major, minor] = process.versions.node.split(".").map(Number)
process.exit(major > 18 || (major === 18 && minor >= 19) ? 0 : 1)' ||
        { echo "Node.js $(node --version) is too old: 18.19 or later is needed" >&2; return 1; }
}

# The packages exactly as package-lock.json pins them; no audit, no funding notice.
install_packages() {
    npm ci --no-audit --no-fund --loglevel=error
}

# Builds the module's package (the .tgz that Companion's "Import module package" takes) with
# companion-module-build and moves it to $1. Its output is kept in $2 and shown if it fails.
build_package() {
    rm -f kairon-*.tgz
    npx --no-install companion-module-build > "$2" 2>&1 ||
        { cat "$2"; echo "FAIL: companion-module-build" >&2; return 1; }
    mv kairon-*.tgz "$1"
}
