#!/usr/bin/env bash
# Installs, by Debian package name, whatever building, running and testing Vantrel needs.
# Idempotent: packages already present are left alone and apt is not called at all.
set -euo pipefail

build=(cmake ninja-build g++ pkg-config python3
       qt6-base-dev libgl-dev libxcb1-dev libglib2.0-dev libicu-dev nlohmann-json3-dev
       libwayland-dev libwayland-bin wayland-protocols plasma-wayland-protocols)
run=(fonts-dejavu-core fonts-cantarell)
test=(libgtest-dev libgmock-dev libbenchmark-dev clang-14 libclang-rt-14-dev libc++-14-dev
      xvfb xauth x11-utils x11-xserver-utils openbox trayer xdotool xcompmgr
      at-spi2-core python3-pyatspi dbus dbus-x11 imagemagick python3-psutil
      procps time strace lintian desktop-file-utils appstream dpkg-dev conky-std
      sway kwin-wayland gnome-shell xwayland qt6-wayland wayland-utils grim waybar libglib2.0-bin
      gnome-shell-extension-appindicator)

want=("${build[@]}" "${run[@]}")
if [ "${1:-}" = "--test" ]; then
  want+=("${test[@]}")
  # A nodejs from elsewhere (nodesource) carries its own npm and conflicts with Debian's.
  command -v npm >/dev/null 2>&1 || want+=(nodejs npm)
fi

missing=()
for p in "${want[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO=sudo
echo "Installing: ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
