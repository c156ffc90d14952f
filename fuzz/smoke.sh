#!/bin/sh
# The test command's smoke run of one fuzz target: a fixed number of runs over its seeds and kept crash
# inputs, new inputs going to a scratch directory. Usage: smoke.sh FUZZER FUZZ_SOURCE_DIR NAME
set -eu
fuzzer=$1
source=$2
name=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

set -- -runs=2000 -seed=1 -timeout=60 -rss_limit_mb=2048 -max_len=8192 -artifact_prefix="./$name-" "$scratch"
for seeds in "$source/corpus/$name" "$source/regressions/$name"; do
    if [ -d "$seeds" ]; then
        set -- "$@" "$seeds"
    fi
done
if [ -f "$source/$name.dict" ]; then
    set -- -dict="$source/$name.dict" "$@"
fi
"$fuzzer" "$@"
