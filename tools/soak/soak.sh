#!/usr/bin/env bash
# A soak run of the real program on a private desktop, with its own session bus.
# Usage: tools/soak/soak.sh SECONDS [EXECUTABLE [soak.py options...]]
#   EXECUTABLE defaults to build/bin/vantrel; see `soak.py --help` for the options (report folder, pace).
# Example: tools/soak/soak.sh 3600 build/bin/vantrel --report soak-report
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
seconds=${1:?usage: soak.sh SECONDS [EXECUTABLE [options...]]}
executable=${2:-$here/../../build/bin/vantrel}
shift $(($# < 2 ? $# : 2))
exec dbus-run-session -- /usr/bin/python3 -W ignore::DeprecationWarning "$here/soak.py" "$seconds" \
    "$executable" "$@"
