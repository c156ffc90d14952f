"""What one change of the window in front costs, end to end, on sway (through its IPC and through the
foreign-toplevel protocol) beside the X11 path on a private Xvfb desktop, all in the same run; and
Vantrel's CPU time per minute on each while its panel is shown.

One change: from asking the desktop to bring a window to the front (xdotool on X11, swaymsg on sway) to the
X server mapping or unmapping the panel, seen by xev. Codex and an editor take turns in front, so every
change shows or hides the panel. The figures include the request's own process start.

    dbus-run-session -- /usr/bin/python3 bench/app/frontmost_switch.py build/bin/vantrel [switches] [seconds]
"""

import pathlib
import statistics
import subprocess
import sys
import threading
import time

HERE = pathlib.Path(__file__).resolve().parent
TESTS = HERE.parents[1] / "tests" / "app"
sys.path[:0] = [str(HERE), str(TESTS / "desktop"), str(TESTS / "wayland")]

from footprint import cpu_seconds_during  # noqa: E402
from sway import Sway  # noqa: E402
from vantrel_desktop import Desktop, Vantrel, wait_for  # noqa: E402

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


def start_vantrel(desktop, executable, **environment):
    vantrel = Vantrel(desktop, executable, LIMITS_SCRIPT)
    vantrel.start(**environment)
    return vantrel


def main(executable, switches=20, seconds=60.0):
    companion = str(pathlib.Path(executable).parent / "companion_window")
    x11, sway = Desktop().start(), Sway().start()
    programs = []
    try:
        sway.add_desktop_entry("codex", "Codex")
        x11_codex, x11_editor = x11.open_companion(companion, "Codex"), x11.open_companion(companion, "Editor")
        codex, editor = sway.open_native(companion, "codex"), sway.open_native(companion, "org.example.Editor")
        vantrels = {"X11 (Xvfb, openbox)": (x11, start_vantrel(x11, executable)),
                    "sway IPC": (sway, start_vantrel(sway, executable)),
                    "sway foreign toplevel": (sway, start_vantrel(sway, executable, SWAYSOCK=None))}
        programs = [vantrel for _, vantrel in vantrels.values()]
        x11_codex.activate()
        codex.activate()
        for desktop, vantrel in vantrels.values():
            wait_for(vantrel.panel_shown, "the panel")
        x11_editor.activate()
        editor.activate()

        delays = measure_switches({k: v for k, v in vantrels.items() if v[0] is x11},
                                  lambda w: w.activate(), x11_codex, x11_editor, switches)
        delays.update(measure_switches({k: v for k, v in vantrels.items() if v[0] is sway},
                                       lambda w: w.activate(), codex, editor, switches))

        x11_codex.activate()
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
        sway.stop()
        x11.stop()


if __name__ == "__main__":
    main(sys.argv[1], *(int(a) if i == 0 else float(a) for i, a in enumerate(sys.argv[2:4])))
