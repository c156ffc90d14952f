"""Reading through a running Codex daemon, against a stand-in on the control socket."""

import json
import tempfile
import unittest

from fake_daemon import FakeDaemon
from script_support import (SESSION_LIMITS, SESSION_SECONDS, SESSION_TIME, run_script, server_log,
                            stand_in_environment, token_count_line, write_session)

REPLY = {"rateLimits": {"limitId": "codex", "primary": {"usedPercent": 21}}}
SERVER_REPLY = {"rateLimits": {"limitId": "codex", "primary": {"usedPercent": 50}}}


class DaemonTest(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.environment = stand_in_environment(self.directory.name, SERVER_REPLY)
        self.codex_home, self.log = self.environment["CODEX_HOME"], self.environment["FAKE_SERVER_LOG"]

    def tearDown(self):
        self.directory.cleanup()

    def read(self):
        return run_script(["--live", "--json"], self.environment)

    def remaining(self, finished):
        self.assertEqual(finished.returncode, 0, finished.stderr)
        document = json.loads(finished.stdout)
        self.assertEqual(document["source"], "live")
        return document["buckets"][0]["windows"][0]["remainingPercent"]

    def test_a_running_daemon_answers_and_no_server_starts(self):
        for behaviour in ("normal", "chatty"):
            with self.subTest(behaviour=behaviour):
                with FakeDaemon(self.codex_home, REPLY, behaviour) as daemon:
                    self.assertEqual(self.remaining(self.read()), 79)
                self.assertEqual([message.get("method") for message in daemon.received],
                                 ["initialize", "initialized", "account/rateLimits/read"])
                self.assertEqual(server_log(self.log), [])

    def test_a_refusal_is_the_answer(self):
        write_session(self.codex_home, "2026/03/14/rollout-2026-03-14T09-00-00-a.jsonl",
                      [token_count_line(SESSION_TIME, SESSION_LIMITS)])
        with FakeDaemon(self.codex_home, REPLY, "error"):
            finished = self.read()
        self.assertEqual(json.loads(finished.stdout)["observedAt"], SESSION_SECONDS)
        self.assertIn("the Codex daemon: account/rateLimits/read: codex account authentication required",
                      finished.stderr)
        self.assertEqual(server_log(self.log), [])

    def test_a_daemon_that_does_not_answer_is_passed_over(self):
        for behaviour in ("refuse", "hang up"):
            with self.subTest(behaviour=behaviour):
                with FakeDaemon(self.codex_home, REPLY, behaviour):
                    self.assertEqual(self.remaining(self.read()), 50)
        # A control socket that nobody listens on any more.
        self.assertEqual(self.remaining(self.read()), 50)
        self.assertEqual(len([event for event in server_log(self.log) if event["event"] == "start"]), 3)

    def test_overrides_for_the_server_pass_the_daemon_over(self):
        self.environment["VANTREL_CODEX_CONFIG"] = 'chatgpt_base_url="http://127.0.0.1:9/backend-api/"'
        with FakeDaemon(self.codex_home, REPLY) as daemon:
            self.assertEqual(self.remaining(self.read()), 50)
        self.assertEqual(daemon.received, [])


if __name__ == "__main__":
    unittest.main()
