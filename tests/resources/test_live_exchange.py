"""The exchange with the app server, against a stand-in, and finding the codex executable."""

import contextlib
import io
import json
import os
import shutil
import sys
import tempfile
import time
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
        deadline = time.monotonic() + time_limit - vantrel.ENDING_TIME
        return vantrel.read_one_shot(vantrel.app_server_command(self.codex), deadline)

    def server_pid(self):
        return server_log(self.log)[0]["pid"]

    def test_handshake_request_and_end(self):
        self.assertEqual(self.read("normal"), REPLY)
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
                self.assertEqual(self.read(mode), REPLY)

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
        self.assertEqual(self.read("lingering"), REPLY)
        self.assertFalse(process_exists(self.server_pid()))

    def test_a_command_that_cannot_start(self):
        with self.assertRaisesRegex(vantrel.Unavailable, "cannot start"):
            vantrel.read_one_shot([os.path.join(self.directory.name, "missing"), "app-server"],
                                  time.monotonic() + 5)

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
        self.npm_runs = os.path.join(self.root, "npm-runs")
        self.environment = mock.patch.dict(os.environ, {"HOME": self.place("home"), "PATH": self.path_dir,
                                                        "XDG_CACHE_HOME": os.path.join(self.root, "cache")})
        self.environment.start()
        for name in ("VANTREL_CODEX", "npm_config_prefix", "NPM_CONFIG_PREFIX", "NPM_CONFIG_USERCONFIG"):
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

    def fake_npm(self, prefix):
        """An npm that answers `config get prefix` with the given prefix and counts its runs."""
        self.executable(self.path_dir, "npm", f"#!/bin/sh\necho run >> '{self.npm_runs}'\necho '{prefix}'\n")

    def npm_run_count(self):
        if not os.path.exists(self.npm_runs):
            return 0
        with open(self.npm_runs, encoding="utf-8") as stream:
            return len(stream.readlines())

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

    def test_npm_is_asked_last_and_once(self):
        in_prefix = self.executable(self.place("npm-prefix", "bin"))
        self.fake_npm(os.path.join(self.root, "npm-prefix"))
        for _ in range(3):
            self.assertEqual(vantrel.find_codex(), in_prefix)
        self.assertEqual(self.npm_run_count(), 1)
        # A place a desktop session's PATH misses is looked at before npm's prefix.
        local = self.executable(self.place("home", ".local", "bin"))
        self.assertEqual(vantrel.find_codex(), local)
        self.assertEqual(self.npm_run_count(), 1)

    def test_without_any_codex_npm_is_still_asked_once(self):
        if os.access("/usr/local/bin/codex", os.X_OK):
            self.skipTest("this machine has /usr/local/bin/codex")
        self.fake_npm(self.place("empty-prefix"))
        for _ in range(3):
            self.assertIsNone(vantrel.find_codex())
        self.assertEqual(self.npm_run_count(), 1)

    def test_a_change_to_npm_or_its_configuration_asks_again(self):
        first = self.executable(self.place("first", "bin"))
        self.fake_npm(os.path.join(self.root, "first"))
        self.assertEqual(vantrel.find_codex(), first)
        # `npm config set prefix` writes ~/.npmrc.
        second = self.executable(self.place("second", "bin"))
        with open(os.path.join(self.root, "home", ".npmrc"), "w", encoding="utf-8") as stream:
            stream.write(f"prefix={os.path.join(self.root, 'second')}\n")
        self.fake_npm(os.path.join(self.root, "second"))
        self.assertEqual(vantrel.find_codex(), second)
        self.assertEqual(self.npm_run_count(), 2)

    def test_a_cache_pointing_at_a_cli_that_was_removed_or_replaced(self):
        if os.access("/usr/local/bin/codex", os.X_OK):
            self.skipTest("this machine has /usr/local/bin/codex")
        in_prefix = self.executable(self.place("npm-prefix", "bin"))
        self.fake_npm(os.path.join(self.root, "npm-prefix"))
        self.assertEqual(vantrel.find_codex(), in_prefix)
        os.remove(in_prefix)
        self.assertIsNone(vantrel.find_codex())
        replaced = self.executable(self.place("npm-prefix", "bin"), text="#!/bin/sh\necho another build\n")
        self.assertEqual(vantrel.find_codex(), replaced)
        # npm's prefix stands while npm and its configuration are unchanged.
        self.assertEqual(self.npm_run_count(), 1)

    def test_a_garbled_cache_is_rebuilt(self):
        in_prefix = self.executable(self.place("npm-prefix", "bin"))
        self.fake_npm(os.path.join(self.root, "npm-prefix"))
        cache = os.path.join(self.place("cache", "vantrel"), "npm-prefix.json")
        for garbage in ("", "{", "[]", '{"key": 1}', '{"key": null, "prefix": 5}', "\udcff"):
            with self.subTest(garbage=garbage):
                with open(cache, "w", encoding="utf-8", errors="surrogateescape") as stream:
                    stream.write(garbage)
                self.assertEqual(vantrel.find_codex(), in_prefix)
                with open(cache, encoding="utf-8") as stream:
                    self.assertEqual(json.load(stream)["prefix"], os.path.join(self.root, "npm-prefix"))

    def test_an_unwritable_cache_directory(self):
        in_prefix = self.executable(self.place("npm-prefix", "bin"))
        self.fake_npm(os.path.join(self.root, "npm-prefix"))
        # A file where the cache directory should be: unwritable even for root.
        blocker = os.path.join(self.root, "not-a-directory")
        with open(blocker, "w", encoding="utf-8"):
            pass
        os.environ["XDG_CACHE_HOME"] = blocker
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors):
            self.assertEqual(vantrel.find_codex(), in_prefix)
            self.assertEqual(vantrel.find_codex(), in_prefix)
        self.assertEqual(self.npm_run_count(), 2)
        self.assertIn("cannot remember npm's prefix", errors.getvalue())


class NativeBinaryTest(unittest.TestCase):
    """npm's launcher is passed over for the binary it would start."""

    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.root = self.directory.name
        target = vantrel.NATIVE_TARGETS.get((sys.platform, os.uname().machine))
        if target is None:
            self.skipTest(f"no native CLI for {sys.platform} {os.uname().machine}")
        self.triple, self.platform_package = target

    def tearDown(self):
        self.directory.cleanup()

    def file(self, *parts, mode=0o755):
        path = os.path.join(self.root, *parts)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as stream:
            stream.write("#!/bin/sh\n")
        os.chmod(path, mode)
        return path

    def launcher(self, package):
        """bin/codex in a global prefix: a link to the package's bin/codex.js, as npm makes it."""
        script = self.file(package, "bin", "codex.js")
        link = os.path.join(self.root, "prefix", "bin", "codex")
        os.makedirs(os.path.dirname(link), exist_ok=True)
        os.symlink(script, link)
        return link

    def test_where_npm_puts_the_binary(self):
        package = os.path.join("prefix", "lib", "node_modules", "@openai", "codex")
        layouts = {
            "a global install": (package, "node_modules", "@openai", self.platform_package, "vendor"),
            "hoisted beside the package": ("prefix", "lib", "node_modules", "@openai", self.platform_package,
                                           "vendor"),
            "the package's own vendor folder": (package, "vendor"),
        }
        for name, vendor in layouts.items():
            with self.subTest(name):
                binary = self.file(*vendor, self.triple, "bin", "codex")
                launcher = self.launcher(package)
                self.assertEqual(vantrel.native_binary(launcher),
                                 (binary, os.path.realpath(os.path.join(self.root, package))))
                shutil.rmtree(os.path.join(self.root, "prefix"))

    def test_other_codex_executables_run_as_they_are(self):
        package = os.path.join("prefix", "lib", "node_modules", "@openai", "codex")
        launcher = self.launcher(package)
        self.assertIsNone(vantrel.native_binary(launcher))  # no platform package
        self.file(package, "vendor", self.triple, "bin", "codex", mode=0o644)
        self.assertIsNone(vantrel.native_binary(launcher))  # not executable
        self.assertIsNone(vantrel.native_binary(self.file("standalone", "codex")))
        with mock.patch.dict(os.environ, {"VANTREL_CODEX_CONFIG": ""}):
            command, environment = vantrel.launch(launcher)
        self.assertEqual(command[:2], [launcher, "app-server"])
        self.assertNotIn("CODEX_MANAGED_PACKAGE_ROOT", environment)

    def test_the_binary_gets_what_the_launcher_would_give_it(self):
        package = os.path.join("prefix", "lib", "node_modules", "@openai", "codex")
        binary = self.file(package, "vendor", self.triple, "bin", "codex")
        with mock.patch.dict(os.environ, {"VANTREL_CODEX_CONFIG": ""}):
            command, environment = vantrel.launch(self.launcher(package))
        self.assertEqual(command, [binary, "app-server", *FLAGS])
        self.assertEqual(environment["CODEX_MANAGED_PACKAGE_ROOT"],
                         os.path.realpath(os.path.join(self.root, package)))
        self.assertEqual(environment["CODEX_MANAGED_BY_NPM"], "1")


if __name__ == "__main__":
    unittest.main()
