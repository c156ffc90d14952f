"""Finding the newest recorded limits in Codex's session files."""

import os
import shutil
import subprocess
import tempfile
import threading
import time
import unittest

from script_support import (SESSION_LIMITS, SESSION_SECONDS, SESSION_TIME, load_script, token_count_line,
                            write_session)

vantrel = load_script()
OTHER_LINE = ('{"timestamp": "2026-03-14T09:27:00.000Z", "type": "event_msg", '
              '"payload": {"type": "agent_message"}}')


def limits_used(percent):
    limits = dict(SESSION_LIMITS)
    limits["primary"] = {"used_percent": percent, "window_minutes": 300, "resets_at": 1773491213}
    return limits


def remaining(document):
    return document["buckets"][0]["windows"][0]["remainingPercent"]


class SessionFilesTest(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.TemporaryDirectory()
        self.home = self.directory.name

    def tearDown(self):
        self.directory.cleanup()

    def test_no_sessions_directory(self):
        self.assertIsNone(vantrel.session_document(self.home))

    def test_the_newest_file_by_name_wins_over_the_newest_by_time(self):
        newer = write_session(self.home, "2026/03/14/rollout-2026-03-14T09-00-00-b.jsonl",
                              [token_count_line(SESSION_TIME, limits_used(10))])
        older = write_session(self.home, "2026/03/09/rollout-2026-03-09T23-00-00-a.jsonl",
                              [token_count_line("2026-03-09T23:00:00Z", limits_used(90))])
        os.utime(newer, (1, 1))
        os.utime(older, None)
        document = vantrel.session_document(self.home)
        self.assertEqual(remaining(document), 90)
        self.assertEqual(document["observedAt"], SESSION_SECONDS)
        self.assertEqual(document["source"], "session")

    def test_the_last_line_with_limits_in_the_file_wins(self):
        write_session(self.home, "2026/03/14/rollout-2026-03-14T09-00-00-a.jsonl", [
            token_count_line("2026-03-14T09:00:00Z", limits_used(10)),
            token_count_line(SESSION_TIME, limits_used(20)),
            token_count_line("2026-03-14T09:30:00Z", None),
            OTHER_LINE,
            "garbage {",
        ])
        document = vantrel.session_document(self.home)
        self.assertEqual(remaining(document), 80)
        self.assertEqual(document["observedAt"], SESSION_SECONDS)

    def test_a_newest_file_without_limits_leads_to_the_one_before(self):
        write_session(self.home, "2026/03/14/rollout-2026-03-14T10-00-00-b.jsonl",
                      [OTHER_LINE, token_count_line("2026-03-14T10:00:00Z", None)])
        write_session(self.home, "2026/03/14/rollout-2026-03-14T09-00-00-a.jsonl",
                      [token_count_line(SESSION_TIME, limits_used(30))])
        self.assertEqual(remaining(vantrel.session_document(self.home)), 70)

    def test_compressed_and_other_files_are_skipped(self):
        write_session(self.home, "2026/03/14/rollout-2026-03-14T08-00-00-a.jsonl",
                      [token_count_line(SESSION_TIME, limits_used(40))])
        day = os.path.join(self.home, "sessions", "2026", "03", "14")
        zst = os.path.join(day, "rollout-2026-03-14T11-00-00-c.jsonl.zst")
        # Plain text under the compressed name: read by mistake, it would win.
        with open(zst, "w", encoding="utf-8") as stream:
            stream.write(token_count_line(SESSION_TIME, limits_used(1)) + "\n")
        write_session(self.home, "2026/03/14/notes.txt", [token_count_line(SESSION_TIME, limits_used(2))])
        os.makedirs(os.path.join(day, "zz.jsonl"))
        self.assertEqual(remaining(vantrel.session_document(self.home)), 60)

    def test_a_line_still_being_written_counts_as_absent(self):
        newer = token_count_line("2026-03-14T09:30:00Z", limits_used(90))
        path = write_session(self.home, "2026/03/14/rollout-2026-03-14T09-00-00-a.jsonl",
                             [token_count_line(SESSION_TIME, limits_used(20))])
        for cut in (1, len(newer) // 2, len(newer) - 1):
            with self.subTest(cut=cut):
                with open(path, "a", encoding="utf-8") as stream:
                    stream.write(newer[:cut])
                document = vantrel.session_document(self.home)
                self.assertEqual((remaining(document), document["observedAt"]), (80, SESSION_SECONDS))
                with open(path, "r+", encoding="utf-8") as stream:
                    stream.truncate(len(token_count_line(SESSION_TIME, limits_used(20))) + 1)

    def test_a_session_file_written_while_it_is_read(self):
        path = write_session(self.home, "2026/03/14/rollout-2026-03-14T09-00-00-a.jsonl",
                             [token_count_line("2026-03-14T09:00:00Z", limits_used(0))])
        lines = [token_count_line(f"2026-03-14T09:{minute:02}:00Z", limits_used(minute)) + "\n"
                 for minute in range(1, 60)]

        def write():
            # Each line in two writes, as a buffered writer may flush it.
            with open(path, "a", encoding="utf-8") as stream:
                for line in lines:
                    for part in (line[:100], line[100:]):
                        stream.write(part)
                        stream.flush()
                        time.sleep(0.001)

        writer = threading.Thread(target=write)
        writer.start()
        seen = []
        while writer.is_alive():
            seen.append(vantrel.session_document(self.home)["observedAt"])
        writer.join()
        seen.append(vantrel.session_document(self.home)["observedAt"])
        self.assertEqual(seen, sorted(seen))
        self.assertEqual(seen[-1], vantrel.parse_timestamp("2026-03-14T09:59:00Z"))

    def test_compressed_session_files_are_passed_over(self):
        write_session(self.home, "2026/03/14/rollout-2026-03-14T08-00-00-a.jsonl",
                      [token_count_line(SESSION_TIME, limits_used(40))])
        day = os.path.join(self.home, "sessions", "2026", "03", "14")
        text = (token_count_line("2026-03-14T10:00:00Z", limits_used(1)) + "\n").encode()
        compressed = os.path.join(day, "rollout-2026-03-14T10-00-00-b.jsonl.zst")
        if shutil.which("zstd"):
            subprocess.run(["zstd", "-q", "-o", compressed], input=text, check=True)
        else:
            with open(compressed, "wb") as stream:
                stream.write(text)
        self.assertEqual(remaining(vantrel.session_document(self.home)), 60)
        self.assertIn(compressed, vantrel.newest_session_files(os.path.join(self.home, "sessions")))

    def test_only_the_newest_files_are_read(self):
        write_session(self.home, "2026/01/01/rollout-2026-01-01T00-00-00-a.jsonl",
                      [token_count_line("2026-01-01T00:00:00Z", limits_used(50))])
        for index in range(vantrel.SESSION_FILES_READ):
            write_session(self.home, f"2026/03/14/rollout-2026-03-14T09-00-{index:02}-x.jsonl", [OTHER_LINE])
        self.assertIsNone(vantrel.session_document(self.home))
        self.assertEqual(len(vantrel.newest_session_files(os.path.join(self.home, "sessions"))),
                         vantrel.SESSION_FILES_READ)

    def test_a_long_line_and_a_missing_final_newline(self):
        path = os.path.join(self.home, "sessions", "2026", "03", "14", "rollout-2026-03-14T09-00-00-a.jsonl")
        os.makedirs(os.path.dirname(path))
        huge = '{"type": "response_item", "payload": "' + "x" * 200000 + '"}'
        with open(path, "w", encoding="utf-8") as stream:
            stream.write(huge + "\n" + token_count_line(SESSION_TIME, limits_used(25)) + "\r\n" + huge)
        self.assertEqual(remaining(vantrel.session_document(self.home)), 75)


class LinesFromEndTest(unittest.TestCase):
    def test_every_block_size_gives_the_lines_last_first(self):
        contents = [b"", b"\n", b"one", b"one\n", b"one\ntwo", b"one\ntwo\n", b"\n\nthree\n\n",
                    b"a" * 10 + b"\nb"]
        with tempfile.TemporaryDirectory() as directory:
            path = os.path.join(directory, "lines")
            for content in contents:
                with open(path, "wb") as stream:
                    stream.write(content)
                for block_size in (1, 2, 3, 7, 65536):
                    with self.subTest(content=content, block_size=block_size):
                        lines = list(vantrel.lines_from_end(path, block_size))
                        self.assertEqual(lines, list(reversed(content.split(b"\n"))))


if __name__ == "__main__":
    unittest.main()
