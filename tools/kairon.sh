#!/usr/bin/env bash
# Sets up a Debian 12 machine for Kairon, builds it, then launches it or runs every test.
#   tools/kairon.sh run    install the missing packages, build, launch Kairon
#   tools/kairon.sh test   install the missing packages (with the test tools), build, run the tests
# Works as root or as a user with sudo; only the package installation needs root.
set -euo pipefail
cd "$(dirname "$0")/.."

case "${1:-}" in
    run) groups="build"; options=(-DKAIRON_BUILD_TESTS=OFF -DKAIRON_BUILD_BENCH=OFF) ;;
    test) groups="build test"; options=(-DKAIRON_BUILD_TESTS=ON -DKAIRON_BUILD_BENCH=ON) ;;
    *) echo "usage: $0 run|test" >&2; exit 2 ;;
esac

missing=()
while read -r group package; do
    [[ -z "$group" || "$group" == \#* || " $groups " != *" $group "* ]] && continue
    status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
    [[ "$status" == "install ok installed" ]] || missing+=("$package")
done < tools/debian-packages.txt

if ((${#missing[@]})); then
    echo "Installing: ${missing[*]}"
    as_root=()
    [[ "$(id -u)" -eq 0 ]] || as_root=(sudo)
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends "${missing[@]}"
fi

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "${options[@]}"
cmake --build build

if [[ "$1" == run ]]; then
    exec build/src/app/kairon
fi
cd build
exec ctest --output-on-failure --parallel "$(nproc)"
