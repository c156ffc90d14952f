"""The road not taken on KDE Plasma, measured beside the one taken: a KWin script loaded over D-Bus whose
handler calls back over D-Bus at each activation, against KWin's window-management protocol that Vantrel
binds. Headless KWin 5.27 with two X11 windows that take turns in front (xdotool asks KWin through
_NET_ACTIVE_WINDOW, which costs KWin little of its own).

Printed: the start-up of each (the script: loadScript and run, to its first call back; the protocol:
Vantrel's bind to the last window's initial state, from libwayland's WAYLAND_DEBUG time stamps), the
delay of one change (the request to the script's call back; the request to Vantrel's panel being mapped
or unmapped, which includes Vantrel's own work on top of the protocol's), and KWin's own CPU time per
change with nobody following, with the script loaded, and with Vantrel following through the protocol
(what each way costs the compositor, whose main thread also draws the screen).

    dbus-run-session -- /usr/bin/python3 bench/app/kwin_script_probe.py build/bin/vantrel [changes]
"""

import pathlib
import statistics
import sys
import time

from gi.repository import Gio, GLib

HERE = pathlib.Path(__file__).resolve().parent
TESTS = HERE.parents[1] / "tests" / "app"
sys.path[:0] = [str(HERE), str(TESTS / "desktop"), str(TESTS / "wayland")]

from compositors import dbus_call  # noqa: E402
from footprint import thread_cpu_seconds  # noqa: E402
from frontmost_switch import PanelEvents  # noqa: E402
from kwin import KWin, window_management_entry  # noqa: E402
from vantrel_desktop import Vantrel, install_into_prefix, wait_for  # noqa: E402

LIMITS_SCRIPT = HERE.parents[1] / "tests" / "fixtures" / "app" / "limits_script.py"
NAME = "io.github.vantrel.Probe"
INTERFACE = f"""<node><interface name="{NAME}"><method name="Activated">
<arg type="s" direction="in"/><arg type="s" direction="in"/></method></interface></node>"""
SCRIPT = f"""function report(client) {{
    callDBus("{NAME}", "/", "{NAME}", "Activated", client ? String(client.resourceClass) : "",
             client ? String(client.pid) : "0");
}}
workspace.clientActivated.connect(report);
report(workspace.activeClient);
"""


class CallBacks:
    """The script's calls, each with the time it arrived, on a bus name of the probe's own."""

    def __init__(self):
        self.calls = []
        bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        info = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
        bus.register_object("/", info, self._called, None, None)
        Gio.bus_own_name_on_connection(bus, NAME, Gio.BusNameOwnerFlags.NONE, None, None)
        self.wait(lambda: dbus_call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                    "NameHasOwner", GLib.Variant("(s)", (NAME,)), "(b)")[0])

    def _called(self, _bus, _sender, _path, _interface, _method, arguments, invocation):
        self.calls.append((time.monotonic(), arguments.unpack()))
        invocation.return_value(None)

    @staticmethod
    def wait(condition, timeout=20.0):
        context = GLib.MainContext.default()
        deadline = time.monotonic() + timeout
        while not condition():
            if time.monotonic() > deadline:
                raise AssertionError("timed out")
            context.iteration(False)
            time.sleep(0.0005)

    def first_after(self, start, pid):
        self.wait(lambda: any(t >= start and int(a[1]) == pid for t, a in self.calls))
        return next(t for t, a in self.calls if t >= start and int(a[1]) == pid)


def kwin_cpu_per_change(kwin, windows, changes, following=None):
    """KWin's CPU seconds per change over `changes` changes; following: wait for each to be seen."""
    pid = kwin.processes["kwin"].pid
    before = sum(thread_cpu_seconds(pid).values())
    for turn in range(changes):
        window = windows[turn % 2]
        start = time.monotonic()
        kwin.run("xdotool", "windowactivate", str(window.x11_window))
        if following:
            following(start, window)
        else:
            wait_for(lambda w=window: kwin.active_window() == w.x11_window, "the window in front", interval=0.002)
    return (sum(thread_cpu_seconds(pid).values()) - before) / changes


def debug_stamps(log):
    """(seconds, line) of each line in libwayland's debug log; its stamps are the wall clock's
    microseconds, wrapped at 32 bits."""
    return [(float(line[1:line.index("]")]) / 1000, line) for line in log.read_text().splitlines()
            if line.startswith("[")]


def protocol_delays(log, requests):
    """Seconds from each request (wall clock) to the first window state event after it."""
    wrap = 2 ** 32 / 1e6
    events = [t for t, line in debug_stamps(log) if "org_kde_plasma_window@" in line and "state_changed(" in line]
    delays = []
    for request in requests:
        stamp = request % wrap
        delays.append(min((t - stamp) % wrap for t in events))
    return delays


def protocol_start_up(log):
    """Seconds from binding the protocol to the answer of the second round trip after it (by then every
    window's initial state has arrived), in libwayland's debug log."""
    stamps = debug_stamps(log)
    bound = next(i for i, (_, line) in enumerate(stamps)
                 if "bind(" in line and "org_kde_plasma_window_management" in line)
    answers = [t for t, line in stamps[bound:] if "wl_callback@" in line and ".done(" in line]
    return answers[1] - stamps[bound][0]


def main(executable, changes=40):
    companion = str(pathlib.Path(executable).parent / "companion_window")
    entry = pathlib.Path(executable).parents[1] / "share" / "applications" / \
        "io.github.vantrel.Vantrel.WindowManagement.desktop"
    prefix = install_into_prefix(executable, LIMITS_SCRIPT, "vantrel-probe-")
    kwin = KWin(window_management=[window_management_entry(entry, prefix / "bin" / "vantrel")]).start()
    vantrel = None
    try:
        kwin.add_desktop_entry("codex", "Codex")
        codex, editor, other = (kwin.open_companion(companion, name) for name in ("Codex", "Editor", "Other"))
        # Changes between two windows that do not show the panel: the compositor's cost of being followed.
        windows = [editor, other]
        callbacks = CallBacks()
        idle = kwin_cpu_per_change(kwin, windows, changes)

        path = kwin.root / "probe.js"
        path.write_text(SCRIPT)
        start = time.monotonic()
        (number,) = dbus_call("org.kde.KWin", "/Scripting", "org.kde.kwin.Scripting", "loadScript",
                              GLib.Variant("(ss)", (str(path), "vantrel-probe")), "(i)")
        dbus_call("org.kde.KWin", f"/{number}", "org.kde.kwin.Script", "run")
        callbacks.wait(lambda: callbacks.calls)
        start_up = callbacks.calls[0][0] - start

        delays = []

        def seen(begin, window):
            delays.append(callbacks.first_after(begin, window.pid) - begin)

        scripted = kwin_cpu_per_change(kwin, windows, changes, seen)
        dbus_call("org.kde.KWin", "/Scripting", "org.kde.kwin.Scripting", "unloadScript",
                  GLib.Variant("(s)", ("vantrel-probe",)))

        codex.activate()
        vantrel = Vantrel(kwin, executable, LIMITS_SCRIPT, prefix)
        vantrel.start(WAYLAND_DEBUG="client")
        wait_for(vantrel.panel_shown, "the panel over Codex")
        panel = PanelEvents(kwin, vantrel.panel_window())
        mapped = []

        def panel_changed(begin, window):
            mapped.append(panel.first_after(begin, "MapNotify" if window is codex else "UnmapNotify") - begin)
            time.sleep(0.3)  # past the settling of the change

        try:
            kwin_cpu_per_change(kwin, [editor, codex], changes, panel_changed)
        finally:
            panel.close()
        requests = []

        def requested(begin, window):
            requests.append(time.time() - (time.monotonic() - begin))
            wait_for(lambda: kwin.active_window() == window.x11_window, "the window in front", interval=0.002)

        protocol = kwin_cpu_per_change(kwin, windows, changes, requested)
        told = protocol_delays(vantrel.stderr, requests)

        print(f"KWin script over D-Bus: start-up {start_up * 1000:.1f} ms; one change, request to call back: "
              f"median {statistics.median(delays) * 1000:.1f} ms (of {changes})")
        print(f"KWin protocol in Vantrel: start-up {protocol_start_up(vantrel.stderr) * 1000:.1f} ms; one change, "
              f"request to the event: median {statistics.median(told) * 1000:.1f} ms, request to the panel's "
              f"change: median {statistics.median(mapped) * 1000:.1f} ms (of {changes})")
        print(f"KWin's CPU per change ({changes} changes each):")
        for name, value in (("nobody following", idle), ("the script", scripted),
                            ("Vantrel, protocol", protocol)):
            print(f"  {name:20} {value * 1000:6.2f} ms  {value / idle:5.2f} x")
    finally:
        if vantrel:
            vantrel.stop()
        kwin.stop()


if __name__ == "__main__":
    main(sys.argv[1], *(int(a) for a in sys.argv[2:3]))
