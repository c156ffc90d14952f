#!/usr/bin/env python3
"""Runs the real program for a long time on a private desktop and watches it age.

The limits script is random_limits.py (a different behaviour on every run), "Obnovit limity" is chosen
from the tray menu every few seconds so the script runs far more often than once a minute, and windows
of companion and other applications come and go in front. Every few seconds the program's resident
memory, open descriptors, threads and descendant processes are recorded; a crash is recorded and the
program started again. At the end the program is quit from its menu and whatever it left running is
listed. Run inside `dbus-run-session` (soak.sh does); needs the desktop test tools (Xvfb, openbox,
trayer, xdotool, xmessage, python3-pyatspi).
"""

import argparse
import collections
import json
import os
import pathlib
import random
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent.parent / "tests" / "app" / "desktop"))

import accessibility as a11y  # noqa: E402
from processes import command_of, descendants, parents, proc_status  # noqa: E402
from soak_desktop import FrontWindows, Program  # noqa: E402
from vantrel_desktop import Desktop, become_subreaper, wait_for  # noqa: E402

SETTLE_SECONDS = 60  # memory is judged from the first minute on: start-up allocations are done by then


class Soak:
    def __init__(self, arguments):
        self.arguments = arguments
        self.rng = random.Random(arguments.seed)
        self.report = pathlib.Path(arguments.report)
        self.report.mkdir(parents=True, exist_ok=True)
        self.runs = self.report / "script-runs.txt"
        self.runs.write_text("")
        self.samples = []
        self.crashes = []
        self.menu_failures = 0
        self.refreshes = 0

    def run(self):
        become_subreaper()
        self.desktop = Desktop(tray=True).start()
        try:
            self.desktop.env.update(TZ="Europe/Prague", LANG="C.UTF-8", VANTREL_SOAK_RUNS=str(self.runs))
            self.vantrel = self.start_program()
            self.windows = FrontWindows(self.desktop, self.rng)
            self.loop()
            self.windows.close_all()
            quit_status, left_running = self.quit()
        finally:
            self.desktop.stop()
        return self.summarise(quit_status, left_running)

    def start_program(self):
        return Program(self.desktop, self.arguments.executable, HERE / "random_limits.py")

    def loop(self):
        begin = time.monotonic()
        deadline = begin + self.arguments.seconds
        next_sample = next_churn = next_refresh = begin
        while time.monotonic() < deadline:
            now = time.monotonic()
            if self.vantrel.process.poll() is not None:
                self.record_crash(now - begin)
            if now >= next_sample:
                self.sample(now - begin)
                next_sample = now + self.arguments.sample_every
            if now >= next_churn:
                self.windows.churn()
                next_churn = now + self.rng.uniform(1, 2 * self.arguments.churn_every)
            if now >= next_refresh:
                self.refresh()
                next_refresh = now + self.arguments.refresh_every
            self.reap_orphans()
            time.sleep(0.2)

    def record_crash(self, at):
        status = self.vantrel.process.returncode
        errors = self.vantrel.stderr.read_text(errors="replace")[-2000:] if self.vantrel.stderr.exists() else ""
        self.crashes.append({"at_seconds": round(at, 1), "status": status, "stderr_tail": errors})
        print(f"CRASH at {at:.0f} s: status {status}", flush=True)
        self.vantrel.stop()
        self.vantrel = self.start_program()

    def sample(self, at):
        pid = self.vantrel.process.pid
        status = proc_status(pid)
        try:
            fds = len(os.listdir(f"/proc/{pid}/fd"))
        except OSError:
            fds = -1
        family = descendants(pid, parents())
        row = {"seconds": round(at, 1), "rss_kb": int(status.get("VmRSS", "0 kB").split()[0]), "fds": fds,
               "threads": int(status.get("Threads", "0")), "descendants": len(family),
               "script_runs": len(self.runs.read_text().splitlines())}
        self.samples.append(row)
        print(" ".join(f"{key}={value}" for key, value in row.items()), flush=True)

    def refresh(self):
        """"Obnovit limity" from the tray menu, as a user would: a new run unless one is in flight."""
        try:
            tray = self.vantrel.tray_windows()
            if not tray:
                raise RuntimeError("no tray item")
            a11y.TrayMenu(self.desktop, tray[0]).open().choose(2)
            self.refreshes += 1
        except Exception as error:  # a menu that did not open is noted, not fatal: the soak goes on
            self.menu_failures += 1
            active = self.desktop.active_window()
            print(f"menu: {error} (in front: {self.desktop.xprop(active, 'WM_CLASS').strip()})", flush=True)

    def reap_orphans(self):
        """Scripts and their children that outlive their parent come to us (subreaper); reap the ended."""
        known = {process.pid for process in self.desktop.processes.values()}
        known |= {process.pid for process, _ in self.windows.windows} | {self.vantrel.process.pid}
        for pid, parent in parents().items():
            if parent == os.getpid() and pid not in known:
                try:
                    os.waitpid(pid, os.WNOHANG)
                except ChildProcessError:
                    pass

    def quit(self):
        """"Ukončit Vantrel" from the menu; then whatever the program started must end with it."""
        pid = self.vantrel.process.pid
        family_before = descendants(pid, parents())
        try:
            a11y.TrayMenu(self.desktop, self.vantrel.tray_windows()[0]).open().choose_last(5)
            status = self.vantrel.process.wait(30)
        except Exception as error:
            print(f"quit from the menu failed: {error}", flush=True)
            status = None
        self.vantrel.stop()
        known = {process.pid for process in self.desktop.processes.values()}

        def strays():
            self.reap_orphans()
            table = parents()
            return [p for p in table if table[p] == os.getpid() and p not in known] + \
                   [p for p in family_before if p in table]

        try:
            wait_for(lambda: not strays(), "the program's processes to end", timeout=15)
        except AssertionError:
            pass
        left = [{"pid": p, "command": command_of(p)} for p in sorted(set(strays()))]
        return status, left

    def summarise(self, quit_status, left_running):
        settled = [s for s in self.samples if s["seconds"] >= SETTLE_SECONDS] or self.samples[-1:]
        runs = collections.Counter(line.split()[2] for line in self.runs.read_text().splitlines() if line)
        summary = {
            "seconds": self.arguments.seconds,
            "crashes": self.crashes,
            "script_runs": sum(runs.values()),
            "script_runs_by_kind": dict(sorted(runs.items())),
            "refreshes_from_menu": self.refreshes,
            "menu_failures": self.menu_failures,
            "rss_kb_after_first_minute": settled[0]["rss_kb"] if settled else None,
            "rss_kb_at_end": settled[-1]["rss_kb"] if settled else None,
            "rss_kb_max_after_first_minute": max(s["rss_kb"] for s in settled) if settled else None,
            "rss_growth_kb": settled[-1]["rss_kb"] - settled[0]["rss_kb"] if settled else None,
            "fds_after_first_minute": [min(s["fds"] for s in settled), max(s["fds"] for s in settled)]
            if settled else None,
            "threads_range": [min(s["threads"] for s in settled), max(s["threads"] for s in settled)]
            if settled else None,
            "descendants_max": max(s["descendants"] for s in self.samples) if self.samples else None,
            "quit_exit_status": quit_status,
            "left_running_after_quit": left_running,
        }
        with open(self.report / "samples.csv", "w", encoding="utf-8") as table:
            table.write(",".join(self.samples[0].keys()) + "\n" if self.samples else "")
            for sample in self.samples:
                table.write(",".join(str(value) for value in sample.values()) + "\n")
        (self.report / "summary.json").write_text(json.dumps(summary, indent=2, ensure_ascii=False))
        print_curve(self.samples)
        print(json.dumps(summary, indent=2, ensure_ascii=False))
        healthy = (not self.crashes and quit_status == 0 and not left_running
                   and (summary["rss_growth_kb"] or 0) < 1024)
        return 0 if healthy else 1


def print_curve(samples):
    """Resident memory per minute: the last sample of each minute."""
    per_minute = {}
    for sample in samples:
        per_minute[int(sample["seconds"] // 60)] = sample
    print("minute  rss_kb  fds  threads  descendants  script_runs")
    for minute, sample in sorted(per_minute.items()):
        print(f"{minute:6d} {sample['rss_kb']:7d} {sample['fds']:4d} {sample['threads']:8d} "
              f"{sample['descendants']:12d} {sample['script_runs']:12d}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("seconds", type=float, help="how long to run")
    parser.add_argument("executable", help="the vantrel executable of a build (copied into a private prefix)")
    parser.add_argument("--report", default=os.path.join(tempfile.gettempdir(), "vantrel-soak-report"),
                        help="folder for samples.csv, script-runs.txt and summary.json")
    parser.add_argument("--sample-every", type=float, default=5.0)
    parser.add_argument("--churn-every", type=float, default=3.0)
    parser.add_argument("--refresh-every", type=float, default=8.0)
    parser.add_argument("--seed", type=int, default=None)
    sys.exit(Soak(parser.parse_args()).run())


if __name__ == "__main__":
    main()
