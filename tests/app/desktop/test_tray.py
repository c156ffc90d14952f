"""Without a tray host: the program runs and says so once, a right click on the panel opens the tray item's
menu, which pins as the tray's does and never takes the focus, a tray host that comes later gets the item
and is noticed, and a StatusNotifierItem watcher that answers nonsense or nothing counts as no host."""

import os
import subprocess
import time

import accessibility as a11y
from desktop_case import main, MENU_ENTRIES, NO_TRAY_HOST, TRAY_HOST_ARRIVED, DesktopTestCase
from vantrel_desktop import die_with_parent, wait_for


class WithoutTrayHost(DesktopTestCase):
    desktop_options = {"tray": False}

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.start_beside_codex_and_xterm()

    def panel_menu(self):
        x, y = a11y.panel_spot(self.desktop, self.vantrel)
        return a11y.PopupMenu(self.desktop, lambda: self.desktop.run("xdotool", "mousemove", str(x), str(y),
                                                                        "click", "3")).open()

    def assert_focus_with(self, window):
        self.assertEqual(self.desktop.active_window(), window.window)
        self.assertEqual(self.desktop.input_focus(), window.window)

    def said(self, line):
        return self.vantrel.stderr.read_text().count(line)

    def test_a_right_click_on_the_panel_opens_the_tray_items_menu_and_leaves_the_focus(self):
        self.codex.activate()
        wait_for(self.vantrel.panel_shown, "the panel over Codex")
        menu = self.panel_menu()
        try:
            self.assertEqual(menu.entries(), MENU_ENTRIES)
            self.assertEqual([menu.shortcut(p) for p in (1, 2, 3, 5)], ["", "", "", "Ctrl+Q"])
            self.assertEqual(self.desktop.active_window(), self.codex.window)
        finally:
            menu.close()
        time.sleep(0.3)  # give a focus change, if any were coming, its time
        self.assert_focus_with(self.codex)
        # Chosen from the panel's menu, an entry closes it and the focus stays too.
        self.panel_menu().choose(2)
        time.sleep(0.3)
        self.assert_focus_with(self.codex)
        self.assertTrue(self.vantrel.panel_shown())

    def test_pinning_from_the_panels_menu_keeps_the_panel_over_anything_with_a_check_mark(self):
        self.codex.activate()
        wait_for(self.vantrel.panel_shown, "the panel over Codex")
        menu = self.panel_menu()
        self.assertFalse(menu.checked(3))
        menu.choose(3)
        try:
            self.xterm.activate()
            time.sleep(0.6)  # past the settling of a change
            self.assertTrue(self.vantrel.panel_shown())
            self.assert_focus_with(self.xterm)
            menu = self.panel_menu()
            self.assertTrue(menu.checked(3))
        finally:
            menu.choose(3)
        wait_for(lambda: not self.vantrel.panel_shown(), "the unpinned panel hidden over xterm")
        self.assert_focus_with(self.xterm)

    def test_a_tray_host_that_comes_and_goes_is_noticed_and_told_once(self):
        self.assertEqual(self.said(NO_TRAY_HOST), 1)
        self.assertEqual(self.said(TRAY_HOST_ARRIVED), 0)
        self.assertEqual(self.vantrel.tray_windows(), [])
        self.desktop.start_tray()
        try:
            tray = wait_for(self.vantrel.tray_windows, "the tray item embedded")[0]
            wait_for(lambda: self.said(TRAY_HOST_ARRIVED), "the line about the tray host")
            # One set of entries: pinned from the panel, the tray item's menu shows the mark too.
            self.codex.activate()
            wait_for(self.vantrel.panel_shown, "the panel over Codex")
            self.panel_menu().choose(3)
            tray_menu = a11y.TrayMenu(self.desktop, tray).open()
            self.assertEqual(tray_menu.entries(), MENU_ENTRIES)
            self.assertTrue(tray_menu.checked(3))
            tray_menu.choose(3)
            panel_menu = self.panel_menu()
            self.assertFalse(panel_menu.checked(3))
            panel_menu.close()
        finally:
            self.desktop.stop_process("trayer")
        wait_for(lambda: self.desktop.work_area()[1] == 0, "the tray's strut gone")
        time.sleep(0.5)  # a line that were to come late would still be seen
        self.assertEqual((self.said(NO_TRAY_HOST), self.said(TRAY_HOST_ARRIVED)), (1, 1))
        self.assertIsNone(self.vantrel.process.poll())

    def test_a_watcher_answering_nonsense_or_nothing_counts_as_no_host(self):
        for behaviour in ("garbage", "silent"):
            with self.subTest(behaviour):
                watcher = subprocess.Popen(
                    ["/usr/bin/python3", os.path.join(os.path.dirname(__file__), "faulty_tray_watcher.py"),
                     behaviour], env=self.desktop.env, stdout=subprocess.PIPE, text=True,
                    preexec_fn=die_with_parent)
                try:
                    self.assertEqual(watcher.stdout.readline().strip(), "ready")
                    vantrel = self.start_vantrel()
                    try:
                        wait_for(lambda v=vantrel: NO_TRAY_HOST in v.stderr.read_text(),
                                 "the line about no tray host")
                        self.assertTrue(a11y.answers(vantrel.process.pid))
                        self.assertEqual(vantrel.tray_windows(), [])
                    finally:
                        vantrel.stop()
                finally:
                    watcher.terminate()
                    watcher.wait(5)
                    watcher.stdout.close()


if __name__ == "__main__":
    main()
