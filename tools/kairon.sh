#!/usr/bin/env bash
# Sets up a Debian 12 machine for Kairon, builds it, then launches it or runs every test.
#   tools/kairon.sh run    install the missing packages, build, launch Kairon
#   tools/kairon.sh test   install the missing packages (with the test tools, and Node.js with npm
#                          unless the machine has them), build, run the tests (the Companion
#                          module's among them), then build them again with AddressSanitizer and
#                          UndefinedBehaviorSanitizer (in build-sanitized) and run them there too
# Works as root or as a user with sudo; only the package installation needs root.
set -euo pipefail
cd "$(dirname "$0")/.."

case "${1:-}" in
    run) groups="build"; options=(-DKAIRON_BUILD_TESTS=OFF -DKAIRON_BUILD_BENCH=OFF) ;;
    test) groups="build test"; options=(-DKAIRON_BUILD_TESTS=ON -DKAIRON_BUILD_BENCH=ON -DKAIRON_FUZZ_SECONDS=10) ;;
    *) echo "usage: $0 run|test" >&2; exit 2 ;;
esac

# Node.js and npm for the Companion module: the machine's own when they will do.
if [[ "$1" == test ]] && ! { command -v npm >/dev/null && node -e '
    const [major, minor] = process.versions.node.split(".").map(Number)
    process.exit(major > 18 || (major === 18 && minor >= 19) ? 0 : 1)' 2>/dev/null; }; then
    groups+=" node"
fi

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
echo "Built in ${SECONDS} s"

if [[ "$1" == run ]]; then
    exec build/src/app/kairon
fi
(cd build && ctest --output-on-failure --parallel "$(nproc)")
echo "Tested at ${SECONDS} s"

# The same program and tests built with AddressSanitizer and UndefinedBehaviorSanitizer: the
# engine's, the services' and the real program's tests run again there (the fuzzers run sanitized
# already; the package, the benchmarks and the Companion module, whose JavaScript no sanitizer
# reads, are not rebuilt, nor the views' unit tests: the real program's tests run the views, and
# building those thirty tests again would take CI's time). -O1 keeps the build short. Every
# report is written to a log as well, so that one from a process a script started in the
# background fails the run even when that script did not notice.
cmake -S . -B build-sanitized -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g1" -DKAIRON_SANITIZE=ON \
    -DKAIRON_BUILD_TESTS=ON -DKAIRON_BUILD_VIEW_TESTS=OFF -DKAIRON_BUILD_BENCH=OFF \
    -DKAIRON_FUZZ_TESTS=OFF
cmake --build build-sanitized
echo "Sanitized build done at ${SECONDS} s"
reports=$PWD/build-sanitized/sanitizer-reports
rm -rf "$reports" && mkdir -p "$reports"
export ASAN_OPTIONS="detect_leaks=0:abort_on_error=1:log_path=$reports/asan"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1:log_path=$reports/ubsan"
status=0
(cd build-sanitized && ctest --output-on-failure --parallel "$(nproc)" -LE "package|companion|normal-only") || status=$?
if compgen -G "$reports/*" >/dev/null; then
    echo "Sanitizer reports:" >&2
    cat "$reports"/* >&2
    status=1
fi
exit "$status"
