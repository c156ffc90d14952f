"""The app server kept between runs, and its keeper, against a stand-in app server."""

import glob
import json
import os
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest

from script_support import SCRIPT, run_script, running, server_log, stand_in_environment, wait_until

REPLY = {"rateLimits": {"limitId": "codex", "primary": {"usedPercent": 37}}}
# A stand-in for Vantrel: it runs the script as a process group of its own, then stays.
REQUESTER = ("import subprocess, sys, time\n"
             "subprocess.run(sys.argv[1:], process_group=0, stdout=subprocess.DEVNULL)\n"
             "print('read', flush=True)\n"
             "time.sleep(120)\n")


class KeptServerTest(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.environment = stand_in_environment(self.directory.name, REPLY)
        self.codex_home, self.log = self.environment["CODEX_HOME"], self.environment["FAKE_SERVER_LOG"]
        os.makedirs(self.codex_home)
        self.runtime = os.path.join(self.directory.name, "run")
        os.makedirs(self.runtime, mode=0o700)
        self.environment["XDG_RUNTIME_DIR"] = self.runtime

    def tearDown(self):
        for pid in self.keepers():
            os.kill(pid, signal.SIGTERM)
        for pid in self.keepers() + self.server_pids():
            wait_until(lambda pid=pid: not running(pid), "the keeper and its server to end")
        self.directory.cleanup()

    def read(self):
        """One run as Vantrel starts it: a process group of its own, whose parent (this test) stays."""
        finished = run_script(["--live", "--json"], self.environment, process_group=0)
        self.assertEqual(finished.returncode, 0, finished.stderr)
        return json.loads(finished.stdout)

    def keepers(self):
        pids = []
        for lock in glob.glob(os.path.join(self.runtime, "vantrel", "*.lock")):
            with open(lock, encoding="ascii") as stream:
                text = stream.read().strip()
            if text and running(int(text)):
                pids.append(int(text))
        return pids

    def server_pids(self):
        return [event["pid"] for event in server_log(self.log) if event["event"] == "start"]

    def messages(self):
        return [event["message"]["method"] for event in server_log(self.log) if event["event"] == "message"]

    def test_one_server_answers_every_read(self):
        for _ in range(3):
            self.assertEqual(self.read()["source"], "live")
        self.assertEqual(len(self.server_pids()), 1)
        self.assertEqual(self.messages(), ["initialize", "initialized", *["account/rateLimits/read"] * 3])
        self.assertEqual(len(self.keepers()), 1)
        self.assertTrue(running(self.server_pids()[0]))

    def test_the_keeper_ends_with_the_program_that_runs_the_script(self):
        for ending in (signal.SIGTERM, signal.SIGKILL):
            with self.subTest(ending=ending.name):
                requester = subprocess.Popen([sys.executable, "-c", REQUESTER, sys.executable, SCRIPT, "--live",
                                              "--json"], env=self.environment, stdout=subprocess.PIPE, text=True)
                self.assertEqual(requester.stdout.readline(), "read\n")
                keepers, server = self.keepers(), self.server_pids()[-1]
                self.assertEqual(len(keepers), 1)
                requester.send_signal(ending)
                requester.wait()
                requester.stdout.close()
                wait_until(lambda: not running(keepers[0]) and not running(server), "the keeper to end")
                self.assertEqual(os.listdir(os.path.join(self.runtime, "vantrel")), [])

    def test_a_keeper_killed_outright_takes_its_server_along(self):
        self.read()
        keeper, server = self.keepers()[0], self.server_pids()[0]
        os.kill(keeper, signal.SIGKILL)
        wait_until(lambda: not running(server), "the server to see its input close")
        # Its socket is left behind; the next run starts a new keeper on it.
        self.assertEqual(self.read()["source"], "live")
        self.assertEqual(len(self.server_pids()), 2)
        self.assertNotIn(keeper, self.keepers())

    def test_a_keeper_whose_server_ended_ends_too(self):
        self.read()
        keeper = self.keepers()[0]
        os.kill(self.server_pids()[0], signal.SIGKILL)
        wait_until(lambda: not running(keeper), "the keeper to end")
        self.assertEqual(self.read()["source"], "live")
        self.assertEqual(len(self.server_pids()), 2)

    def test_an_idle_keeper_ends(self):
        command = [self.environment["VANTREL_CODEX"], "app-server"]
        path = os.path.join(self.runtime, "kept.sock")
        # Run from its source, as the application runs it: no compiled copy beside the script.
        keep = ("import runpy, sys\n"
                "Keeper = runpy.run_path(sys.argv[1])['Keeper']\n"
                "Keeper(sys.argv[2], sys.argv[4:]).run(int(sys.argv[3]), idle_limit=1.0)\n")
        keeper = subprocess.Popen([sys.executable, "-c", keep, SCRIPT, path, str(os.getpid()), *command],
                                  env=self.environment)
        wait_until(lambda: os.path.exists(path), "the keeper to listen")
        self.assertEqual(self.ask(path, {"method": "account/rateLimits/read", "id": 7, "params": {}}),
                         {"id": 7, "result": REPLY})
        started = time.monotonic()
        keeper.wait(timeout=10)
        self.assertGreaterEqual(time.monotonic() - started, 0.5)
        self.assertFalse(running(self.server_pids()[0]))
        self.assertFalse(os.path.exists(path) or os.path.exists(path + ".lock"))

    def test_only_rate_limit_reads_are_passed_on(self):
        self.read()
        path = glob.glob(os.path.join(self.runtime, "vantrel", "*.sock"))[0]
        reply = self.ask(path, {"method": "thread/start", "id": 5, "params": {}})
        self.assertEqual(reply["id"], 5)
        self.assertIn("only account/rateLimits/read", reply["error"]["message"])
        self.assertNotIn("thread/start", self.messages())

    def test_a_changed_sign_in_or_configuration_starts_a_new_server(self):
        self.read()
        for name in ("auth.json", "config.toml"):
            with open(os.path.join(self.codex_home, name), "w", encoding="utf-8") as stream:
                stream.write("{}" if name == "auth.json" else "model = 'x'\n")
            self.read()
        pids = self.server_pids()
        self.assertEqual(len(pids), 3)
        self.assertEqual([running(pid) for pid in pids], [False, False, True])

    def test_error_answers_pass_through_and_the_server_stays(self):
        self.environment["FAKE_SERVER_MODE"] = "error"
        for _ in range(2):
            finished = run_script(["--live", "--json"], self.environment, process_group=0)
            self.assertEqual((finished.returncode, finished.stdout), (1, ""))
            self.assertIn("codex account authentication required to read rate limits", finished.stderr)
        self.assertEqual(len(self.server_pids()), 1)

    def test_no_keeper_without_a_private_runtime_directory(self):
        for mode in (0o755, None):
            with self.subTest(mode=mode):
                private = os.path.join(self.runtime, "vantrel")
                if mode is None:
                    del self.environment["XDG_RUNTIME_DIR"]
                else:
                    os.makedirs(private, exist_ok=True)
                    os.chmod(private, mode)
                before = len(self.server_pids())
                self.read()
                self.read()
                self.assertEqual(len(self.server_pids()) - before, 2)
                self.assertEqual(self.keepers(), [])
                self.assertFalse(any(running(pid) for pid in self.server_pids()))

    @staticmethod
    def ask(path, message):
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as connection:
            connection.settimeout(10)
            connection.connect(path)
            connection.sendall(json.dumps(message).encode() + b"\n")
            reply = b""
            while not reply.endswith(b"\n"):
                chunk = connection.recv(65536)
                if not chunk:
                    break
                reply += chunk
        return json.loads(reply)


if __name__ == "__main__":
    unittest.main()
