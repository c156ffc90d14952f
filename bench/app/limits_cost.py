"""What the account limits cost: the whole process tree of Vantrel with the real limits script and the real
Codex CLI (npm package @openai/codex, pinned as in the tests), against a mock of its backend on 127.0.0.1
in a private network namespace, beside the limits script as it was at REFERENCE, measured in the same run.

1. Each way of reading, run as Vantrel runs the script, several times in turn: CPU of the run and of
   every process it waited for (plus the kept server's or the daemon's own CPU where one answered), wall
   time and peak resident memory.
2. Vantrel itself on private Xvfb desktops (panel hidden) for a few minutes, in two scenarios, both
   scripts side by side (their reads 30 s apart), conky showing the machine's figures as a peer:
   - active: a session file receives a token_count event with rate_limits every 20-40 s, as while the
     user works in Codex;
   - idle: the newest recorded limits are an hour old.
   The whole tree per minute: Vantrel's own threads (the scheduler's nanoseconds, ended threads kept),
   every script run with everything it waited for (from limits_tap, the python3 that Vantrel finds on its
   PATH here), and a kept server with its keeper; with the wall time, peak memory and the age of the
   observation behind each document Vantrel read.

    python3 bench/app/limits_cost.py build/bin/vantrel [--runs N] [--minutes M] [--rounds R]

Needs what the codex tests need (npm and its registry on the first run, strace, unshare) and what the
footprint needs (Xvfb, openbox, trayer, conky-std, dbus-run-session); limits_tap is built beside vantrel.
"""

import argparse
import json
import os
import pathlib
import random
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import threading
import time

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
sys.path.insert(0, str(ROOT / "tests" / "app" / "desktop"))
sys.path.insert(0, str(ROOT / "tests" / "resources"))
sys.path.insert(0, str(ROOT / "tools" / "soak"))

from codex_cli_test import bring_loopback_up, isolating_prefix  # noqa: E402
from codex_harness import MockBackend, installed_codex, write_auth  # noqa: E402
from footprint import conky_config, rss_megabytes, thread_cpu_seconds  # noqa: E402
from processes import descendants, parents  # noqa: E402
from script_support import SESSION_LIMITS, load_script, rfc3339, running, token_count_line, wait_until  # noqa: E402
from vantrel_desktop import Desktop, become_subreaper, die_with_parent, install_into_prefix  # noqa: E402

REFERENCE = "9d67d5e"
PYTHON = "/usr/bin/python3"
SESSION_FILE = "2026/03/14/rollout-2026-03-14T09-00-00-bench.jsonl"
ISOLATED = "VANTREL_BENCH_ISOLATED"
# Start-up switches measured as a lever (none of them changed the cost).
MORE_SWITCHES = ["analytics.enabled=false", "feedback.enabled=false", "features.goals=false",
                 "features.hooks=false", "features.skill_search=false", "features.in_app_updates=false",
                 "features.daemon_auto_start=false", "features.shell_snapshot=false"]


def median_range(values, digits=0):
    if not values:
        return "-"
    low, middle, high = min(values), statistics.median(values), max(values)
    if len(values) == 1 or round(low, digits) == round(high, digits):
        return f"{middle:.{digits}f}"
    return f"{middle:.{digits}f} [{low:.{digits}f}-{high:.{digits}f}]"


def tap_records(log):
    if not os.path.exists(log):
        return []
    with open(log, encoding="utf-8") as stream:
        return [json.loads(line) for line in stream if line.strip()]


def observed_at(record):
    try:
        return json.loads(record["stdout"])["observedAt"]
    except (ValueError, KeyError, TypeError):
        return None


def process_tree(roots, table=None):
    """The given processes and all their descendants, from /proc (or from a table of parents read once)."""
    table = parents() if table is None else table
    return {pid for root in roots if root in table for pid in (root, *descendants(root, table))}


def reaped_children_seconds(pid):
    """CPU of the children a process has waited for (clock ticks: 10 ms steps)."""
    try:
        with open(f"/proc/{pid}/stat", encoding="ascii", errors="replace") as stream:
            fields = stream.read().rpartition(")")[2].split()
        return (int(fields[13]) + int(fields[14])) / os.sysconf("SC_CLK_TCK")
    except (OSError, ValueError, IndexError):
        return 0.0


class TreeClock:
    """CPU seconds of a changing set of processes: every thread's last time seen, so that threads and
    processes that end keep what they used up to the last look (taken every 50 ms); with `children`, also
    what each process's waited-for children used."""

    def __init__(self, children=True):
        self.threads, self.children, self.with_children = {}, {}, children

    def look(self, pids):
        for pid in pids:
            try:
                seconds_by_thread = thread_cpu_seconds(pid)
            except OSError:
                continue  # ended meanwhile
            for tid, seconds in seconds_by_thread.items():
                self.threads[(pid, tid)] = seconds
            if self.with_children:
                self.children[pid] = max(self.children.get(pid, 0.0), reaped_children_seconds(pid))

    def total(self):
        return sum(self.threads.values()) + sum(self.children.values())


def kept_processes(runtime, table=None):
    """The keepers (their pids are in their lock files) under a private runtime directory, and their
    servers."""
    keepers = []
    for lock in pathlib.Path(runtime, "vantrel").glob("*.lock"):
        try:
            keepers.append(int(lock.read_text().strip()))
        except (OSError, ValueError):
            continue
    return process_tree(keepers, table)


class Bench:
    def __init__(self, executable, root, backend, codex):
        self.executable, self.root, self.backend, self.codex = executable, root, backend, codex
        self.tap = str(pathlib.Path(executable).parent / "limits_tap")
        self.tap_dir = root / "tap"
        self.tap_dir.mkdir()
        (self.tap_dir / "python3").symlink_to(self.tap)
        self.new_script = str(ROOT / "resources" / "vantrel.py")
        self.reference_script = str(root / "vantrel-reference.py")
        text = subprocess.run(["git", "-C", str(ROOT), "show", f"{REFERENCE}:resources/vantrel.py"],
                              capture_output=True, text=True, check=True).stdout
        pathlib.Path(self.reference_script).write_text(text)
        self.keeper_runtimes = []
        self.daemon = None

    def home(self, name, session_seconds=None):
        """A user of their own: HOME, a signed-in CODEX_HOME, a private runtime directory."""
        base = self.root / name
        codex_home = base / "codex-home"
        codex_home.mkdir(parents=True)
        write_auth(str(codex_home))
        runtime = base / "run"
        runtime.mkdir(mode=0o700)
        self.keeper_runtimes.append(runtime)
        environment = {"HOME": str(base), "PATH": "/usr/bin:/bin", "LANG": "C.UTF-8",
                       "CODEX_HOME": str(codex_home), "XDG_CACHE_HOME": str(base / "cache"),
                       "VANTREL_CODEX": self.codex, "VANTREL_CODEX_CONFIG": self.backend.config_overrides()}
        if session_seconds is not None:
            self.observe(codex_home, session_seconds)
        return environment, runtime

    @staticmethod
    def observe(codex_home, seconds, append=False):
        path = pathlib.Path(codex_home, "sessions", SESSION_FILE)
        path.parent.mkdir(parents=True, exist_ok=True)
        with open(path, "a" if append else "w", encoding="utf-8") as stream:
            stream.write(token_count_line(rfc3339(seconds), SESSION_LIMITS) + "\n")

    def end_keepers(self):
        for runtime in self.keeper_runtimes:
            kept = kept_processes(runtime)
            for pid in kept:
                try:
                    os.kill(pid, signal.SIGTERM)
                except ProcessLookupError:
                    pass
            for pid in kept:
                wait_until(lambda pid=pid: not running(pid), "a keeper to end", timeout=20)
        reap_orphans()

    # --- one read at a time ----------------------------------------------------------------------------
    def per_read(self, runs):
        """Each way of reading `runs` times, in turn; returns rows of (name, cpu ms, wall ms, peak MB)."""
        ways = self.ways_of_reading()
        results = {way.name: [] for way in ways}
        for run in range(runs):
            for way in ways:
                results[way.name].append(self.read_once(way))
            print(f"  run {run + 1}/{runs} done", file=sys.stderr)
        self.end_keepers()
        return [(name, [r[0] for r in rows], [r[1] for r in rows], [r[2] for r in rows])
                for name, rows in results.items()]

    def read_once(self, way):
        """One run through the tap, and the CPU of the server that answered it, if one kept running."""
        log = str(self.root / "tap-once.log")
        if os.path.exists(log):
            os.remove(log)
        if way.prepare:
            way.prepare()
        clock = TreeClock()
        servers = way.servers() if way.servers else set()
        clock.look(servers)
        before = clock.total()
        arguments = ["-c", "pass"] if way.script is None else [way.script, "--live", "--json"]
        tap_environment = {**way.environment, "VANTREL_TAP_PYTHON": PYTHON, "VANTREL_TAP_LOG": log}
        subprocess.run([self.tap, *arguments], env=tap_environment, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, process_group=0, check=False)
        if servers:
            time.sleep(0.5)  # what the server does once it has answered belongs to the read
            clock.look(servers)
        record = tap_records(log)[0]
        if way.script is not None and record["status"] != 0:
            raise RuntimeError(f"a read failed: {record}")
        return (record["cpuMs"] + (clock.total() - before) * 1000, (record["end"] - record["start"]) * 1000,
                record["peakRssKb"] / 1024)

    def ways_of_reading(self):
        reference, new = self.reference_script, self.new_script
        plain, _ = self.home("once-launcher")
        in_prefix, _ = self.home("once-npm-prefix")
        prefix = pathlib.Path(in_prefix["HOME"], "npm-global")
        (prefix / "bin").mkdir(parents=True)
        (prefix / "bin" / "codex").symlink_to(self.codex)
        pathlib.Path(in_prefix["HOME"], ".npmrc").write_text(f"prefix={prefix}\n")
        del in_prefix["VANTREL_CODEX"]
        switches = dict(plain, VANTREL_CODEX_CONFIG="\n".join([plain["VANTREL_CODEX_CONFIG"], *MORE_SWITCHES]))
        no_lsb = dict(plain, PATH=str(self.path_without(["lsb_release", "getconf"])))
        kept, kept_runtime = self.home("once-kept")
        kept["XDG_RUNTIME_DIR"] = str(kept_runtime)
        daemon, daemon_processes = self.start_daemon()
        fresh, _ = self.home("once-fresh")
        ways = [
            Way(f"reference ({REFERENCE}): live, through npm's launcher", reference, plain),
            Way("reference: codex only in npm's prefix (npm runs every read)", reference, in_prefix),
            Way("new: live, the CLI's binary started directly", new, plain),
            Way("new: same, codex only in npm's prefix (remembered)", new, in_prefix),
            Way("new: same, more start-up switches off", new, switches),
            Way("new: same, no lsb_release on PATH (diagnosis only)", new, no_lsb),
            Way("new: live, through the kept server (its CPU counted)", new, kept,
                servers=lambda: kept_processes(kept_runtime)),
            Way("new: live, through a running daemon (its CPU counted)", new, daemon, servers=daemon_processes),
            Way("new: fresh session-file figures (no CLI)", new, fresh,
                prepare=lambda: self.observe(fresh["CODEX_HOME"], time.time() - 5)),
            Way("python3 -c pass", None, plain),
        ]
        # The kept server is started, and npm's prefix remembered, before the runs measured.
        for way in ways[3], ways[6]:
            self.read_once(way)
        return ways

    def path_without(self, names):
        directory = self.root / "path-without"
        directory.mkdir()
        for folder in ("/usr/bin", "/bin"):
            for entry in os.scandir(folder):
                target = directory / entry.name
                if entry.name not in names and not os.path.lexists(target):
                    target.symlink_to(entry.path)
        return directory

    def start_daemon(self):
        """The real app server on the daemon's control socket, as `codex app-server daemon` runs it."""
        environment, _ = self.home("once-daemon")
        control = pathlib.Path(environment["CODEX_HOME"], "app-server-control", "app-server-control.sock")
        control.parent.mkdir()
        overrides = [arg for item in self.backend.config_overrides().splitlines() for arg in ("-c", item)]
        binary, _ = load_script().native_binary(self.codex)
        daemon = subprocess.Popen([str(binary), "app-server", "--listen", f"unix://{control}", *overrides],
                                  env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL, preexec_fn=die_with_parent)
        self.daemon = daemon
        wait_until(control.exists, "the daemon's control socket", timeout=60)
        del environment["VANTREL_CODEX_CONFIG"]
        return environment, lambda: process_tree([daemon.pid])

    def stop_daemon(self):
        if self.daemon is not None:
            self.daemon.terminate()
            self.daemon.wait(30)

    # --- Vantrel for some minutes ------------------------------------------------------------------------
    def scenario(self, kind, minutes):
        """Both scripts under Vantrel for `minutes` after a warm-up; returns a result per script and
        conky's CPU ms/min."""
        names = ("reference", "new")
        now = time.time()
        users = {name: self.home(f"{kind}-{name}-{int(now)}", now - (0 if kind == "active" else 3600))
                 for name in names}
        stop = threading.Event()
        writer = None
        if kind == "active":
            writer = threading.Thread(target=self.write_activity,
                                      args=([users[name][0]["CODEX_HOME"] for name in names], stop))
            writer.start()
        desktops, apps = [], {}
        try:
            for index, name in enumerate(names):
                if index:
                    time.sleep(30)  # the two scripts' reads 30 s apart
                desktop = Desktop(tray=True).start()
                desktops.append(desktop)
                apps[name] = self.start_vantrel(desktop, users[name], name)
            conky = desktops[0].spawn("conky", ["conky", "-c", str(conky_config(self.root))])
            for name in names:
                wait_until(lambda name=name: len(tap_records(apps[name]["log"])) >= 2, "two reads",
                           timeout=180)
            time.sleep(5)
            results = self.measure(apps, conky.pid, minutes * 60.0)
        finally:
            stop.set()
            if writer:
                writer.join()
            for app in apps.values():
                self.stop_vantrel(app)
            for desktop in desktops:
                desktop.stop()
        for name in names:
            results[name]["left"] = [pid for pid in apps[name]["kept"] if running(pid)]
        return results

    def write_activity(self, homes, stop):
        rng = random.Random(15)
        while not stop.wait(rng.uniform(20, 40)):
            moment = time.time()
            for home in homes:
                self.observe(home, moment, append=True)

    def start_vantrel(self, desktop, user, name):
        environment, runtime = user
        prefix = install_into_prefix(self.executable, self.new_script if name == "new" else
                                     self.reference_script, f"vantrel-bench-{name}-")
        log = str(self.root / f"tap-{name}-{prefix.name}.log")
        env = dict(desktop.env)
        env.update(environment)
        env.update(XDG_RUNTIME_DIR=str(runtime), PATH=f"{self.tap_dir}:{environment['PATH']}",
                   VANTREL_TAP_PYTHON=PYTHON, VANTREL_TAP_LOG=log)
        process = subprocess.Popen([str(prefix / "bin" / "vantrel")], env=env, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, preexec_fn=die_with_parent)
        return {"process": process, "prefix": prefix, "log": log, "runtime": runtime, "kept": set()}

    @staticmethod
    def stop_vantrel(app):
        app["kept"] |= kept_processes(app["runtime"])
        process = app["process"]
        if process.poll() is None:
            process.send_signal(signal.SIGTERM)
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        # What Vantrel started and left must end within seconds of its quitting.
        deadline = time.monotonic() + 10
        while time.monotonic() < deadline and any(running(pid) for pid in app["kept"]):
            time.sleep(0.1)
        reap_orphans()
        shutil.rmtree(app["prefix"], ignore_errors=True)

    def measure(self, apps, conky, seconds):
        # Vantrel's own threads (its script runs come from the tap), and its kept processes.
        clocks = {name: (TreeClock(children=False), TreeClock()) for name in apps}
        conky_clock = TreeClock()
        for name, app in apps.items():
            clocks[name][0].look([app["process"].pid])
            clocks[name][1].look(kept_processes(app["runtime"]))
        conky_clock.look([conky])
        start_totals = {name: (own.total(), kept.total()) for name, (own, kept) in clocks.items()}
        conky_start = conky_clock.total()
        started_at = time.time()
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            time.sleep(0.05)
            conky_clock.look([conky])
            table = parents()
            for name, app in apps.items():
                own, kept = clocks[name]
                own.look([app["process"].pid])
                pids = kept_processes(app["runtime"], table)
                app["kept"] |= pids
                kept.look(pids)
        ended_at = time.time()
        per_minute = 60.0 / seconds
        results = {"conky": (conky_clock.total() - conky_start) * 1000 * per_minute}
        for name, app in apps.items():
            own, kept = clocks[name]
            held = sum(rss_megabytes(pid) for pid in kept_processes(app["runtime"]) if running(pid))
            reads = [record for record in tap_records(app["log"]) if started_at < record["end"] <= ended_at]
            own_ms = (own.total() - start_totals[name][0]) * 1000 * per_minute
            kept_ms = (kept.total() - start_totals[name][1]) * 1000 * per_minute
            reads_ms = sum(record["cpuMs"] for record in reads) * per_minute
            ages = [record["end"] - seen for record in reads if (seen := observed_at(record)) is not None]
            results[name] = {
                "own": own_ms, "runs": reads_ms, "kept": kept_ms, "limits": reads_ms + kept_ms,
                "tree": own_ms + reads_ms + kept_ms,
                "reads": len(reads), "failed": sum(record["status"] != 0 for record in reads),
                "wall": [(record["end"] - record["start"]) * 1000 for record in reads],
                "peak": [record["peakRssKb"] / 1024 for record in reads], "held": held,
                "ages": ages,
            }
        return results


class Way:
    """One way of reading: the script (None: `python3 -c pass`), its environment, the processes of a
    server that stays (their CPU counts), and what to do before each run."""

    def __init__(self, name, script, environment, servers=None, prepare=None):
        self.name, self.script, self.environment = name, script, environment
        self.servers, self.prepare = servers, prepare


def reap_orphans():
    """Orphans handed to us as subreaper (ended keepers) are waited for, so none stays a zombie."""
    while True:
        try:
            pid, _ = os.waitpid(-1, os.WNOHANG)
        except ChildProcessError:
            return
        if pid == 0:
            return


def print_per_read(rows):
    print("\nPer read (each way in turn; median [range]):")
    print(f"{'way of reading':62} {'CPU ms':>16} {'wall ms':>18} {'peak MB':>12} {'vs reference':>13}")
    reference = statistics.median(rows[0][1])
    for name, cpu, wall, peak in rows:
        ratio = statistics.median(cpu) / reference
        print(f"{name:62} {median_range(cpu):>16} {median_range(wall):>18} {median_range(peak, 1):>12} "
              f"{ratio:12.3f}x")


def print_scenarios(results):
    print("\nWhole tree per minute (median [range] over rounds); CPU ms/min:")
    print(f"{'scenario':9} {'script':10} {'tree':>16} {'Vantrel':>14} {'limits':>16} {'tree vs ref':>13} "
          f"{'vs conky':>12} {'wall ms/read':>16} {'peak MB/read':>13} {'held MB':>8} {'oldest s':>9}")
    for kind in ("active", "idle"):
        rounds = results[kind]
        for name in ("reference", "new"):
            tree = [r[name]["tree"] for r in rounds]
            ratio = [r[name]["tree"] / r["reference"]["tree"] for r in rounds]
            conky = [r[name]["tree"] / r["conky"] for r in rounds]
            wall = [w for r in rounds for w in r[name]["wall"]]
            peak = [p for r in rounds for p in r[name]["peak"]]
            ages = [a for r in rounds for a in r[name]["ages"]]
            print(f"{kind:9} {name:10} {median_range(tree):>16} "
                  f"{median_range([r[name]['own'] for r in rounds]):>14} "
                  f"{median_range([r[name]['limits'] for r in rounds]):>16} {median_range(ratio, 3):>13} "
                  f"{median_range(conky, 2):>12} {median_range(wall):>16} {max(peak, default=0):13.1f} "
                  f"{max(r[name]['held'] for r in rounds):8.1f} {max(ages, default=float('nan')):9.1f}")
            failed = sum(r[name]["failed"] for r in rounds)
            left = [pid for r in rounds for pid in r[name]["left"]]
            if failed or left:
                print(f"    {failed} failed reads; left running after quitting: {left}")
    conky = [r["conky"] for kind in results for r in results[kind]]
    print(f"conky showing the same figures every 2 s: {median_range(conky, 1)} ms/min")
    for kind in ("active", "idle"):
        # A run too short for any read of the reference has no ratio.
        ratios = [r["new"]["limits"] / r["reference"]["limits"] for r in results[kind] if r["reference"]["limits"]]
        runs = [r["new"]["runs"] for r in results[kind]]
        kept = [r["new"]["kept"] for r in results[kind]]
        print(f"{kind}: the limits' own CPU, new vs reference: {median_range(ratios, 3)}x; new: script runs "
              f"{median_range(runs)} ms/min, kept server and keeper {median_range(kept)} ms/min")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("executable")
    parser.add_argument("--runs", type=int, default=7, help="runs of each way of reading (default 7)")
    parser.add_argument("--minutes", type=float, default=3.0, help="measured minutes per scenario (default 3)")
    parser.add_argument("--rounds", type=int, default=2, help="rounds of both scenarios (default 2)")
    options = parser.parse_args()
    if not os.environ.get(ISOLATED):
        prefix = isolating_prefix()
        if prefix is None:
            sys.exit("limits_cost: needs a private network namespace (unshare --net)")
        with tempfile.TemporaryDirectory(prefix="vantrel-bench-session-") as runtime:
            os.chmod(runtime, 0o700)
            environment = dict(os.environ, XDG_RUNTIME_DIR=runtime, **{ISOLATED: "1"})
            command = [*prefix, "dbus-run-session", "--", sys.executable, *sys.argv]
            sys.exit(subprocess.run(command, env=environment, check=False).returncode)
    bring_loopback_up()
    become_subreaper()
    codex = installed_codex()
    root = pathlib.Path(tempfile.mkdtemp(prefix="vantrel-limits-cost-"))
    try:
        with MockBackend() as backend:
            bench = Bench(os.path.abspath(options.executable), root, backend, codex)
            print(f"limits cost on {os.cpu_count()} CPUs, load average {os.getloadavg()[0]:.1f}", file=sys.stderr)
            try:
                rows = bench.per_read(options.runs)
            finally:
                bench.stop_daemon()
            print_per_read(rows)
            results = {"active": [], "idle": []}
            for round_index in range(options.rounds):
                for kind in ("active", "idle"):
                    print(f"  round {round_index + 1}: {kind}", file=sys.stderr)
                    results[kind].append(bench.scenario(kind, options.minutes))
            print_scenarios(results)
            print(f"load average at the end: {os.getloadavg()[0]:.1f}")
    finally:
        shutil.rmtree(root, ignore_errors=True)


if __name__ == "__main__":
    main()
