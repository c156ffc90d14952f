#!/usr/bin/env bash
# Runs the fuzz targets for as long as asked, one after another, and reports executions, coverage and
# crashes. Usage: fuzz/run.sh SECONDS_PER_TARGET [NAME...]  (names: proc_stat meminfo ipv4_route ipv6_route
# sysfs_values interface_list limits_document; all when none are given).
# The build goes to $VANTREL_FUZZ_BUILD (default build-fuzz); the grown corpus stays in
# <build>/fuzz-corpus/NAME, crash inputs land in <build>/fuzz-artifacts/NAME/, logs in <build>/fuzz-logs/.
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ $# -lt 1 || ! $1 =~ ^[0-9]+$ ]]; then
    sed -n '2,6p' "$0" >&2
    exit 2
fi
seconds=$1
shift
all=(proc_stat meminfo ipv4_route ipv6_route sysfs_values interface_list limits_document)
names=("${@:-${all[@]}}")
build=${VANTREL_FUZZ_BUILD:-build-fuzz}

# An existing build keeps its build type; a fresh one is optimised, which fuzzes a few times faster.
if [[ ! -f $build/CMakeCache.txt ]]; then
    CC=clang-14 CXX=clang++-14 cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DVANTREL_SANITIZE=ON -DVANTREL_GUI=OFF -DVANTREL_BENCH=OFF -DVANTREL_FUZZ=ON >/dev/null
fi
cmake --build "$build" -j "${VANTREL_FUZZ_JOBS:-2}" --target "${names[@]/#/fuzz_}"

failed=0
printf '%-16s %12s %10s %14s %8s  %s\n' target executions exec/s edges features result
for name in "${names[@]}"; do
    corpus=$build/fuzz-corpus/$name
    artifacts=$build/fuzz-artifacts/$name
    log=$build/fuzz-logs/$name.log
    mkdir -p "$corpus" "$artifacts" "$(dirname "$log")"
    options=(-max_total_time="$seconds" -print_final_stats=1 -timeout=60 -rss_limit_mb=2048 -max_len=8192
             -artifact_prefix="$artifacts/")
    [[ -f fuzz/$name.dict ]] && options+=(-dict="fuzz/$name.dict")
    seeds=("$corpus" "fuzz/corpus/$name")
    [[ -d fuzz/regressions/$name ]] && seeds+=("fuzz/regressions/$name")
    result=ok
    "$build/bin/fuzz_$name" "${options[@]}" "${seeds[@]}" >"$log" 2>&1 || { result="CRASH (see $log)"; failed=1; }
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
    speed=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -1)
    coverage=$(grep -o 'cov: [0-9]*' "$log" | tail -1 | cut -d' ' -f2)
    features=$(grep -o 'ft: [0-9]*' "$log" | tail -1 | cut -d' ' -f2)
    # Edges reached of all the instrumented edges in the target (its share of nlohmann/json included).
    edges=$(sed -n 's/^INFO: Loaded 1 modules *(\([0-9]*\) inline 8-bit counters.*/\1/p' "$log" | head -1)
    printf '%-16s %12s %10s %14s %8s  %s\n' "$name" "${executions:-?}" "${speed:-?}" \
        "${coverage:-?}/${edges:-?}" "${features:-?}" "$result"
done
exit "$failed"
