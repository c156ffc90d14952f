#!/usr/bin/python3
"""Whole process: `vantrel --sample` against psutil_sample.py (the same two readings by psutil), in CPU time
(user + system) and peak RSS, the median of several runs each, then the ratios.

Peak RSS comes from /usr/bin/time -v. CPU time comes from wait4() on the child itself: the same count that
time -v prints, but in microseconds rather than rounded to 10 ms, which is coarser than a whole vantrel run.
(wait4's peak RSS is not used: a child forked from this Python process starts out as large as Python.)

Usage: bench/telemetry/compare_psutil.py path/to/vantrel [runs]
"""
import os
import re
import statistics
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))


def cpu_seconds(command):
    with open(os.devnull, "wb") as null:
        # Without close_fds the child is started by posix_spawn, so almost nothing runs in it before exec.
        child = subprocess.Popen(command, stdout=null, close_fds=False)
        _, status, resources = os.wait4(child.pid, 0)
    if os.waitstatus_to_exitcode(status) != 0:
        sys.exit(f"{command[0]} failed")
    return resources.ru_utime + resources.ru_stime


def peak_rss_kb(command):
    result = subprocess.run(["/usr/bin/time", "-v", *command], stdout=subprocess.DEVNULL,
                            stderr=subprocess.PIPE, text=True, check=True)
    return int(re.search(r"Maximum resident set size \(kbytes\): (\d+)", result.stderr).group(1))


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    commands = {
        "vantrel --sample": [sys.argv[1], "--sample"],
        "psutil script": ["/usr/bin/python3", os.path.join(HERE, "psutil_sample.py")],
    }
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else 5

    medians = {}
    for label, command in commands.items():
        cpu = statistics.median(cpu_seconds(command) for _ in range(runs))
        rss = statistics.median(peak_rss_kb(command) for _ in range(runs))
        medians[label] = (cpu, rss)

    print(f"median of {runs} runs   CPU time (ms)   peak RSS (kB)")
    for label, (cpu, rss) in medians.items():
        print(f"{label:<20} {cpu * 1000:>13.1f}   {rss:>13.0f}")
    (vantrel_cpu, vantrel_rss), (psutil_cpu, psutil_rss) = medians.values()
    print(f"CPU time: psutil / vantrel = {psutil_cpu / vantrel_cpu:.1f}  (aim: at least 10)")
    print(f"peak RSS: vantrel / psutil = {vantrel_rss / psutil_rss:.2f}  (aim: at most 0.5)")


if __name__ == "__main__":
    main()
