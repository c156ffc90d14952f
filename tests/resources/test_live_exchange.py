"""The exchange with the app server, against a stand-in, and finding the codex executable."""

import json
import os
import tempfile
import unittest
from unittest import mock

from script_support import fake_codex, load_script, server_log

vantrel = load_script()
REPLY = {"rateLimits": {"limitId": "codex", "primary": {"usedPercent": 37}}, "rateLimitsByLimitId": None}
FLAGS = ["--disable", "plugins", "--disable", "apps", "--disable", "remote_plugin"]


def process_exists(pid):
    try:
        os.kill(pid, 0)
    except ProcessLookupError:
        return False
    return True


class LiveExchangeTest(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.codex = fake_codex(self.directory.name)
        self.log = os.path.join(self.directory.name, "server.log")
        self.environment = mock.patch.dict(os.environ, {"FAKE_SERVER_LOG": self.log,
                                                        "FAKE_SERVER_REPLY": json.dumps(REPLY)})
        self.environment.start()

    def tearDown(self):
        self.environment.stop()
        self.directory.cleanup()

    def read(self, mode, time_limit=vantrel.LIVE_TIME_LIMIT):
        os.environ["FAKE_SERVER_MODE"] = mode
        return vantrel.read_live(vantrel.app_server_command(self.codex), time_limit)

    def server_pid(self):
        return server_log(self.log)[0]["pid"]

    def test_handshake_request_and_end(self):
        result, observed_at = self.read("normal")
        self.assertEqual(result, REPLY)
        self.assertIsInstance(observed_at, float)
        events = server_log(self.log)
        self.assertEqual(events[0]["argv"], ["app-server", *FLAGS])
        self.assertEqual(events[0]["path"].split(os.pathsep)[0], self.directory.name)
        messages = [event["message"] for event in events if event["event"] == "message"]
        self.assertEqual(messages, [
            {"method": "initialize", "id": 1, "params": {"clientInfo": vantrel.CLIENT_INFO}},
            {"method": "initialized"},
            {"method": "account/rateLimits/read", "id": 2, "params": {"excludeResetCreditDetails": True}},
        ])
        self.assertEqual(events[-1]["event"], "end of input")
        self.assertFalse(process_exists(events[0]["pid"]))

    def test_notifications_and_broken_lines_are_skipped(self):
        for mode in ("chatty", "split"):
            with self.subTest(mode=mode):
                self.assertEqual(self.read(mode)[0], REPLY)

    def test_an_error_reply(self):
        with self.assertRaisesRegex(vantrel.Unavailable, "authentication required to read rate limits"):
            self.read("error")
        self.assertFalse(process_exists(self.server_pid()))

    def test_a_server_that_ends_at_once(self):
        with self.assertRaises(vantrel.Unavailable):
            self.read("exit")

    def test_a_server_that_never_answers_is_ended_at_the_time_limit(self):
        for mode in ("silent", "deaf"):
            with self.subTest(mode=mode):
                with self.assertRaisesRegex(vantrel.Unavailable, "no answer in time"):
                    self.read(mode, time_limit=2.0)
                self.assertFalse(process_exists(self.server_pid()))
                os.remove(self.log)

    def test_a_server_that_stays_after_answering_is_killed(self):
        self.assertEqual(self.read("lingering")[0], REPLY)
        self.assertFalse(process_exists(self.server_pid()))

    def test_a_command_that_cannot_start(self):
        with self.assertRaisesRegex(vantrel.Unavailable, "cannot start"):
            vantrel.read_live([os.path.join(self.directory.name, "missing"), "app-server"])

    def test_config_overrides_come_from_the_environment(self):
        overrides = ('chatgpt_base_url="http://127.0.0.1:9/backend-api/"\n'
                     '\n  cli_auth_credentials_store="file"  \n')
        with mock.patch.dict(os.environ, {"VANTREL_CODEX_CONFIG": overrides}):
            self.assertEqual(vantrel.app_server_command("codex"), [
                "codex", "app-server", "-c", 'chatgpt_base_url="http://127.0.0.1:9/backend-api/"',
                "-c", 'cli_auth_credentials_store="file"', *FLAGS])


class FindCodexTest(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.root = self.directory.name
        self.path_dir = self.place("path")
        self.environment = mock.patch.dict(os.environ, {"HOME": self.place("home"), "PATH": self.path_dir})
        self.environment.start()
        for name in ("VANTREL_CODEX", "npm_config_prefix", "NPM_CONFIG_PREFIX"):
            os.environ.pop(name, None)

    def tearDown(self):
        self.environment.stop()
        self.directory.cleanup()

    def place(self, *parts):
        path = os.path.join(self.root, *parts)
        os.makedirs(path, exist_ok=True)
        return path

    def executable(self, directory, name="codex", text="#!/bin/sh\n"):
        path = os.path.join(directory, name)
        with open(path, "w", encoding="utf-8") as stream:
            stream.write(text)
        os.chmod(path, 0o755)
        return path

    def test_the_environment_variable_names_it_outright(self):
        self.executable(self.path_dir)
        named = self.executable(self.place("elsewhere"), "my-codex")
        os.environ["VANTREL_CODEX"] = named
        self.assertEqual(vantrel.find_codex(), named)
        os.environ["VANTREL_CODEX"] = os.path.join(self.root, "missing")
        self.assertIsNone(vantrel.find_codex())

    def test_path_comes_first(self):
        on_path = self.executable(self.path_dir)
        self.executable(self.place("home", ".local", "bin"))
        self.assertEqual(vantrel.find_codex(), on_path)

    def test_places_a_desktop_path_misses_in_order(self):
        if os.access("/usr/local/bin/codex", os.X_OK):
            self.skipTest("this machine has /usr/local/bin/codex")
        self.assertIsNone(vantrel.find_codex())
        npm_global = self.executable(self.place("home", ".npm-global", "bin"))
        self.assertEqual(vantrel.find_codex(), npm_global)
        local = self.executable(self.place("home", ".local", "bin"))
        self.assertEqual(vantrel.find_codex(), local)
        prefix = self.place("prefix")
        in_prefix = self.executable(self.place("prefix", "bin"))
        os.environ["npm_config_prefix"] = prefix
        self.assertEqual(vantrel.find_codex(), in_prefix)

    def test_the_npm_prefix_comes_from_npm_itself(self):
        in_prefix = self.executable(self.place("npm-prefix", "bin"))
        self.executable(self.path_dir, "npm", f"#!/bin/sh\necho '{os.path.join(self.root, 'npm-prefix')}'\n")
        self.executable(self.place("home", ".local", "bin"))
        self.assertEqual(vantrel.find_codex(), in_prefix)


if __name__ == "__main__":
    unittest.main()
