#!/usr/bin/env bash
# A long fuzzing campaign: each fuzzer runs a given number of inputs from its seeds and known
# reproducers, then the executions, the coverage reached (libFuzzer's "cov", the instrumented
# edges, and "ft", its finer features) and the findings are printed, one line per fuzzer.
#   bench/run-fuzz-campaign.sh [NAME=RUNS ...]
# Without arguments: 10 million inputs for the OSC decoder, 2 million for the project reader,
# 1 million for each other fuzzer. FUZZ_BUILD names the folder of the fuzzer executables
# (default build/fuzz-build/fuzz, built by the test command); FUZZ_MAX_SECONDS bounds each
# fuzzer's time (default 3600). The inputs of findings are kept in FUZZ_BUILD/../campaign-findings.
# Exits non-zero when anything was found.
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
fuzz_build=$(realpath -m "${FUZZ_BUILD:-$here/build/fuzz-build/fuzz}")
max_seconds=${FUZZ_MAX_SECONDS:-3600}
findings_root=$(dirname "$fuzz_build")/campaign-findings

plan=("$@")
if ((${#plan[@]} == 0)); then
    plan=(osc_decode=10000000 osc_roundtrip=1000000 projectdocument=2000000
          timerstatesnapshot=1000000 internetdate=1000000 colorhex=1000000)
fi
declare -A dicts=([osc_decode]=osc.dict [osc_roundtrip]=osc.dict [projectdocument]=json.dict
                  [timerstatesnapshot]=json.dict [internetdate]=date.dict [colorhex]=color.dict)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
shopt -s nullglob
failed=0
results=()
for item in "${plan[@]}"; do
    name=${item%%=*} runs=${item#*=}
    fuzzer=$fuzz_build/fuzz_$name
    [[ -x "$fuzzer" && -n "${dicts[$name]:-}" ]] || { echo "no fuzzer $fuzzer" >&2; exit 2; }
    corpus=$work/$name findings=$findings_root/$name
    mkdir -p "$corpus" "$findings"
    cp -- "$here/fuzz/corpus/$name"/* "$here/fuzz/regressions/$name"/* "$corpus/" 2>/dev/null || true
    before=$(ls "$findings" | wc -l)
    echo "== $name: $runs inputs (at most $max_seconds s)" >&2
    start=$SECONDS
    status=0
    "$fuzzer" -runs="$runs" -max_total_time="$max_seconds" -rss_limit_mb=2048 -timeout=10 \
        -dict="$here/fuzz/${dicts[$name]}" -print_final_stats=1 -artifact_prefix="$findings/" \
        "$corpus" > "$work/$name.log" 2>&1 || status=$?
    seconds=$((SECONDS - start))
    log=$work/$name.log
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
    rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
    coverage=$(grep -oE 'cov: [0-9]+ ft: [0-9]+ corp: [0-9]+' "$log" | tail -1)
    found=$(( $(ls "$findings" | wc -l) - before ))
    if ((status != 0 || found > 0)); then
        failed=1
        grep -E 'Broken invariant|ERROR:|SUMMARY:' "$log" >&2 || tail -20 "$log" >&2
        ((found > 0)) || found="1 (exit $status)"
    fi
    results+=("$(printf '%-20s %12s %10s  %-32s %9s %6s s' "$name" "${executions:-?}" \
        "${rate:-?}" "${coverage:-?}" "$found" "$seconds")")
done

printf '%-20s %12s %10s  %-32s %9s %8s\n' fuzzer executions exec/s coverage findings time
printf '%s\n' "${results[@]}"
exit $failed
