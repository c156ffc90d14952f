"""The limits script against the real Codex CLI (pinned, from npm) and a mock backend on 127.0.0.1.

Run directly. Exit status 77 (a skip for CTest) when the CLI cannot be installed. Where it can, the
tests run in a private network namespace with only loopback up, and every run of the script is traced
so that any connection to an address other than 127.0.0.1 fails the test.
"""

import fcntl
import glob
import json
import os
import re
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest

from codex_harness import InstallFailed, MockBackend, installed_codex, usage_payload, write_auth
from script_support import (SCRIPT, SESSION_LIMITS, SESSION_SECONDS, SESSION_TIME, rfc3339, run_script, running,
                            token_count_line, wait_until, write_session)

SKIP = 77
ISOLATED = "VANTREL_TEST_ISOLATED"
# Every way a process names a peer address; the seccomp filter keeps other system calls untraced and fast.
TRACE = ["strace", "-f", "--seccomp-bpf", "-qq", "-e", "signal=none",
         "-e", "trace=connect,sendto,sendmsg,sendmmsg,execve"]
INET_ADDRESS = re.compile(r"sa_family=(AF_INET6?)(.*?)\}")
CODEX = None
CODEX_BINARY_NAME = "x86_64-unknown-linux-musl/bin/codex"
# A stand-in for Vantrel: it runs the script (its arguments) three times, each run a process group of its
# own, prints each document, then stays until it is killed.
REQUESTER = ("import subprocess, sys, time\n"
             "for _ in range(3):\n"
             "    run = subprocess.run([*sys.argv[1:], '--live', '--json'], process_group=0,\n"
             "                         stdout=subprocess.PIPE, text=True)\n"
             "    print(run.stdout.strip(), flush=True)\n"
             "time.sleep(600)\n")


def bring_loopback_up():
    """`ip link set lo up` without needing iproute2."""
    siocgifflags, siocsifflags, iff_up = 0x8913, 0x8914, 0x1
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as probe:
        request = struct.pack("16sh22x", b"lo", 0)
        flags = struct.unpack("16sh22x", fcntl.ioctl(probe, siocgifflags, request))[1]
        fcntl.ioctl(probe, siocsifflags, struct.pack("16sh22x", b"lo", flags | iff_up))


def isolating_prefix():
    """The unshare command that gives a private network namespace here, or None."""
    if shutil.which("unshare") is None:
        return None
    for prefix in (["unshare", "--net"], ["unshare", "--net", "--map-root-user"]):
        if subprocess.run([*prefix, "true"], capture_output=True).returncode == 0:
            return prefix
    return None


def children(pid):
    """The processes whose parent is pid."""
    found = []
    for name in os.listdir("/proc"):
        try:
            with open(f"/proc/{name}/stat", encoding="ascii", errors="replace") as stream:
                if name.isdigit() and int(stream.read().rpartition(")")[2].split()[1]) == pid:
                    found.append(int(name))
        except (OSError, ValueError, IndexError):
            continue
    return found


def command_line(pid):
    try:
        with open(f"/proc/{pid}/cmdline", "rb") as stream:
            return stream.read().replace(b"\0", b" ").decode(errors="replace")
    except OSError:
        return ""


def foreign_addresses(trace_text):
    """Every Internet address in the trace other than 127.0.0.1."""
    foreign = []
    for family, rest in INET_ADDRESS.findall(trace_text):
        if family != "AF_INET" or 'sin_addr=inet_addr("127.0.0.1")' not in rest:
            foreign.append(family + rest)
    return foreign


class CodexCliTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        if shutil.which("strace") is None:
            raise RuntimeError("strace is needed to check which addresses the CLI contacts")

    def setUp(self):
        root = self.enterContext(tempfile.TemporaryDirectory())
        self.codex_home = os.path.join(root, "codex-home")
        self.trace = os.path.join(root, "trace")
        os.makedirs(self.codex_home)
        self.backend = self.enterContext(MockBackend())
        self.environment = {
            "HOME": os.path.join(root, "home"), "PATH": os.environ["PATH"], "LANG": "C.UTF-8",
            "CODEX_HOME": self.codex_home, "VANTREL_CODEX": CODEX,
            "VANTREL_CODEX_CONFIG": self.backend.config_overrides(),
        }

    def run_live(self):
        """Runs `vantrel.py --live --json` traced; fails on any address but 127.0.0.1."""
        started = time.monotonic()
        finished = run_script(["--live", "--json"], self.environment, prefix=[*TRACE, "-o", self.trace])
        print(f"\n{self.id()}: {time.monotonic() - started:.2f} s, traced", file=sys.stderr)
        with open(self.trace, encoding="utf-8", errors="replace") as stream:
            trace_text = stream.read()
        self.assertEqual(foreign_addresses(trace_text), [])
        self.assertTrue(all(peer == "127.0.0.1" for peer, _, _ in self.backend.requests))
        return finished, trace_text

    def document(self, finished):
        self.assertEqual(finished.returncode, 0, finished.stderr)
        return json.loads(finished.stdout)

    def write_session(self):
        write_session(self.codex_home, "2026/03/14/rollout-2026-03-14T09-00-00-a.jsonl",
                      [token_count_line(SESSION_TIME, SESSION_LIMITS)])

    def assert_session_document(self, finished, reason):
        document = self.document(finished)
        self.assertEqual((document["source"], document["observedAt"]), ("session", SESSION_SECONDS))
        self.assertEqual(document["buckets"][0]["windows"][0]["remainingPercent"], 58.0)
        self.assertIn(reason, finished.stderr)

    def assert_nothing_to_report(self, finished, reason):
        self.assertEqual((finished.returncode, finished.stdout), (1, ""))
        self.assertEqual(len(finished.stderr.splitlines()), 1, finished.stderr)
        self.assertIn(reason, finished.stderr)

    def test_normal_figures(self):
        write_auth(self.codex_home)
        before = time.time()
        finished, trace_text = self.run_live()
        document = self.document(finished)
        reset_primary = self.backend.body["rate_limit"]["primary_window"]["reset_at"]
        reset_secondary = self.backend.body["rate_limit"]["secondary_window"]["reset_at"]
        self.assertEqual(document["source"], "live")
        self.assertEqual([bucket["id"] for bucket in document["buckets"]], ["codex", "codex_spark"])
        self.assertEqual(document["buckets"][0], {
            "id": "codex",
            "windows": [
                {"slot": "primary", "windowDurationMins": 300, "resetsAt": reset_primary,
                 "resetPending": False, "remainingPercent": 63},
                {"slot": "secondary", "windowDurationMins": 10080, "resetsAt": reset_secondary,
                 "resetPending": False, "remainingPercent": 88},
            ],
            "creditBalance": "12.50", "spendControlReached": False, "limitReached": False,
        })
        self.assertEqual([window["slot"] for window in document["buckets"][1]["windows"]], ["primary"])
        self.assertTrue(before <= document["observedAt"] <= time.time())
        self.assertIn(("127.0.0.1", "GET", "/backend-api/wham/usage"), self.backend.requests)
        # The flags the script starts the server with stop its plugin traffic.
        self.assertEqual([path for _, _, path in self.backend.requests if "/plugins" in path], [])
        # The check of addresses is not vacuous: the CLI's connections to the mock are in the trace.
        self.assertIn(f"htons({self.backend.port})", trace_text)
        # npm's launcher is passed over: its node never runs, the CLI's own binary does.
        started = re.findall(r'execve\("([^"]+)"', trace_text)
        self.assertFalse([path for path in started if os.path.basename(path) == "node"], started)
        self.assertIn(os.path.join("vendor", "x86_64-unknown-linux-musl", "bin", "codex"), " ".join(started))

    def test_fresh_figures_in_a_session_file_start_no_cli(self):
        write_auth(self.codex_home)
        seconds = round(time.time() - 10, 3)
        write_session(self.codex_home, "2026/03/14/rollout-2026-03-14T09-00-00-a.jsonl",
                      [token_count_line(rfc3339(seconds), SESSION_LIMITS)])
        finished, trace_text = self.run_live()
        document = self.document(finished)
        self.assertEqual((document["source"], document["observedAt"]), ("session", seconds))
        self.assertEqual(self.backend.requests, [])
        self.assertNotIn("codex", " ".join(re.findall(r'execve\("([^"]+)"', trace_text)))

    def test_a_running_daemon_answers(self):
        """The real app server listening on the daemon's control socket, as `codex app-server daemon` runs
        it; the script has no codex of its own to start, so only the daemon can answer."""
        write_auth(self.codex_home)
        control = os.path.join(self.codex_home, "app-server-control", "app-server-control.sock")
        os.makedirs(os.path.dirname(control))
        overrides = [arg for item in self.backend.config_overrides().splitlines() for arg in ("-c", item)]
        daemon = subprocess.Popen([CODEX, "app-server", "--listen", f"unix://{control}", *overrides],
                                  env={**self.environment, "VANTREL_CODEX": ""}, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            wait_until(lambda: os.path.exists(control), "the daemon's control socket", timeout=60)
            del self.environment["VANTREL_CODEX_CONFIG"]
            self.environment["VANTREL_CODEX"] = os.path.join(self.codex_home, "no-codex-here")
            finished, _ = self.run_live()
            self.assertEqual(self.document(finished)["buckets"][0]["windows"][0]["remainingPercent"], 63)
            self.assertIn(("127.0.0.1", "GET", "/backend-api/wham/usage"), self.backend.requests)
        finally:
            daemon.terminate()
            daemon.wait(30)

    def test_a_kept_server_answers_every_read_and_ends_with_vantrel(self):
        """Not traced: strace would wait for the keeper, which outlives the run on purpose. The private
        network namespace still keeps every packet on this machine."""
        if not os.environ.get(ISOLATED):
            self.skipTest("only where no packet can leave the machine")
        write_auth(self.codex_home)
        runtime = os.path.join(os.path.dirname(self.codex_home), "run")
        os.makedirs(runtime, mode=0o700)
        self.environment["XDG_RUNTIME_DIR"] = runtime
        # A stand-in for Vantrel: it runs the script three times, each in a process group of its own.
        requester = subprocess.Popen([sys.executable, "-c", REQUESTER, sys.executable, SCRIPT],
                                     env=self.environment, stdout=subprocess.PIPE, text=True)
        try:
            documents = [json.loads(requester.stdout.readline()) for _ in range(3)]
            self.assertEqual([document["source"] for document in documents], ["live"] * 3)
            usage = [path for _, _, path in self.backend.requests if path == "/backend-api/wham/usage"]
            self.assertEqual(len(usage), 3)
            locks = glob.glob(os.path.join(runtime, "vantrel", "*.lock"))
            self.assertEqual(len(locks), 1, locks)
            with open(locks[0], encoding="ascii") as stream:
                keeper = int(stream.read())
            servers = children(keeper)
            self.assertEqual(len(servers), 1)
            self.assertIn(CODEX_BINARY_NAME, command_line(servers[0]))
        finally:
            requester.kill()
            requester.wait()
            requester.stdout.close()
        wait_until(lambda: not running(keeper) and not running(servers[0]), "the keeper and its server to end")

    def test_reached_limit_with_spend_control(self):
        write_auth(self.codex_home)
        self.backend.body = usage_payload(primary_used=100, secondary_used=64, reached=True)
        codex = self.document(self.run_live()[0])["buckets"][0]
        self.assertEqual([window["remainingPercent"] for window in codex["windows"]], [0, 36])
        self.assertEqual((codex["spendControlReached"], codex["limitReached"]), (True, True))

    def test_backend_failure_falls_back_to_the_session_file(self):
        write_auth(self.codex_home)
        self.backend.status, self.backend.body = 500, {"detail": "internal error"}
        self.assert_nothing_to_report(self.run_live()[0], "500")
        self.write_session()
        self.assert_session_document(self.run_live()[0], "500")

    def test_the_trace_catches_any_other_address(self):
        if not os.environ.get(ISOLATED):
            self.skipTest("only where no packet can leave the machine")
        write_auth(self.codex_home)
        # 192.0.2.1 is a documentation address; in the private namespace it has no route at all.
        self.environment["VANTREL_CODEX_CONFIG"] = 'chatgpt_base_url="http://192.0.2.1:9/backend-api/"'
        run_script(["--live", "--json"], self.environment, prefix=[*TRACE, "-o", self.trace])
        with open(self.trace, encoding="utf-8", errors="replace") as stream:
            self.assertTrue(any("192.0.2.1" in address for address in foreign_addresses(stream.read())))

    def test_no_login_falls_back_to_the_session_file(self):
        self.assert_nothing_to_report(self.run_live()[0], "authentication required")
        self.write_session()
        self.assert_session_document(self.run_live()[0], "authentication required")
        self.assertNotIn("/backend-api/wham/usage", [path for _, _, path in self.backend.requests])


def main():
    global CODEX
    try:
        CODEX = installed_codex()
    except InstallFailed as reason:
        print(f"SKIPPED: the Codex CLI is not available: {reason}", file=sys.stderr)
        return SKIP
    if os.environ.get(ISOLATED):
        bring_loopback_up()
    else:
        prefix = isolating_prefix()
        if prefix is not None:
            environment = {**os.environ, ISOLATED: "1"}
            return subprocess.run([*prefix, sys.executable, *sys.argv], env=environment).returncode
        print("no private network namespace here: the trace alone checks the addresses", file=sys.stderr)
    program = unittest.main(exit=False, argv=sys.argv)
    return 0 if program.result.wasSuccessful() else 1


if __name__ == "__main__":
    sys.exit(main())
