#!/usr/bin/env bash
# Builds the Debian package with CPack, unpacks it into a throw-away root and checks its files, their
# modes, its control fields and its Depends line; lintian must report no error.
# Usage: deb_package_test.sh CPACK BUILD_DIR APP_ID VERSION SOURCE_DIR SYSTEM_AUTOSTART(yes|no)
set -euo pipefail
cpack=$1 build=$2 app_id=$3 version=$4 source=$5 system_autostart=$6
# shellcheck source=SCRIPTDIR/support.sh
source "$(dirname "$0")/support.sh"
require_tools "dpkg lintian binutils python3" dpkg-deb dpkg-query lintian readelf python3

work=$(mktemp -d)
trap 'restore_install_manifest "$build" "$work"; rm -rf "$work"' EXIT
save_install_manifest "$build" "$work"
"$cpack" --config "$build/CPackConfig.cmake" -B "$work/cpack" >"$work/cpack.log" 2>&1 \
  || { cat "$work/cpack.log" >&2; fail "cpack"; }
deb=$work/cpack/vantrel_${version}_$(dpkg --print-architecture).deb
[ -f "$deb" ] || fail "no $(basename "$deb") among: $(ls "$work/cpack")"

field() { dpkg-deb --field "$deb" "$1"; }
[ "$(field Package)" = vantrel ] || fail "Package: $(field Package)"
[ "$(field Version)" = "$version" ] || fail "Version: $(field Version)"
[ "$(field Section)" = utils ] || fail "Section: $(field Section)"
[[ "$(field Maintainer)" =~ ^[^\<]+\ \<[^@\>]+@[^\>]+\>$ ]] || fail "Maintainer: $(field Maintainer)"

# Every file, nothing more: a stray install rule (a test program, a header) would show up here.
root=$work/root
dpkg-deb --extract "$deb" "$root"
(cd "$root" && find . -type f -printf '%m %P\n' | sort) >"$work/files"
{
  echo "755 usr/bin/vantrel"
  echo "644 usr/lib/vantrel/vantrel_panel.so"
  echo "755 usr/share/vantrel/vantrel.py"
  echo "644 usr/share/applications/$app_id.desktop"
  echo "644 usr/share/applications/$app_id.WindowManagement.desktop"
  echo "644 usr/share/metainfo/$app_id.metainfo.xml"
  echo "644 usr/share/vantrel/autostart/$app_id.desktop"
  echo "644 usr/share/icons/hicolor/scalable/apps/$app_id.svg"
  for size in 16 22 24 32 48 64 128 256; do echo "644 usr/share/icons/hicolor/${size}x${size}/apps/$app_id.png"; done
  echo "644 usr/share/man/man1/vantrel.1.gz"
  echo "644 usr/share/doc/vantrel/copyright"
  echo "644 usr/share/doc/vantrel/changelog.gz"
  for uuid in vantrel-focus@vantrel.github.io vantrel-focus-gnome43@vantrel.github.io; do
    echo "644 usr/share/gnome-shell/extensions/$uuid/extension.js"
    echo "644 usr/share/gnome-shell/extensions/$uuid/metadata.json"
  done
  if [ "$system_autostart" = yes ]; then echo "644 etc/xdg/autostart/$app_id.desktop"; fi
} | sort >"$work/expected"
diff -u "$work/expected" "$work/files" || fail "the package's files differ from the expected list (- expected, + packaged)"
[ -z "$(cd "$root" && find . -type d ! -perm 755)" ] || fail "directories not 0755: $(cd "$root" && find . -type d ! -perm 755)"
if dpkg-deb --contents "$deb" | awk '{ print $2 }' | grep -qv '^root/root$'; then fail "files not owned by root"; fi
binaries=(usr/bin/vantrel usr/lib/vantrel/vantrel_panel.so)
for binary in "${binaries[@]}"; do
  if readelf --sections "$root/$binary" | grep -qE '\.(symtab|debug_info)'; then fail "$binary is not stripped"; fi
done

# Depends: python3 for the limits script, and the package of every shared library the program and its
# panel module link.
depends=$(field Depends)
declare -A depended
IFS=',' read -ra items <<<"$depends"
for item in "${items[@]}"; do
  name=${item#"${item%%[![:space:]]*}"}
  depended[${name%% *}]=1
done
[ -n "${depended[python3]:-}" ] || fail "Depends lacks python3: $depends"
while read -r soname; do
  owners=$(dpkg-query --search "$soname" 2>/dev/null | awk -F': ' -v so="$soname" '{ n = split($2, path, "/") } path[n] == so { sub(/:.*/, "", $1); print $1 }' | sort -u)
  [ -n "$owners" ] || fail "no installed package holds $soname"
  found=
  for owner in $owners; do [ -n "${depended[$owner]:-}" ] && found=1; done
  [ -n "$found" ] || fail "Depends names none of [$owners] for $soname: $depends"
done < <(for binary in "${binaries[@]}"; do readelf --dynamic "$root/$binary"; done \
           | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | sort -u)

# One version everywhere: package, changelog, AppStream release.
zcat "$root/usr/share/doc/vantrel/changelog.gz" | head -n 1 | grep -q "^vantrel ($version) " \
  || fail "the changelog's latest entry is not $version"
python3 - "$root/usr/share/metainfo/$app_id.metainfo.xml" "$version" <<'PY' || fail "the metainfo's newest release is not $version"
import sys, xml.etree.ElementTree as ET
releases = ET.parse(sys.argv[1]).getroot().findall("releases/release")
sys.exit(0 if releases and releases[0].get("version") == sys.argv[2] else 1)
PY
cmp -s "$source/packaging/debian/copyright" "$root/usr/share/doc/vantrel/copyright" || fail "copyright file"
grep -qx "Exec=/usr/bin/vantrel" "$root/usr/share/applications/$app_id.WindowManagement.desktop" \
  || fail "the KWin entry does not name /usr/bin/vantrel"

lintian --fail-on error "$deb" || fail "lintian reports errors"
echo "package OK: $(basename "$deb"), Depends: $depends"
