# Sourced by the test scripts that start processes: a scratch directory in $dir, removed at exit
# after every process whose id was added to $pids is stopped, and free_udp_port, which prints a
# UDP port of 127.0.0.1 that nothing uses.
scratch_support=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
dir=$(mktemp -d)
pids=()
cleanup() {
    local pid
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$dir"
}
trap cleanup EXIT

free_udp_port() { "$scratch_support/free-udp-port"; }
