"""The limits document built from app-server replies and from session-file lines."""

import copy
import json
import math
import unittest

from script_support import SESSION_LIMITS, SESSION_SECONDS, SESSION_TIME, load_script, token_count_line

vantrel = load_script()
NOW = 1795340000.0

SNAPSHOT = {
    "limitId": "codex", "limitName": None, "normalModelSlug": None,
    "primary": {"usedPercent": 37, "windowDurationMins": 300, "resetsAt": 1795343600},
    "secondary": {"usedPercent": 12, "windowDurationMins": 10080, "resetsAt": 1795426400},
    "credits": {"hasCredits": True, "unlimited": False, "balance": "12.5"},
    "individualLimit": None, "spendControlReached": False, "planType": "plus", "rateLimitReachedType": None,
}
SPARK = {
    "limitId": "codex_spark", "limitName": "Spark", "normalModelSlug": None,
    "primary": {"usedPercent": 5, "windowDurationMins": 300, "resetsAt": 1795340100},
    "secondary": None, "credits": None, "individualLimit": None, "spendControlReached": None,
    "planType": "plus", "rateLimitReachedType": None,
}
# The shape 0.169.0 answers with; the map lists the extra bucket first, as the server may.
REPLY = {
    "ordinaryUsageAllowed": None, "rateLimits": SNAPSHOT,
    "rateLimitsByLimitId": {"codex_spark": SPARK, "codex": SNAPSHOT},
    "rateLimitResetCredits": None, "accountId": None, "rateLimitUpsell": None,
}
CODEX_BUCKET = {
    "id": "codex",
    "windows": [
        {"slot": "primary", "windowDurationMins": 300, "resetsAt": 1795343600, "resetPending": False,
         "remainingPercent": 63},
        {"slot": "secondary", "windowDurationMins": 10080, "resetsAt": 1795426400, "resetPending": False,
         "remainingPercent": 88},
    ],
    "creditBalance": "12.5", "spendControlReached": False, "limitReached": False,
}
SPARK_BUCKET = {
    "id": "codex_spark",
    "windows": [{"slot": "primary", "windowDurationMins": 300, "resetsAt": 1795340100, "resetPending": False,
                 "remainingPercent": 95}],
    "limitReached": False,
}


def with_changes(base, **changes):
    result = copy.deepcopy(base)
    result.update(changes)
    return result


def codex_bucket(snapshot):
    """The bucket made of a reply whose only snapshot is the given one."""
    return vantrel.document_from_reply({"rateLimits": snapshot}, NOW)["buckets"][0]


class ReplyDocumentTest(unittest.TestCase):
    def test_full_reply_gives_every_bucket_codex_first(self):
        document = vantrel.document_from_reply(REPLY, NOW)
        expected = {"buckets": [CODEX_BUCKET, SPARK_BUCKET], "observedAt": NOW, "source": "live"}
        self.assertEqual(document, expected)
        # The application reads exactly this text: no NaN or other non-JSON may slip through.
        self.assertEqual(json.loads(json.dumps(document, allow_nan=False)), document)

    def test_bucket_sources(self):
        alpha = with_changes(SPARK, limitId="alpha")
        cases = [
            ("only the single view", {"rateLimits": SNAPSHOT}, ["codex"]),
            ("only the map", {"rateLimitsByLimitId": {"codex": SNAPSHOT}}, ["codex"]),
            ("extra buckets sort after codex by id",
             {"rateLimitsByLimitId": {"zeta": SPARK, "codex": SNAPSHOT, "alpha": alpha}},
             ["codex", "alpha", "zeta"]),
            ("the single view adds what the map lacks",
             {"rateLimits": SNAPSHOT, "rateLimitsByLimitId": {"codex_spark": SPARK}},
             ["codex", "codex_spark"]),
            ("a single view without limitId is codex",
             {"rateLimits": with_changes(SNAPSHOT, limitId=None)}, ["codex"]),
            ("a single view of another id keeps it",
             {"rateLimits": with_changes(SNAPSHOT, limitId="other")}, ["other"]),
            ("map entries that are not objects are skipped",
             {"rateLimitsByLimitId": {"codex": "x", "b": None, "c": [1], "d": SPARK}}, ["d"]),
            ("no limits at all", {"rateLimits": None, "rateLimitsByLimitId": None}, []),
            ("an empty result", {}, []),
            ("a map that is a list", {"rateLimitsByLimitId": [SNAPSHOT]}, []),
            ("a single view that is a string", {"rateLimits": "codex"}, []),
        ]
        for name, reply, ids in cases:
            with self.subTest(name):
                document = vantrel.document_from_reply(reply, NOW)
                self.assertEqual([bucket["id"] for bucket in document["buckets"]], ids)

    def test_results_that_are_not_objects_give_no_buckets(self):
        for result in (None, [], "rateLimits", 7, True):
            with self.subTest(result=result):
                self.assertEqual(vantrel.document_from_reply(result, NOW)["buckets"], [])

    def test_windows(self):
        cases = [
            ("no primary", {"primary": None}, ["secondary"]),
            ("no secondary", {"secondary": None}, ["primary"]),
            ("neither", {"primary": None, "secondary": None}, []),
            ("absent keys", {"primary": "missing", "secondary": "missing"}, []),
            ("a window that is not an object", {"primary": 37, "secondary": [1]}, []),
        ]
        for name, changes, slots in cases:
            with self.subTest(name):
                snapshot = copy.deepcopy(SNAPSHOT)
                for key, value in changes.items():
                    if value == "missing":
                        del snapshot[key]
                    else:
                        snapshot[key] = value
                self.assertEqual([window["slot"] for window in codex_bucket(snapshot)["windows"]], slots)

    def test_remaining_percent(self):
        cases = [(37, 63), (0, 100), (100, 0), (130, 0), (-5, 100), (37.5, 62.5), (99.9, 100 - 99.9)]
        for used, remaining in cases:
            with self.subTest(used=used):
                window = codex_bucket(with_changes(SNAPSHOT, primary={"usedPercent": used}))["windows"][0]
                self.assertEqual(window, {"slot": "primary", "remainingPercent": remaining})

    def test_unusable_numbers_are_left_out(self):
        for value in (None, "40", True, False, [40], {"v": 40}, math.nan, math.inf, 1e300, 10**30):
            with self.subTest(value=value):
                window = {"usedPercent": value, "windowDurationMins": value, "resetsAt": value}
                bucket = codex_bucket(with_changes(SNAPSHOT, primary=window))
                self.assertEqual(bucket["windows"][0], {"slot": "primary"})

    def test_reset_pending_when_the_reset_lies_at_or_before_the_observation(self):
        for resets_at, pending in ((NOW - 60, True), (NOW, True), (NOW + 0.5, False), (NOW + 3600, False)):
            with self.subTest(resets_at=resets_at):
                window = {"usedPercent": 10, "resetsAt": resets_at}
                entry = codex_bucket(with_changes(SNAPSHOT, primary=window))["windows"][0]
                self.assertEqual(entry["resetsAt"], resets_at)
                self.assertIs(entry["resetPending"], pending)

    def test_window_duration_is_copied(self):
        for minutes in (300, 10080, 90, 0, 90.5):
            with self.subTest(minutes=minutes):
                bucket = codex_bucket(with_changes(SNAPSHOT, primary={"windowDurationMins": minutes}))
                window = bucket["windows"][0]
                self.assertEqual(window, {"slot": "primary", "windowDurationMins": minutes})

    def test_credit_balance_only_from_a_balance_string(self):
        cases = [
            ({"hasCredits": True, "unlimited": False, "balance": "12.5"}, "12.5"),
            ({"hasCredits": True, "unlimited": False, "balance": "0"}, "0"),
            ({"hasCredits": False, "unlimited": False, "balance": None}, None),
            ({"hasCredits": True, "unlimited": True}, None),
            ({"balance": 5}, None),
            (None, None),
            ("12.5", None),
        ]
        for credits, balance in cases:
            with self.subTest(credits=credits):
                bucket = codex_bucket(with_changes(SNAPSHOT, credits=credits))
                self.assertEqual(bucket.get("creditBalance"), balance)

    def test_spend_control_reached_comes_from_spend_control_reached(self):
        for value, expected in ((True, True), (False, False), (None, None), ("yes", None), (1, None)):
            with self.subTest(value=value):
                bucket = codex_bucket(with_changes(SNAPSHOT, spendControlReached=value))
                self.assertEqual(bucket.get("spendControlReached"), expected)
        snapshot = copy.deepcopy(SNAPSHOT)
        del snapshot["spendControlReached"]
        self.assertNotIn("spendControlReached", codex_bucket(snapshot))

    def test_limit_reached_comes_from_rate_limit_reached_type(self):
        cases = [("rate_limit_reached", True), ("workspace_member_credits_depleted", True), (None, False),
                 (5, None), ({"type": "rate_limit_reached"}, None)]
        for value, expected in cases:
            with self.subTest(value=value):
                bucket = codex_bucket(with_changes(SNAPSHOT, rateLimitReachedType=value))
                self.assertEqual(bucket.get("limitReached"), expected)
        snapshot = copy.deepcopy(SNAPSHOT)
        del snapshot["rateLimitReachedType"]
        self.assertNotIn("limitReached", codex_bucket(snapshot))

    def test_an_empty_snapshot_gives_a_bare_bucket(self):
        self.assertEqual(codex_bucket({}), {"id": "codex", "windows": []})


class SessionLineTest(unittest.TestCase):
    def test_token_count_line(self):
        document = vantrel.document_from_session_line(token_count_line(SESSION_TIME, SESSION_LIMITS))
        self.assertEqual(document, {
            "buckets": [{
                "id": "codex",
                "windows": [
                    {"slot": "primary", "windowDurationMins": 300, "resetsAt": 1773491213,
                     "resetPending": False, "remainingPercent": 58.0},
                    {"slot": "secondary", "windowDurationMins": 10080, "resetsAt": 1773998813,
                     "resetPending": False, "remainingPercent": 82.5},
                ],
                "creditBalance": "7.25", "spendControlReached": False, "limitReached": False,
            }],
            "observedAt": SESSION_SECONDS, "source": "session",
        })

    def test_lines_without_limits_give_nothing(self):
        event = json.loads(token_count_line(SESSION_TIME, SESSION_LIMITS))
        cases = [
            ("rate_limits null", token_count_line(SESSION_TIME, None)),
            ("rate_limits a list", token_count_line(SESSION_TIME, [SESSION_LIMITS])),
            ("another event",
             json.dumps(with_changes(event, payload={"type": "agent_message", "rate_limits": {}}))),
            ("not an event_msg", json.dumps(with_changes(event, type="response_item"))),
            ("payload a string", json.dumps(with_changes(event, payload="token_count"))),
            ("no timestamp", json.dumps({key: value for key, value in event.items() if key != "timestamp"})),
            ("a timestamp that is no time", token_count_line("yesterday", SESSION_LIMITS)),
            ("a numeric timestamp", token_count_line(1773480413, SESSION_LIMITS)),
            ("an impossible date", token_count_line("2026-02-30T10:00:00Z", SESSION_LIMITS)),
            ("not JSON", token_count_line(SESSION_TIME, SESSION_LIMITS)[:-20]),
            ("a list", "[1, 2, 3]"),
            ("empty", ""),
            ("bytes that are not UTF-8", b'\xff\xfe{"type": "event_msg"}'),
        ]
        for name, line in cases:
            with self.subTest(name):
                self.assertIsNone(vantrel.document_from_session_line(line))

    def test_timestamps(self):
        cases = [
            ("2026-03-14T09:26:53.589Z", 1773480413.589),
            ("2026-03-14T09:26:53Z", 1773480413.0),
            ("2026-03-14T09:26:53.589123456Z", 1773480413.589123),
            ("2026-03-14T10:26:53.589+01:00", 1773480413.589),
            ("2026-03-14T09:26:53.589", 1773480413.589),
        ]
        for text, seconds in cases:
            with self.subTest(text=text):
                self.assertAlmostEqual(vantrel.parse_timestamp(text), seconds, places=5)

    def test_snake_case_fields(self):
        cases = [
            ("another limit id", {"limit_id": "codex_spark"}, "id", "codex_spark"),
            ("a missing limit id means codex", {"limit_id": None}, "id", "codex"),
            ("spend control reached", {"spend_control_reached": True}, "spendControlReached", True),
            ("spend control unknown", {"spend_control_reached": None}, "spendControlReached", None),
            ("a reached limit", {"rate_limit_reached_type": "rate_limit_reached"}, "limitReached", True),
            ("no credits", {"credits": None}, "creditBalance", None),
            ("a balance that is a number", {"credits": {"balance": 3}}, "creditBalance", None),
        ]
        for name, changes, key, expected in cases:
            with self.subTest(name):
                line = token_count_line(SESSION_TIME, with_changes(SESSION_LIMITS, **changes))
                self.assertEqual(vantrel.document_from_session_line(line)["buckets"][0].get(key), expected)

    def test_older_lines_give_the_time_left_instead_of_the_reset(self):
        limits = {"primary": {"used_percent": 10.0, "window_minutes": 300, "resets_in_seconds": 600},
                  "secondary": {"used_percent": 20.0, "window_minutes": 10080, "resets_at": None,
                                "resets_in_seconds": -30}}
        bucket = vantrel.document_from_session_line(token_count_line(SESSION_TIME, limits))["buckets"][0]
        self.assertEqual(bucket["windows"][0]["resetsAt"], SESSION_SECONDS + 600)
        self.assertFalse(bucket["windows"][0]["resetPending"])
        self.assertTrue(bucket["windows"][1]["resetPending"])
        self.assertNotIn("limitReached", bucket)

    def test_garbage_inside_the_limits(self):
        limits = {"primary": {"used_percent": "lots", "window_minutes": None, "resets_at": "tomorrow"},
                  "secondary": 17, "credits": "none", "spend_control_reached": "no", "limit_id": 5}
        bucket = vantrel.document_from_session_line(token_count_line(SESSION_TIME, limits))["buckets"][0]
        self.assertEqual(bucket, {"id": "codex", "windows": [{"slot": "primary"}]})


class SummaryTest(unittest.TestCase):
    def test_durations_read_as_on_the_panel(self):
        for minutes, text in ((300, "5 h"), (10080, "týden"), (90, "90 min"), (0, "0 h"), (90.5, "90 min")):
            with self.subTest(minutes=minutes):
                self.assertEqual(vantrel.duration_text(minutes), text)

    def test_summary_lines(self):
        bucket = copy.deepcopy(CODEX_BUCKET)
        bucket["windows"][1].update(resetPending=True)
        bucket["spendControlReached"] = True
        document = {"buckets": [bucket, SPARK_BUCKET], "observedAt": NOW, "source": "live"}
        lines = vantrel.summary(document).splitlines()
        self.assertTrue(lines[0].startswith("Limity účtu Codex · živě z Codex CLI · "))
        self.assertRegex(lines[1], r"^codex · krátkodobý limit \(5 h\): zbývá 63 % · obnova "
                                   r"\d+\. \d+\. \d\d:\d\d$")
        self.assertEqual(lines[2], "codex · dlouhodobý limit (týden): čeká se na nový stav po obnově")
        self.assertEqual(lines[3:5], ["codex · kredity: 12.5",
                                      "codex · účet hlásí omezení čerpání"])
        self.assertTrue(lines[5].startswith("codex_spark · krátkodobý limit (5 h): zbývá 95 %"))
        self.assertEqual(len(lines), 6)

    def test_summary_of_odd_documents(self):
        window = {"slot": "primary", "resetsAt": 1e15}
        document = {"buckets": [{"id": "x", "windows": [window]}], "observedAt": NOW, "source": "session"}
        text = vantrel.summary(document)
        self.assertIn("ze záznamu relace Codex", text)
        self.assertIn("x · krátkodobý limit: zbývá — · obnova ?", text)
        empty = vantrel.summary({"buckets": [], "observedAt": NOW, "source": "live"})
        self.assertEqual(empty.splitlines()[1], "API nevrátilo limity účtu")


if __name__ == "__main__":
    unittest.main()
