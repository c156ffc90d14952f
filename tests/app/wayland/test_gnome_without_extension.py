"""Vantrel on gnome-shell 43 (headless, with XWayland and the AppIndicator extension's tray) without Vantrel's
extension running: Vantrel starts pinned, with the tray menu's check mark, and says once what to enable; it
lifts its own pin when the extension is enabled while it runs, and pins again when it is disabled. An
extension that never answers, answers garbage or goes away leaves it running, pinned and knowing nothing."""

import json
import pathlib
import subprocess
import sys
import time

import accessibility as a11y
from compositors import name_has_owner
from desktop_case import COMPANION, main
from gnome_case import ADVICE, EXTENSION, EXTENSION_UUID, FOCUS_NAME, PINNED_ENTRY, GnomeCase
from status_notifier import TrayItem
from vantrel_desktop import die_with_parent, wait_for

FAKE_EXTENSION = pathlib.Path(__file__).resolve().parent / "fake_focus_extension.py"
FAULTY = ("vantrel: Vantrel's GNOME Shell extension gives no answer Vantrel understands, so the panel is pinned. "
          "Install the extension that came with this Vantrel, then log out and back in.")
UNPINNED = "vantrel: the window in front is told now, so the panel is no longer pinned"
PINNED_AGAIN = "vantrel: nothing tells which window is in front any more, so the panel is pinned until something does"


class FakeExtension:
    """fake_focus_extension.py, owning the extension's name until stopped."""

    def __init__(self, desktop, behaviour, window=None):
        command = [sys.executable, str(FAKE_EXTENSION), behaviour] + ([json.dumps(window)] if window else [])
        self.process = subprocess.Popen(command, env=desktop.env, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        text=True, preexec_fn=die_with_parent)
        if self.process.stdout.readline().strip() != "ready":
            raise AssertionError("the fake extension did not take the name")

    def send(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        if self.process.stdout.readline().strip() != "done":
            raise AssertionError(f"the fake extension did not do {line!r}")

    def stop(self):
        self.process.stdin.close()
        self.process.wait(5)
        self.process.stdout.close()
        wait_for(lambda: not name_has_owner(FOCUS_NAME), "the fake extension's name released")


class WithoutTheExtension(GnomeCase):
    desktop_options = {"installed": [EXTENSION], "tray": True}

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.desktop.add_desktop_entry("codex", "Codex")
        cls.codex = cls.desktop.open_native(COMPANION, "codex")
        cls.addClassCleanup(cls.codex.close)
        cls.editor = cls.desktop.open_native(COMPANION, "org.example.Editor")
        cls.addClassCleanup(cls.editor.close)

    def setUp(self):
        self.editor.activate()

    def fake(self, behaviour, window=None):
        fake = FakeExtension(self.desktop, behaviour, window)
        self.addCleanup(fake.stop)
        return fake

    def describe(self, window):
        return {"wm-class": "codex" if window is self.codex else "org.example.Editor",
                "client-type": "wayland", "pid": window.pid}

    @staticmethod
    def assert_pinned(vantrel, pinned):
        """Pinned: the tray menu's check mark set and the panel up, whatever is in front."""
        wait_for(lambda: TrayItem(vantrel.process.pid).checked(PINNED_ENTRY) == pinned,
                 f"the tray menu's check mark {'set' if pinned else 'cleared'}")
        if pinned:
            wait_for(vantrel.panel_shown, "the pinned panel")

    def test_vantrel_starts_pinned_and_says_once_what_to_enable(self):
        vantrel = self.start()
        self.assert_pinned(vantrel, True)
        self.codex.activate()
        self.editor.activate()
        time.sleep(0.5)  # past the settling of the changes
        self.assertTrue(vantrel.panel_shown())
        self.assertEqual(self.lines_said(vantrel), [ADVICE])

    def test_the_extension_enabled_later_lifts_vantrels_own_pin(self):
        vantrel = self.start()
        self.assert_pinned(vantrel, True)
        self.desktop.set_extension_enabled(EXTENSION_UUID, True)
        try:
            self.assert_pinned(vantrel, False)
            self.codex.activate()
            wait_for(vantrel.panel_shown, "the panel over native Codex, told by the extension")
            self.editor.activate()
            wait_for(lambda: not vantrel.panel_shown(), "the panel hidden over the editor")
            self.assertEqual(self.said(vantrel, UNPINNED), 1)
        finally:
            self.desktop.set_extension_enabled(EXTENSION_UUID, False)
        wait_for(lambda: not name_has_owner(FOCUS_NAME), "the extension's name released")
        self.assert_pinned(vantrel, True)
        self.assertEqual(self.said(vantrel, PINNED_AGAIN), 1)
        self.assertEqual(self.said(vantrel, ADVICE), 1)

    def test_an_extension_that_never_answers_leaves_vantrel_pinned_and_answering(self):
        self.fake("silent")
        vantrel = self.start()
        self.assert_pinned(vantrel, True)
        self.assertEqual(self.lines_said(vantrel), [FAULTY])
        self.assertTrue(a11y.answers(vantrel.process.pid))

    def test_an_extension_that_answers_garbage_is_no_extension_until_it_makes_sense(self):
        fake = self.fake("garbage")
        vantrel = self.start()
        self.assert_pinned(vantrel, True)
        fake.send(f"signal {json.dumps(self.describe(self.codex))}")
        self.assert_pinned(vantrel, False)
        wait_for(vantrel.panel_shown, "the panel over Codex, as the extension tells it")
        fake.send(f"signal {json.dumps(self.describe(self.editor))}")
        wait_for(lambda: not vantrel.panel_shown(), "the panel hidden over the editor, as the extension tells it")
        for garbage in ("garbage", 'signal {"pid": "42", "client-type": "wayland"}'):
            fake.send(garbage)
            self.assert_pinned(vantrel, True)
            fake.send(f"signal {json.dumps(self.describe(self.editor))}")
            self.assert_pinned(vantrel, False)
            wait_for(lambda: not vantrel.panel_shown(), "the panel hidden over the editor again")
        self.assertEqual(self.said(vantrel, FAULTY), 1)
        self.assertIsNone(vantrel.process.poll())

    def test_an_extension_that_goes_away_leaves_the_panel_pinned(self):
        fake = self.fake("window", self.describe(self.editor))
        vantrel = self.start()
        time.sleep(0.5)  # past the first answer
        self.assertFalse(vantrel.panel_shown())
        fake.send("release")
        self.assert_pinned(vantrel, True)
        self.assertEqual(self.lines_said(vantrel), [ADVICE])


if __name__ == "__main__":
    main()
