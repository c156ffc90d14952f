#!/usr/bin/env bash
# Installs the build into a temporary root, puts a stand-in limits script in its share/vantrel, and starts
# the INSTALLED program on a private X desktop, through a symbolic link and from an unrelated working
# directory. The program must find the script beside itself, run it with "--live --json", stay up, and
# show the script's figures on its panel once a companion application ("Codex") is in front.
# Usage: installed_desktop_test.sh CMAKE BUILD_DIR FAKE_SCRIPT PANEL_PROBE
set -euo pipefail
if [ -z "${VANTREL_TEST_OWN_BUS:-}" ]; then
  # A session bus of its own, so the accessibility bus and the tray lookup stay inside this test.
  command -v dbus-run-session >/dev/null || { echo "FAIL: dbus-run-session is missing (Debian package: dbus)" >&2; exit 1; }
  VANTREL_TEST_OWN_BUS=1 exec dbus-run-session -- bash "$0" "$@"
fi
cmake=$1 build=$2 fake_script=$3 probe=$4
# shellcheck source=SCRIPTDIR/support.sh
source "$(dirname "$0")/support.sh"
require_tools "xvfb openbox x11-utils xdotool dbus python3" Xvfb openbox xprop xdotool xmessage dbus-send /usr/bin/python3
/usr/bin/python3 -c 'import pyatspi' 2>/dev/null || fail "pyatspi is missing (Debian package: python3-pyatspi)"

work=$(mktemp -d)
pids=()
cleanup() {
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do kill "${pids[i]}" 2>/dev/null || true; done
  wait 2>/dev/null || true
  restore_install_manifest "$build" "$work"
  rm -rf "$work"
}
trap cleanup EXIT
save_install_manifest "$build" "$work"
# The program's own output helps whoever reads a failure.
fail() {
  echo "FAIL: $*" >&2
  if [ -s "$work/vantrel.log" ]; then sed 's/^/vantrel: /' "$work/vantrel.log" >&2; fi
  exit 1
}

# Polls a condition for at most $1 seconds; the limits are generous because the machine may be loaded.
wait_for() {
  local seconds=$1
  shift
  for ((tick = 0; tick < seconds * 10; tick++)); do
    "$@" && return 0
    sleep 0.1
  done
  return 1
}

# DESTDIR keeps an autostart entry for every user (VANTREL_SYSTEM_AUTOSTART) out of the real /etc.
prefix=$work/root/usr
DESTDIR=$work/root "$cmake" --install "$build" --prefix /usr >/dev/null
install -m 755 "$fake_script" "$prefix/share/vantrel/vantrel.py"
mkdir "$work/links" "$work/elsewhere"
ln -s "$prefix/bin/vantrel" "$work/links/vantrel"

Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
pids+=($!)
wait_for 20 test -s "$work/display" || fail "Xvfb did not start: $(cat "$work/xvfb.log")"
DISPLAY=":$(cat "$work/display")"
export DISPLAY
openbox --sm-disable >/dev/null 2>&1 &
pids+=($!)
wm_ready() { xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; }
wait_for 20 wm_ready || fail "openbox did not start"
# Started before the program, the accessibility bus is there when Qt looks for it.
dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress >/dev/null \
  || fail "no accessibility bus"

export VANTREL_TEST_MARKER=$work/script-ran
(cd "$work/elsewhere" && QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 exec "$work/links/vantrel") >"$work/vantrel.log" 2>&1 &
app=$!
pids+=("$app")
# Ended, zombie included: the test reaps its children only at the end.
ended() {
  local state
  state=$(sed 's/.*) //' "/proc/$app/stat" 2>/dev/null | cut -d ' ' -f 1)
  [ -z "$state" ] || [ "$state" = Z ]
}
alive() { ! ended || fail "the installed vantrel ended early"; }

wait_for 60 test -f "$VANTREL_TEST_MARKER" || { alive; fail "the limits script beside the program was not run"; }
/usr/bin/python3 - "$VANTREL_TEST_MARKER" "$prefix/share/vantrel/vantrel.py" <<'PY' || fail "the script was run in another way: $(cat "$VANTREL_TEST_MARKER")"
import json, os, sys
run = json.load(open(sys.argv[1], encoding="utf-8"))
expected = os.path.realpath(sys.argv[2])
assert os.path.realpath(run["argv"][0]) == expected and run["script"] == expected, run
assert run["argv"][1:] == ["--live", "--json"], run["argv"]
PY
alive

# A window of class "Codex" in front brings the panel up; it is activated after another window, so the
# program sees the switch to it.
xmessage -name Codex "Codex" >/dev/null 2>&1 &
pids+=($!)
codex=$(xdotool search --sync --classname '^Codex$' | head -n 1)
xdotool set_window --class Codex "$codex"
xmessage -name Other "Other" >/dev/null 2>&1 &
pids+=($!)
other=$(xdotool search --sync --classname '^Other$' | head -n 1)
xdotool windowactivate --sync "$other"
xdotool windowactivate --sync "$codex"

/usr/bin/python3 "$probe" 60 "Zbývá · 5 h" "64 %" "Zbývá · týden" "81 %" \
  "Kredity: 7.25 · tokeny: API neposkytuje" "re:Limity [0-9]{2}:[0-9]{2} · počítač každé 2 s" \
  || fail "the script's document did not reach the panel"
alive

kill -TERM "$app"
wait_for 20 ended || fail "vantrel did not end on SIGTERM"
echo "installed program ran its script and showed its document"
