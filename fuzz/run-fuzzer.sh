#!/usr/bin/env bash
# Runs one fuzzer as a test: every known reproducer of REGRESSIONS once, then SECONDS of
# fuzzing from the seeds and the reproducers. Fails on any finding: a broken invariant, a
# sanitizer report, a leak, an input slower than 10 s or one that takes more than 2 GB.
#   run-fuzzer.sh FUZZER SEEDS REGRESSIONS DICT SECONDS FINDINGS
# DICT may be empty. The repository is never written: the corpus grows in a temporary copy,
# and the inputs of findings are kept in FINDINGS.
set -euo pipefail
if (($# != 6)); then
    echo "usage: $0 FUZZER SEEDS REGRESSIONS DICT SECONDS FINDINGS" >&2
    exit 2
fi
fuzzer=$1 seeds=$2 regressions=$3 dict=$4 seconds=$5 findings=$6

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/corpus" "$findings"
options=(-rss_limit_mb=2048 -timeout=10 "-artifact_prefix=$findings/")
[[ -z "$dict" ]] || options+=("-dict=$dict")

shopt -s nullglob
reproducers=("$regressions"/*)
if ((${#reproducers[@]})); then
    echo "== $(basename "$fuzzer"): ${#reproducers[@]} known reproducers"
    "$fuzzer" "${options[@]}" "${reproducers[@]}"
fi

cp -- "$seeds"/* "${reproducers[@]}" "$work/corpus/"
echo "== $(basename "$fuzzer"): fuzzing for $seconds s"
"$fuzzer" "${options[@]}" -max_total_time="$seconds" -print_final_stats=1 "$work/corpus"
