"""What one change of the window in front costs, end to end, on sway (through its IPC and through the
foreign-toplevel protocol), on KWin (through its window-management protocol) and on GNOME Shell (through
Vantrel's extension) beside the X11 path on a private Xvfb desktop, all in the same run; and Vantrel's CPU
time per minute on each while its panel is shown.

One change: from asking the desktop to bring a window to the front (xdotool on X11, swaymsg on sway, a
one-shot KWin script loaded over D-Bus on KWin, gdbus calling the test helper extension on GNOME Shell) to
the X server mapping or unmapping the panel, seen by xev. Codex and an editor take turns in front, so every
change shows or hides the panel. The figures include the request's own process start where it has one.

    dbus-run-session -- /usr/bin/python3 bench/app/frontmost_switch.py build/bin/vantrel [switches] [seconds]
"""

import pathlib
import shutil
import statistics
import subprocess
import sys
import threading
import time

HERE = pathlib.Path(__file__).resolve().parent
TESTS = HERE.parents[1] / "tests" / "app"
sys.path[:0] = [str(HERE), str(TESTS / "desktop"), str(TESTS / "wayland")]

from footprint import cpu_seconds_during  # noqa: E402
from gnome_shell import GnomeShell  # noqa: E402
from kwin import KWin, window_management_entry  # noqa: E402
from sway import Sway  # noqa: E402
from vantrel_desktop import Desktop, Vantrel, install_into_prefix, wait_for  # noqa: E402

LIMITS_SCRIPT = HERE.parents[1] / "tests" / "fixtures" / "app" / "limits_script.py"
WARM_UP = 4.0


class PanelEvents:
    """The panel's map and unmap notifications, each with the time it arrived."""

    def __init__(self, desktop, window):
        self.events = []
        self.process = subprocess.Popen(["xev", "-id", str(window), "-event", "structure"], env=desktop.env,
                                        stdout=subprocess.PIPE, text=True)
        threading.Thread(target=self._read, daemon=True).start()
        time.sleep(0.5)  # xev selects its events once it runs

    def _read(self):
        for line in self.process.stdout:
            if line.startswith(("MapNotify", "UnmapNotify")):
                self.events.append((time.monotonic(), line.split()[0]))

    def first_after(self, start, kind):
        return wait_for(lambda: next((t for t, k in self.events if t >= start and k == kind), None),
                        f"{kind} of the panel")

    def close(self):
        self.process.terminate()
        self.process.wait()


def measure_switches(paths, activate, companion, other, switches):
    """Seconds from each request to the panel's change, per path; paths maps a name to (desktop, vantrel)."""
    watchers = {name: PanelEvents(desktop, vantrel.panel_window()) for name, (desktop, vantrel) in paths.items()}
    delays = {name: [] for name in paths}
    try:
        for turn in range(switches):
            window, kind = (companion, "MapNotify") if turn % 2 == 0 else (other, "UnmapNotify")
            start = time.monotonic()
            activate(window)
            for name, watcher in watchers.items():
                delays[name].append(watcher.first_after(start, kind) - start)
            time.sleep(0.3)  # past the settling of the change
    finally:
        for watcher in watchers.values():
            watcher.close()
    return delays


def start_vantrel(desktop, executable, prefix=None, **environment):
    vantrel = Vantrel(desktop, executable, LIMITS_SCRIPT, prefix)
    vantrel.start(**environment)
    return vantrel


def start_kwin(executable):
    """KWin, offering its window-management protocol to the Vantrel installed in the prefix returned."""
    prefix = install_into_prefix(executable, LIMITS_SCRIPT, "vantrel-bench-")
    entry = pathlib.Path(executable).parents[1] / "share" / "applications" / \
        "io.github.vantrel.Vantrel.WindowManagement.desktop"
    return KWin(window_management=[window_management_entry(entry, prefix / "bin" / "vantrel")]).start(), prefix


def start_gnome(executable):
    """GNOME Shell with Vantrel's extension as the build tree has it."""
    extension = pathlib.Path(executable).parents[1] / "share" / "gnome-shell" / "extensions" / \
        "vantrel-focus-gnome43@vantrel.github.io"
    return GnomeShell(extensions=[extension]).start()


def activate_from_a_command(window):
    """GNOME Shell's request through a process of its own, as xdotool and swaymsg are on X11 and sway."""
    window.session.run("gdbus", "call", "--session", "--dest", "io.github.vantrel.TestHelper", "--object-path",
                       "/io/github/vantrel/TestHelper", "--method", "io.github.vantrel.TestHelper.Activate",
                       str(window.pid))
    wait_for(window.has_focus, "the window in front")


def main(executable, switches=20, seconds=60.0):
    companion = str(pathlib.Path(executable).parent / "companion_window")
    x11, sway = Desktop().start(), Sway().start()
    kwin, prefix = start_kwin(executable)
    gnome = start_gnome(executable)
    programs = []
    try:
        x11_codex, x11_editor = x11.open_companion(companion, "Codex"), x11.open_companion(companion, "Editor")
        windows = {}
        for session in (sway, kwin, gnome):
            session.add_desktop_entry("codex", "Codex")
            windows[session] = (session.open_native(companion, "codex"),
                                session.open_native(companion, "org.example.Editor"))
        vantrels = {"X11 (Xvfb, openbox)": (x11, start_vantrel(x11, executable)),
                    "sway IPC": (sway, start_vantrel(sway, executable)),
                    "sway foreign toplevel": (sway, start_vantrel(sway, executable, SWAYSOCK=None)),
                    "KWin window management": (kwin, start_vantrel(kwin, executable, prefix)),
                    "GNOME Shell extension": (gnome, start_vantrel(gnome, executable))}
        programs = [vantrel for _, vantrel in vantrels.values()]
        x11_codex.activate()
        for codex, _ in windows.values():
            codex.activate()
        for desktop, vantrel in vantrels.values():
            wait_for(vantrel.panel_shown, "the panel")
        x11_editor.activate()
        for _, editor in windows.values():
            editor.activate()

        delays = measure_switches({k: v for k, v in vantrels.items() if v[0] is x11},
                                  lambda w: w.activate(), x11_codex, x11_editor, switches)
        for session, (codex, editor) in windows.items():
            activate = activate_from_a_command if session is gnome else lambda w: w.activate()
            delays.update(measure_switches({k: v for k, v in vantrels.items() if v[0] is session},
                                           activate, codex, editor, switches))

        x11_codex.activate()
        for codex, _ in windows.values():
            codex.activate()
        time.sleep(WARM_UP)
        used = cpu_seconds_during([v.process.pid for _, v in vantrels.values()], seconds)

        reference = statistics.median(delays["X11 (Xvfb, openbox)"])
        reference_cpu = used[vantrels["X11 (Xvfb, openbox)"][1].process.pid]
        print(f"{switches} changes of the window in front each; CPU over {seconds:.0f} s with the panel shown")
        print(f"{'path':24} {'median ms':>10} {'p90 ms':>8} {'vs X11':>7} {'CPU ms/min':>11} {'vs X11':>7}")
        for name, (_, vantrel) in vantrels.items():
            values = sorted(delays[name])
            median = statistics.median(values)
            p90 = values[int(len(values) * 0.9) - 1]
            cpu = used[vantrel.process.pid] * 1000 * 60 / seconds
            print(f"{name:24} {median * 1000:10.1f} {p90 * 1000:8.1f} {median / reference:7.2f} {cpu:11.1f} "
                  f"{used[vantrel.process.pid] / reference_cpu:7.2f}")
    finally:
        for vantrel in programs:
            vantrel.stop()
        gnome.stop()
        kwin.stop()
        shutil.rmtree(prefix, ignore_errors=True)
        sway.stop()
        x11.stop()


if __name__ == "__main__":
    main(sys.argv[1], *(int(a) if i == 0 else float(a) for i, a in enumerate(sys.argv[2:4])))
