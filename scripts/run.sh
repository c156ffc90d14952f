#!/usr/bin/env bash
# Installs what is missing, builds Vantrel and starts it. Arguments go to the program ("--sample" prints
# one telemetry record and exits). The panel needs an X display: X11, or XWayland on a Wayland desktop.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake -S . -B build-run -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVANTREL_TESTS=OFF -DVANTREL_BENCH=OFF >/dev/null
cmake --build build-run -j "$(nproc)" --target vantrel
exec build-run/bin/vantrel "$@"
