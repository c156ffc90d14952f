"""When the panel shows itself: in front of Codex and ChatGPT only (by window class or process name,
exactly), without flicker between two of them, always once pinned from the tray menu, and once at the
menu's request over any application."""

import subprocess
import time

import accessibility as a11y
from desktop_case import main, MENU_ENTRIES, DesktopTestCase
from vantrel_desktop import wait_for

COMPANIONS = [
    ("class Codex", "Codex", None),
    ("class ChatGPT", "ChatGPT", None),
    ("an Electron window of process Codex", "Electron", "Codex"),
    ("an Electron window of process ChatGPT", "Electron", "ChatGPT"),
]
STRANGERS = [
    ("class and process codex", "codex", "codex"),
    ("class and process Codex Beta", "Codex Beta", "Codex Beta"),
    ("class XTerm, process xterm", "XTerm", "xterm"),
    ("class and process chatgpt", "chatgpt", "chatgpt"),
]


class Visibility(DesktopTestCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.start_beside_codex_and_xterm()
        cls.tray = wait_for(cls.vantrel.tray_windows, "the tray item")[0]
        cls.app = a11y.application(cls.vantrel.process.pid)

    def bring_up_over_codex(self):
        self.codex.activate()
        wait_for(self.vantrel.panel_shown, "the panel over Codex")

    def test_companions_show_the_panel(self):
        for description, window_class, process in COMPANIONS:
            with self.subTest(description):
                self.xterm.activate()
                wait_for(lambda: not self.vantrel.panel_shown(), "the panel hidden over xterm")
                window = self.open(window_class, process=process, geometry=(100, 420, 300, 200))
                try:
                    wait_for(self.vantrel.panel_shown, f"the panel over {description}")
                finally:
                    window.close()

    def test_other_applications_hide_the_panel(self):
        for description, window_class, process in STRANGERS:
            with self.subTest(description):
                self.bring_up_over_codex()
                window = self.open(window_class, process=process, geometry=(100, 420, 300, 200))
                try:
                    wait_for(lambda: not self.vantrel.panel_shown(), f"the panel hidden over {description}")
                finally:
                    window.close()

    def test_switching_between_two_companions_never_unmaps_the_panel(self):
        chatgpt = self.open("ChatGPT", geometry=(100, 420, 300, 200))
        try:
            wait_for(self.vantrel.panel_shown, "the panel over ChatGPT")
            watcher = subprocess.Popen(["xev", "-id", str(self.vantrel.panel_window()), "-event", "structure"],
                                       env=self.desktop.env, stdout=subprocess.PIPE, text=True)
            time.sleep(0.5)  # xev selects its events once it runs
            for _ in range(4):
                self.codex.activate()
                chatgpt.activate()
            time.sleep(0.5)  # a hide that were to come late would still be seen
            watcher.terminate()
            events = watcher.communicate(timeout=10)[0]
            watcher.stdout.close()
            self.assertNotIn("UnmapNotify", events)
            self.assertTrue(self.vantrel.panel_shown())
        finally:
            chatgpt.close()

    def test_pinning_from_the_menu_shows_the_panel_over_anything_with_a_check_mark(self):
        self.xterm.activate()
        wait_for(lambda: not self.vantrel.panel_shown(), "the panel hidden over xterm")
        menu = a11y.TrayMenu(self.desktop, self.tray).open()
        self.assertFalse(menu.checked(3))
        menu.choose(3)
        try:
            wait_for(self.vantrel.panel_shown, "the pinned panel over xterm")
            self.xterm.activate()
            self.assertTrue(self.vantrel.panel_shown())
            menu = a11y.TrayMenu(self.desktop, self.tray).open()
            self.assertTrue(menu.checked(3))
        finally:
            menu.choose(3)
        wait_for(lambda: not self.vantrel.panel_shown(), "the unpinned panel hidden over xterm")
        menu = a11y.TrayMenu(self.desktop, self.tray).open()
        self.assertFalse(menu.checked(3))
        menu.close()

    def test_the_first_entry_shows_the_panel_over_an_unlisted_application_until_the_next_switch(self):
        self.xterm.activate()
        wait_for(lambda: not self.vantrel.panel_shown(), "the panel hidden over xterm")
        a11y.TrayMenu(self.desktop, self.tray).open().choose(1)
        wait_for(self.vantrel.panel_shown, "the panel brought up from the menu")
        # The figures were switched off by the entry; the switch stays reachable.
        self.assertFalse(a11y.showing(a11y.row(self.app, "CPU").node))
        other = self.open("Firefox", geometry=(100, 420, 300, 200))
        try:
            wait_for(lambda: not self.vantrel.panel_shown(), "the panel hidden at the next switch")
        finally:
            other.close()
        self.bring_up_over_codex()
        a11y.TrayMenu(self.desktop, self.tray).open().choose(1)
        wait_for(lambda: a11y.showing(a11y.row(self.app, "CPU").node), "the figures back")

    def test_the_menu_has_its_five_entries(self):
        menu = a11y.TrayMenu(self.desktop, self.tray).open()
        try:
            self.assertEqual(menu.entries(), MENU_ENTRIES)
            self.assertEqual([menu.shortcut(p) for p in (1, 2, 3, 5)], ["", "", "", "Ctrl+Q"])
        finally:
            menu.close()


if __name__ == "__main__":
    main()
