#!/usr/bin/env bash
# Syntax- and type-checks one macOS C++ source against the macOS header kit (Apple's open-source headers),
# for Apple silicon and Intel, with the project's warnings as errors.
# usage: check_macos_source.sh KIT SOURCE_ROOT FILE [clang flags...]
# Exit status: 0 checked, 1 an error in the source, 77 not checked here (said on standard output).
set -uo pipefail
kit=$1 root=$2 file=$3
shift 3

if [ ! -f "$kit/check.sh" ]; then
  echo "skipped: no macOS header kit at $kit (configure with -DVANTREL_MACOS_HEADER_KIT=DIR)"
  exit 77
fi
output=$(bash "$kit/check.sh" "-I$root" "$@" "$file" 2>&1)
status=$?
printf '%s\n' "$output"
case $status in
  0) exit 0 ;;
  2) echo "skipped: the kit's checker cannot run here (it needs clang++-14 or -15 and libc++-14-dev)"
     exit 77 ;;
esac

# A header that a system header includes and the kit lacks is the kit's gap, not an error of ours: say which
# and leave the file unchecked. Any other error, a missing header included by our own code among them, fails.
errors=$(grep -E '(fatal )?error:' <<<"$output" | sort -u)
gaps=$(grep -E "^/.*: fatal error: '[^']+' file not found$" <<<"$errors" | grep -v "^$root/")
if [ -n "$gaps" ] && [ "$(wc -l <<<"$errors")" -eq "$(wc -l <<<"$gaps")" ]; then
  echo "skipped: the header kit lacks a header that the system headers include:"
  sed -E "s/^.*'([^']+)' file not found$/  \1/" <<<"$gaps" | sort -u
  exit 77
fi
exit 1
