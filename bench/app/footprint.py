"""Vantrel's CPU time and memory while it runs, beside conky showing the same figures and a minimal Qt
Widgets window, all measured in the same minute on private Xvfb desktops:

- Vantrel with its panel shown (Codex in front), on one desktop with conky and the minimal Qt window;
- Vantrel with its panel hidden (another application in front), on a second desktop.

CPU is the time the process's threads spent on a CPU (the limits script, a child, is not included), as
ms per minute after a warm-up; RSS is the resident memory at the end.

    python3 bench/app/footprint.py build/bin/vantrel build/bin/minimal_qt_window [seconds]
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "tests" / "app" / "desktop"))

from vantrel_desktop import Desktop, Vantrel, wait_for  # noqa: E402

LIMITS_SCRIPT = HERE.parents[1] / "tests" / "fixtures" / "app" / "limits_script.py"
WARM_UP = 6.0


def cpu_seconds(pid):
    """Time on a CPU of all the process's threads, in nanoseconds from the scheduler (the 10 ms ticks of
    /proc/PID/stat are too coarse for a program that works a millisecond every two seconds)."""
    total = 0
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        try:
            total += int((task / "schedstat").read_text().split()[0])
        except (FileNotFoundError, ProcessLookupError):
            continue  # a thread that ended meanwhile
    return total / 1e9


def rss_megabytes(pid):
    for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith("VmRSS:"):
            return int(line.split()[1]) / 1024
    return float("nan")


def primary_interface():
    for line in pathlib.Path("/proc/net/route").read_text().splitlines()[1:]:
        fields = line.split()
        if fields[1] == "00000000":
            return fields[0]
    return "lo"


def conky_config(folder):
    cores = os.cpu_count() or 1
    per_core = " ".join(f"${{cpu cpu{n}}}%" for n in range(1, cores + 1))
    interface = primary_interface()
    path = folder / "conky.conf"
    path.write_text(f"""conky.config = {{
    out_to_x = true, own_window = true, own_window_type = 'normal', double_buffer = true,
    update_interval = 2, use_xft = true, font = 'DejaVu Sans:size=9', minimum_width = 260,
}}
conky.text = [[
CPU ${{cpu cpu0}}% ${{cpubar cpu0}}
{per_core}
RAM ${{memperc}}% ${{membar}}
Net ${{downspeedf {interface}}} / ${{upspeedf {interface}}} KiB/s
]]
""")
    return path


def document():
    return {"observedAt": int(time.time()), "buckets": [{"id": "codex", "windows": [
        {"slot": "primary", "windowDurationMins": 300, "remainingPercent": 64},
        {"slot": "secondary", "windowDurationMins": 10080, "remainingPercent": 12}]}]}


def main(executable, minimal_window, seconds=60.0):
    if shutil.which("conky") is None:
        sys.exit("footprint: conky is missing (Debian: apt-get install conky-std)")
    folder = pathlib.Path(tempfile.mkdtemp(prefix="vantrel-footprint-"))
    shown_desktop, hidden_desktop = Desktop().start(), Desktop().start()
    programs = []
    try:
        companion = str(pathlib.Path(executable).parent / "companion_window")
        shown_desktop.open_companion(companion, "Codex")
        hidden_desktop.open_companion(companion, "Editor")
        vantrel_shown = Vantrel(shown_desktop, executable, LIMITS_SCRIPT)
        vantrel_hidden = Vantrel(hidden_desktop, executable, LIMITS_SCRIPT)
        for vantrel in (vantrel_shown, vantrel_hidden):
            vantrel.behave(document())
            vantrel.start()
            programs.append(vantrel)
        wait_for(vantrel_shown.panel_shown, "the shown panel")
        conky = shown_desktop.spawn("conky", ["conky", "-c", str(conky_config(folder))])
        qt_window = shown_desktop.spawn("minimal", [minimal_window])
        measured = {
            "vantrel, panel shown": vantrel_shown.process.pid,
            "vantrel, panel hidden": vantrel_hidden.process.pid,
            "conky (same figures, 2 s)": conky.pid,
            "minimal Qt Widgets window": qt_window.pid,
        }
        time.sleep(WARM_UP)
        before = {name: cpu_seconds(pid) for name, pid in measured.items()}
        time.sleep(seconds)
        after = {name: cpu_seconds(pid) for name, pid in measured.items()}
        rss = {name: rss_megabytes(pid) for name, pid in measured.items()}
        per_minute = {name: (after[name] - before[name]) * 1000 * 60 / seconds for name in measured}

        conky_cpu = per_minute["conky (same figures, 2 s)"]
        floor_rss = rss["minimal Qt Widgets window"]
        print(f"footprint over {seconds:.0f} s after a {WARM_UP:.0f} s warm-up ({os.cpu_count()} CPUs)")
        print(f"{'program':32} {'CPU ms/min':>10} {'vs conky':>9} {'RSS MB':>8} {'vs Qt floor':>12}")
        for name in measured:
            ratio = per_minute[name] / conky_cpu if conky_cpu > 0 else float("inf")
            print(f"{name:32} {per_minute[name]:10.1f} {ratio:8.2f}x {rss[name]:8.1f} "
                  f"{rss[name] - floor_rss:+11.1f}")
    finally:
        for vantrel in programs:
            vantrel.stop()
        shown_desktop.stop()
        hidden_desktop.stop()
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2], float(sys.argv[3]) if len(sys.argv) > 3 else 60.0)
