# shellcheck shell=bash
# Helpers of the install tests; sourced.

fail() {
  echo "FAIL: $*" >&2
  exit 1
}

# Fails with the Debian packages to install when a tool is missing.
require_tools() {
  local packages=$1
  shift
  for tool in "$@"; do
    command -v "$tool" >/dev/null || fail "$tool is missing (Debian packages: $packages)"
  done
}

# `cmake --install` and `cpack` rewrite the build directory's install_manifest.txt, the list of files a
# user's uninstall reads; the tests put the user's copy back (their RESOURCE_LOCK keeps them from racing).
save_install_manifest() { # BUILD_DIR WORK_DIR
  if [ -f "$1/install_manifest.txt" ]; then cp -p "$1/install_manifest.txt" "$2/install_manifest.txt"; fi
}
restore_install_manifest() { # BUILD_DIR WORK_DIR
  if [ -f "$2/install_manifest.txt" ]; then
    cp -p "$2/install_manifest.txt" "$1/install_manifest.txt"
  else
    rm -f "$1/install_manifest.txt"
  fi
}
