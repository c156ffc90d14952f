#!/usr/bin/env bash
# Installs what is missing, builds Vantrel and runs every test: the full build first, then the portable
# libraries and their tests again under AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh --test
jobs=$(nproc)

cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVANTREL_GUI=ON -DVANTREL_TESTS=ON -DVANTREL_BENCH=ON >/dev/null
cmake --build build -j "$jobs"
ctest --test-dir build --output-on-failure -j "$jobs"

cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVANTREL_SANITIZE=ON -DVANTREL_GUI=OFF \
      -DVANTREL_BENCH=OFF >/dev/null
cmake --build build-asan -j "$jobs"
ctest --test-dir build-asan --output-on-failure -L unit -j "$jobs"
