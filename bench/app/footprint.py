"""Vantrel's CPU time and memory while it runs, beside conky showing the same figures, a minimal Qt
Widgets window, a Qt event loop waking every 2 s and the sampling alone, all measured in the same minute on
private Xvfb desktops:

- Vantrel with its panel shown (Codex in front), on one desktop with conky and the minimal Qt window;
- Vantrel with its panel hidden (another application in front), on a second desktop;
- qt_timer_floor (built beside minimal_qt_window): a Qt Widgets program whose 2-s timer does nothing, the
  floor of the hidden panel's event loop;
- sampling_loop (built beside it too): the same readings every 2 s and nothing else.

CPU is the time the process's threads spent on a CPU, those that ended during the minute included (the
limits script, a child, is not), as ms per minute after a warm-up; RSS is the resident memory at the end.

    python3 bench/app/footprint.py build/bin/vantrel build/bin/minimal_qt_window [seconds]
"""

import os
import pathlib
import shutil
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "tests" / "app" / "desktop"))

from vantrel_desktop import Desktop, Vantrel, wait_for  # noqa: E402

LIMITS_SCRIPT = HERE.parents[1] / "tests" / "fixtures" / "app" / "limits_script.py"
WARM_UP = 6.0


def thread_cpu_seconds(pid):
    """Time on a CPU of each of the process's threads now, in seconds, from the scheduler's nanoseconds
    (the 10 ms ticks of /proc/PID/stat are too coarse for a program that works a millisecond every two
    seconds)."""
    times = {}
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        try:
            times[task.name] = int((task / "schedstat").read_text().split()[0]) / 1e9
        except (FileNotFoundError, ProcessLookupError):
            continue  # a thread that ended meanwhile
    return times


def cpu_seconds_during(pids, seconds, interval=0.05):
    """CPU time of each process over the next seconds. A thread that ends (the limits run's worker) takes
    its time out of /proc with it, so the threads are read every interval and each keeps its last time
    seen: what a thread does in its last interval is all that can be missed."""
    start = {pid: thread_cpu_seconds(pid) for pid in pids}
    latest = {pid: dict(times) for pid, times in start.items()}
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        time.sleep(interval)
        for pid in pids:
            latest[pid].update(thread_cpu_seconds(pid))
    return {pid: sum(latest[pid].values()) - sum(start[pid].values()) for pid in pids}


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
        built = pathlib.Path(minimal_window).parent
        timer_floor = hidden_desktop.spawn("timer floor", [str(built / "qt_timer_floor")])
        sampling = hidden_desktop.spawn("sampling", [str(built / "sampling_loop")])
        measured = {
            "vantrel, panel shown": vantrel_shown.process.pid,
            "vantrel, panel hidden": vantrel_hidden.process.pid,
            "conky (same figures, 2 s)": conky.pid,
            "minimal Qt Widgets window": qt_window.pid,
            "Qt event loop, idle 2 s timer": timer_floor.pid,
            "sampling alone (every 2 s)": sampling.pid,
        }
        time.sleep(WARM_UP)
        used = cpu_seconds_during(list(measured.values()), seconds)
        rss = {name: rss_megabytes(pid) for name, pid in measured.items()}
        per_minute = {name: used[pid] * 1000 * 60 / seconds for name, pid in measured.items()}

        conky_cpu = per_minute["conky (same figures, 2 s)"]
        floor_rss = rss["minimal Qt Widgets window"]
        print(f"footprint over {seconds:.0f} s after a {WARM_UP:.0f} s warm-up ({os.cpu_count()} CPUs)")
        sampling_cpu = per_minute["sampling alone (every 2 s)"]
        print(f"{'program':32} {'CPU ms/min':>10} {'vs conky':>9} {'vs sampling':>12} {'RSS MB':>8} "
              f"{'vs Qt floor':>12}")
        for name in measured:
            ratio = per_minute[name] / conky_cpu if conky_cpu > 0 else float("inf")
            to_sampling = per_minute[name] / sampling_cpu if sampling_cpu > 0 else float("inf")
            print(f"{name:32} {per_minute[name]:10.1f} {ratio:8.2f}x {to_sampling:11.2f}x {rss[name]:8.1f} "
                  f"{rss[name] - floor_rss:+11.1f}")
        beyond = per_minute["vantrel, panel hidden"] - per_minute["Qt event loop, idle 2 s timer"] - sampling_cpu
        print(f"hidden panel beyond its event loop's floor and the sampling: {beyond:.1f} ms/min "
              "(the limits runs and the panel's own work)")
    finally:
        for vantrel in programs:
            vantrel.stop()
        shown_desktop.stop()
        hidden_desktop.stop()
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2], float(sys.argv[3]) if len(sys.argv) > 3 else 60.0)
