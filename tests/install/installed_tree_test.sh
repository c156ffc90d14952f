#!/usr/bin/env bash
# Installs the build into a temporary root, checks the desktop files there with the freedesktop
# validators, and runs the installed program's sample mode from an unrelated working directory.
# Usage: installed_tree_test.sh CMAKE BUILD_DIR APP_ID SYSTEM_AUTOSTART(yes|no)
set -euo pipefail
cmake=$1 build=$2 app_id=$3 system_autostart=$4
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=SCRIPTDIR/support.sh
source "$(dirname "$0")/support.sh"
require_tools "desktop-file-utils appstream python3" desktop-file-validate appstreamcli python3

work=$(mktemp -d)
trap 'restore_install_manifest "$build" "$work"; rm -rf "$work"' EXIT
save_install_manifest "$build" "$work"
# DESTDIR also catches what goes to an absolute path (/etc/xdg/autostart).
root=$work/root prefix=$work/root/usr
DESTDIR=$root "$cmake" --install "$build" --prefix /usr >/dev/null

expected=(
  bin/vantrel
  lib/vantrel/vantrel_panel.so
  share/vantrel/vantrel.py
  "share/applications/$app_id.desktop"
  "share/applications/$app_id.WindowManagement.desktop"
  "share/metainfo/$app_id.metainfo.xml"
  "share/vantrel/autostart/$app_id.desktop"
  "share/icons/hicolor/scalable/apps/$app_id.svg"
  share/man/man1/vantrel.1.gz
  share/doc/vantrel/copyright
  share/doc/vantrel/changelog.gz
)
for size in 16 22 24 32 48 64 128 256; do
  expected+=("share/icons/hicolor/${size}x${size}/apps/$app_id.png")
done
for uuid in vantrel-focus@vantrel.github.io vantrel-focus-gnome43@vantrel.github.io; do
  expected+=("share/gnome-shell/extensions/$uuid/extension.js" "share/gnome-shell/extensions/$uuid/metadata.json")
done
for file in "${expected[@]}"; do
  [ -f "$prefix/$file" ] || fail "not installed: $file"
done
[ -x "$prefix/bin/vantrel" ] || fail "bin/vantrel is not executable"
if [ "$system_autostart" = yes ]; then
  cmp -s "$root/etc/xdg/autostart/$app_id.desktop" "$prefix/share/vantrel/autostart/$app_id.desktop" \
    || fail "no autostart entry for every user in /etc/xdg/autostart"
else
  [ ! -e "$root/etc" ] || fail "installed into /etc without VANTREL_SYSTEM_AUTOSTART"
fi

desktop-file-validate "$prefix/share/applications/$app_id.desktop" "$prefix/share/vantrel/autostart/$app_id.desktop" \
  "$prefix/share/applications/$app_id.WindowManagement.desktop" || fail "desktop-file-validate"
appstreamcli validate --no-net "$prefix/share/metainfo/$app_id.metainfo.xml" || fail "appstreamcli validate"
grep -q '<project_license>Apache-2.0</project_license>' "$prefix/share/metainfo/$app_id.metainfo.xml" \
  || fail "the metainfo names another licence"
grep -qx 'License: Apache-2.0' "$prefix/share/doc/vantrel/copyright" || fail "the copyright file names another licence"
grep -qx "Icon=$app_id" "$prefix/share/applications/$app_id.desktop" || fail "the desktop entry names another icon"
# KWin grants its window-management protocol to the program named by this absolute path: the installed one.
kwin_entry=$prefix/share/applications/$app_id.WindowManagement.desktop
grep -qx "Exec=/usr/bin/vantrel" "$kwin_entry" || fail "the KWin entry names another program: $(grep ^Exec= "$kwin_entry")"
grep -qx "X-KDE-Wayland-Interfaces=org_kde_plasma_window_management" "$kwin_entry" || fail "the KWin entry grants nothing"
grep -qx "NoDisplay=true" "$kwin_entry" || fail "the KWin entry shows in menus"
other=$work/other
DESTDIR=$other "$cmake" --install "$build" --prefix /opt/vantrel >/dev/null
grep -qx "Exec=/opt/vantrel/bin/vantrel" "$other/opt/vantrel/share/applications/$app_id.WindowManagement.desktop" \
  || fail "installed into /opt/vantrel, the KWin entry names another program"

# The program must not depend on where it is started from.
mkdir "$work/elsewhere"
cd "$work/elsewhere"
"$prefix/bin/vantrel" --sample >sample.json || fail "installed vantrel --sample exited with status $?"
python3 "$here/sample_record_check.py" sample.json ||
  fail "vantrel --sample printed an unexpected record: $(cat sample.json)"
echo "installed tree OK"
