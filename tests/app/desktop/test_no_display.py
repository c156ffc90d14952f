"""Without an X display the program says so in one line and fails, instead of crashing in Qt."""

import os
import subprocess
import sys
import unittest

EXECUTABLE = os.environ["VANTREL_EXECUTABLE"]


def run_without_x(**variables):
    env = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM")}
    env.update(variables)
    return subprocess.run([EXECUTABLE], env=env, capture_output=True, text=True, timeout=60)


class NoDisplay(unittest.TestCase):
    def assert_one_line_failure(self, result, *words):
        self.assertNotEqual(result.returncode, 0)
        self.assertGreater(result.returncode, 0)  # an exit status, not a signal
        self.assertEqual(result.stdout, "")
        lines = result.stderr.splitlines()
        self.assertEqual(len(lines), 1, result.stderr)
        for word in words:
            self.assertIn(word, lines[0])

    def test_no_display_at_all(self):
        self.assert_one_line_failure(run_without_x(), "DISPLAY")

    def test_wayland_without_xwayland(self):
        self.assert_one_line_failure(run_without_x(WAYLAND_DISPLAY="wayland-0"), "Wayland", "XWayland")

    def test_a_display_that_cannot_be_reached(self):
        self.assert_one_line_failure(run_without_x(DISPLAY=":4242"), '":4242"')


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
