"""What the tests of every Wayland session check of the panel, whatever tells Vantrel the window in front.

A test class mixes PanelScenarios in before DesktopTestCase and, in setUpClass, opens the windows with
open_windows(): `editor` (an unrelated application), `codex` (native, named "Codex" by its desktop
entry), `chatgpt` (native) and `x11_codex` (through XWayland); then starts Vantrel and sets `paths` (each
Vantrel running, by the way it learns the window in front).
"""

import subprocess
import time

import accessibility as a11y
from desktop_case import COMPANION
from status_notifier import TrayItem
from vantrel_desktop import wait_for


class PanelScenarios:
    paths = {}

    @classmethod
    def open_windows(cls):
        """The windows the scenarios bring to the front, the X11 one last."""
        cls.desktop.add_desktop_entry("codex", "Codex")
        cls.editor = cls.open_native("org.example.Editor")
        cls.codex = cls.open_native("codex")
        cls.chatgpt = cls.open_native("ChatGPT")
        cls.x11_codex = cls.open("Codex", geometry=(40, 80, 400, 300))

    @classmethod
    def open_native(cls, app_id, **options):
        window = cls.desktop.open_native(COMPANION, app_id, **options)
        cls.addClassCleanup(window.close)
        return window

    def wait_until_shown(self, shown, what):
        for name, vantrel in self.paths.items():
            wait_until(vantrel, shown, f"{what} ({name})")

    def test_the_panel_follows_the_window_in_front(self):
        for description, window in (("native Codex, named by its desktop entry", self.codex),
                                    ("native ChatGPT", self.chatgpt), ("X11 Codex", self.x11_codex)):
            self.editor.activate()
            self.wait_until_shown(False, "over an unrelated window")
            window.activate()
            self.wait_until_shown(True, f"over {description}")

    def test_pinning_from_the_tray_keeps_the_panel_above_every_window(self):
        self.editor.activate()
        self.wait_until_shown(False, "over the editor")
        trays = [TrayItem(vantrel.process.pid) for vantrel in self.paths.values()]
        for tray in trays:
            self.assertFalse(tray.checked(3))
            tray.choose(3)
        try:
            self.wait_until_shown(True, "pinned over the editor")
            for window in (self.x11_codex, self.editor, self.chatgpt):
                window.activate()
                self.wait_until_shown(True, "pinned, whatever is in front")
            self.assertTrue(all(tray.checked(3) for tray in trays))
            self.assertEqual(self.desktop.focused()["pid"], self.chatgpt.pid)
        finally:
            for tray in trays:
                tray.choose(3)
        self.editor.activate()
        self.wait_until_shown(False, "unpinned over the editor")
        self.assertFalse(any(tray.checked(3) for tray in trays))

    def test_accessibility_sees_the_panel_come_and_go(self):
        vantrel = next(iter(self.paths.values()))
        panel = a11y.panel_root(a11y.application(vantrel.process.pid))
        self.codex.activate()
        wait_for(lambda: a11y.showing(panel), "the panel showing to AT-SPI")
        self.editor.activate()
        wait_for(lambda: not a11y.showing(panel), "the panel hidden to AT-SPI")

    def test_a_window_closing_while_it_is_identified_changes_nothing_else(self):
        for _ in range(5):
            process = subprocess.Popen([COMPANION, "--app-id", "codex"], env=self.desktop.env,
                                       stdout=subprocess.DEVNULL)
            time.sleep(0.05)
            process.kill()
            process.wait()
        self.editor.activate()
        self.wait_until_shown(False, "over the editor after the short-lived windows")
        self.codex.activate()
        self.wait_until_shown(True, "over Codex")
        for name, vantrel in self.paths.items():
            self.assertIsNone(vantrel.process.poll(), name)


def wait_until(vantrel, shown, what):
    wait_for(lambda: vantrel.panel_shown() == shown, f"the panel {'shown' if shown else 'hidden'} {what}")
