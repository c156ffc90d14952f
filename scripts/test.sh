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

# The sanitizer build is clang's: it also builds the fuzz targets, whose short runs over their seeds are tests
# too (labels unit and fuzz). A tree configured earlier with another compiler starts afresh.
if [ -f build-asan/CMakeCache.txt ] && ! grep -q '^CMAKE_CXX_COMPILER:FILEPATH=.*clang' build-asan/CMakeCache.txt; then
  rm -rf build-asan
fi
CC=clang-14 CXX=clang++-14 cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVANTREL_SANITIZE=ON \
      -DVANTREL_GUI=OFF -DVANTREL_BENCH=OFF -DVANTREL_FUZZ=ON >/dev/null
cmake --build build-asan -j "$jobs"
ctest --test-dir build-asan --output-on-failure -L unit -j "$jobs"
