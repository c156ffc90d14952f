"""A live read answered from the session files while their newest limits are fresh."""

import os
import tempfile
import unittest
from unittest import mock

from script_support import (SESSION_LIMITS, load_script, rfc3339, server_log, stand_in_environment,
                            token_count_line, write_session)

vantrel = load_script()
OBSERVED = 1800000000.0
REPLY = {"rateLimits": {"limitId": "codex", "primary": {"usedPercent": 37}}}


class FreshnessTest(unittest.TestCase):
    def test_age_boundaries(self):
        cases = [(0, True), (0.001, True), (59, True), (59.999, True), (60, True), (60.001, False), (61, False),
                 (3600, False), (-0.001, False), (-1, False), (-3600, False)]
        for age, fresh in cases:
            with self.subTest(age=age):
                self.assertEqual(vantrel.is_fresh(OBSERVED, OBSERVED + age), fresh)


class FreshLimitsTest(unittest.TestCase):
    """limits_document(live=True) at a chosen wall-clock time, against a stand-in app server."""

    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        environment = stand_in_environment(self.directory.name, REPLY)
        self.home, self.log = environment["CODEX_HOME"], environment["FAKE_SERVER_LOG"]
        self.environment = mock.patch.dict(os.environ, environment)
        self.environment.start()
        for name in ("XDG_RUNTIME_DIR", "VANTREL_CODEX_CONFIG"):
            os.environ.pop(name, None)

    def tearDown(self):
        self.environment.stop()
        self.directory.cleanup()

    def observe(self, seconds):
        write_session(self.home, "2027/01/15/rollout-2027-01-15T08-00-00-a.jsonl",
                      [token_count_line(rfc3339(seconds), SESSION_LIMITS)])

    def document_at(self, now):
        with mock.patch.object(vantrel.time, "time", return_value=now):
            return vantrel.limits_document(live=True)

    def servers_started(self):
        return sum(1 for event in server_log(self.log) if event["event"] == "start")

    def test_fresh_observations_start_no_server(self):
        self.observe(OBSERVED)
        for age, source in ((0, "session"), (1, "session"), (59, "session"), (60, "session"), (61, "live"),
                            (3600, "live")):
            with self.subTest(age=age):
                started = self.servers_started()
                document = self.document_at(OBSERVED + age)
                self.assertEqual(document["source"], source)
                self.assertEqual(self.servers_started() - started, 0 if source == "session" else 1)
                if source == "session":
                    self.assertEqual(document["observedAt"], OBSERVED)
                else:
                    self.assertEqual(document["observedAt"], OBSERVED + age)

    def test_an_observation_from_the_future_is_read_live(self):
        self.observe(OBSERVED)
        for early in (0.001, 1, 3600):
            with self.subTest(early=early):
                self.assertEqual(self.document_at(OBSERVED - early)["source"], "live")

    def test_a_clock_that_jumps(self):
        self.observe(OBSERVED)
        self.assertEqual(self.document_at(OBSERVED + 30)["source"], "session")
        # Set forward by two hours, the same observation is old; set back by one, it lies ahead.
        self.assertEqual(self.document_at(OBSERVED + 30 + 7200)["source"], "live")
        self.assertEqual(self.document_at(OBSERVED + 30 - 3600)["source"], "live")
        # Back to the right time, it answers again.
        self.assertEqual(self.document_at(OBSERVED + 31)["source"], "session")

    def test_stale_figures_are_still_the_fallback(self):
        self.observe(OBSERVED)
        os.environ["FAKE_SERVER_MODE"] = "error"
        with mock.patch("sys.stderr"):
            document = self.document_at(OBSERVED + 600)
        self.assertEqual((document["source"], document["observedAt"]), ("session", OBSERVED))
        self.assertEqual(self.servers_started(), 1)

    def test_without_live_the_age_does_not_matter(self):
        self.observe(OBSERVED)
        with mock.patch.object(vantrel.time, "time", return_value=OBSERVED + 86400):
            document = vantrel.limits_document(live=False)
        self.assertEqual(document["source"], "session")
        self.assertEqual(self.servers_started(), 0)


if __name__ == "__main__":
    unittest.main()
