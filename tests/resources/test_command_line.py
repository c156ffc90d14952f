"""The script as the application runs it: arguments, output, exit status, signals."""

import json
import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest

from script_support import (SCRIPT, SESSION_LIMITS, SESSION_SECONDS, SESSION_TIME, rfc3339, run_script,
                            server_log, stand_in_environment, token_count_line, write_session)

REPLY = {"rateLimits": {"limitId": "codex", "primary": {"usedPercent": 37, "windowDurationMins": 300},
                        "credits": {"balance": "3"}, "spendControlReached": False,
                        "rateLimitReachedType": None}}
NO_LIMITS = '{"rateLimits": null}'


class CommandLineTest(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.environment = stand_in_environment(self.directory.name, REPLY)
        self.codex_home, self.log = self.environment["CODEX_HOME"], self.environment["FAKE_SERVER_LOG"]

    def tearDown(self):
        self.directory.cleanup()

    def run_with(self, arguments, **environment):
        return run_script(arguments, {**self.environment, **environment})

    def write_session(self):
        write_session(self.codex_home, "2026/03/14/rollout-2026-03-14T09-00-00-a.jsonl",
                      [token_count_line(SESSION_TIME, SESSION_LIMITS)])

    def assert_document(self, finished):
        self.assertEqual(finished.returncode, 0, finished.stderr)
        lines = finished.stdout.splitlines()
        self.assertEqual(len(lines), 1)
        document = json.loads(lines[0])
        self.assertIsInstance(document, dict)
        return document

    def assert_nothing_to_report(self, finished, reason):
        self.assertEqual(finished.returncode, 1)
        self.assertEqual(finished.stdout, "")
        self.assertEqual(len(finished.stderr.splitlines()), 1, finished.stderr)
        self.assertIn(reason, finished.stderr)

    def test_live_document(self):
        before = time.time()
        finished = self.run_with(["--live", "--json"])
        document = self.assert_document(finished)
        self.assertEqual(finished.stderr, "")
        self.assertEqual(document["source"], "live")
        self.assertEqual(document["buckets"], [{
            "id": "codex",
            "windows": [{"slot": "primary", "windowDurationMins": 300, "remainingPercent": 63}],
            "creditBalance": "3", "spendControlReached": False, "limitReached": False}])
        self.assertGreaterEqual(document["observedAt"], before - 1)
        self.assertLessEqual(document["observedAt"], time.time() + 1)

    def test_a_failed_live_read_falls_back_to_the_session_file(self):
        self.write_session()
        finished = self.run_with(["--live", "--json"], FAKE_SERVER_MODE="error")
        document = self.assert_document(finished)
        self.assertEqual((document["source"], document["observedAt"]), ("session", SESSION_SECONDS))
        self.assertIn("authentication required", finished.stderr)
        self.assertIn("using a session file", finished.stderr)

    def test_a_failed_live_read_without_a_session_file(self):
        finished = self.run_with(["--live", "--json"], FAKE_SERVER_MODE="error")
        self.assert_nothing_to_report(finished, "authentication required")

    def test_without_live_only_the_session_files_count(self):
        self.write_session()
        document = self.assert_document(self.run_with(["--json"]))
        self.assertEqual(document["source"], "session")
        self.assertEqual(server_log(self.log), [])
        os.remove(os.path.join(self.codex_home, "sessions", "2026", "03", "14",
                               "rollout-2026-03-14T09-00-00-a.jsonl"))
        self.assert_nothing_to_report(self.run_with(["--json"]), "sessions")

    def test_no_codex_cli_and_no_session_file(self):
        environment = dict(self.environment)
        del environment["VANTREL_CODEX"]
        if os.access("/usr/local/bin/codex", os.X_OK):
            self.skipTest("this machine has /usr/local/bin/codex")
        finished = run_script(["--live", "--json"], environment)
        self.assert_nothing_to_report(finished, "Codex CLI not found")

    def test_a_live_answer_without_limits(self):
        document = self.assert_document(self.run_with(["--live", "--json"], FAKE_SERVER_REPLY=NO_LIMITS))
        self.assertEqual((document["source"], document["buckets"]), ("live", []))
        self.write_session()
        finished = self.run_with(["--live", "--json"], FAKE_SERVER_REPLY=NO_LIMITS)
        self.assertEqual(self.assert_document(finished)["source"], "session")

    def test_a_fresh_session_observation_starts_no_server(self):
        seconds = round(time.time() - 5, 3)
        write_session(self.codex_home, "2026/03/14/rollout-2026-03-14T09-00-00-a.jsonl",
                      [token_count_line(rfc3339(seconds), SESSION_LIMITS)])
        finished = self.run_with(["--live", "--json"])
        document = self.assert_document(finished)
        self.assertEqual((document["source"], document["observedAt"]), ("session", seconds))
        self.assertEqual((finished.stderr, server_log(self.log)), ("", []))

    def test_an_old_session_observation_is_read_live(self):
        write_session(self.codex_home, "2026/03/14/rollout-2026-03-14T09-00-00-a.jsonl",
                      [token_count_line(rfc3339(time.time() - 120), SESSION_LIMITS)])
        document = self.assert_document(self.run_with(["--live", "--json"]))
        self.assertEqual(document["source"], "live")
        self.assertEqual([event["event"] for event in server_log(self.log)][0], "start")

    def test_compressed_session_files_are_named_as_not_read(self):
        write_session(self.codex_home, "2026/03/14/rollout-2026-03-14T09-00-00-a.jsonl.zst", ["\x28\xb5"])
        finished = self.run_with(["--json"])
        self.assert_nothing_to_report(finished, "compressed .jsonl.zst files are not read")

    def test_arguments(self):
        self.assertIn("Usage: vantrel.py [--live] [--json]", self.run_with(["--help"]).stdout)
        for arguments in (["--lve"], ["--live", "extra"], ["--keep", "socket"]):
            with self.subTest(arguments=arguments):
                finished = self.run_with(arguments)
                self.assertEqual((finished.returncode, finished.stdout), (2, ""))
                self.assertIn("usage: vantrel.py [--live] [--json]", finished.stderr)
        self.assertEqual(server_log(self.log), [])

    def test_summary_in_czech(self):
        finished = self.run_with(["--live"])
        self.assertEqual(finished.returncode, 0, finished.stderr)
        lines = finished.stdout.splitlines()
        self.assertTrue(lines[0].startswith("Limity účtu Codex · živě z Codex CLI · "))
        self.assertEqual(lines[1:], ["codex · krátkodobý limit (5 h): zbývá 63 %",
                                     "codex · kredity: 3"])

    def test_a_signal_ends_the_script_and_the_server(self):
        for sig in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signal=sig.name):
                environment = {**self.environment, "FAKE_SERVER_MODE": "deaf"}
                script = subprocess.Popen([sys.executable, SCRIPT, "--live", "--json"], env=environment,
                                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
                events = self.wait_for_server()
                script.send_signal(sig)
                stdout, stderr = script.communicate(timeout=30)
                self.assertEqual((script.returncode, stdout), (128 + sig, ""))
                self.assertIn(f"interrupted by {sig.name}", stderr)
                with self.assertRaises(ProcessLookupError):
                    os.kill(events[0]["pid"], 0)
                os.remove(self.log)

    def wait_for_server(self):
        for _ in range(200):
            events = server_log(self.log)
            if events:
                return events
            time.sleep(0.05)
        self.fail("the app server did not start")


if __name__ == "__main__":
    unittest.main()
