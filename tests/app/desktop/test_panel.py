"""The panel as a user sees it over Codex: its figures, texts, tips, bars, place, and its manners."""

import re
import time

import accessibility as a11y
from desktop_case import main, SHARED_TIP, DesktopTestCase, full_document
from vantrel_desktop import wait_for


class PanelOverCodex(DesktopTestCase):
    desktop_options = {"compositor": True}

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.observed_at = int(time.time())
        cls.vantrel = cls.start_vantrel(full_document(cls.observed_at))
        cls.addClassCleanup(cls.vantrel.stop)
        cls.codex = cls.open("Codex", geometry=(40, 80, 500, 360))
        cls.addClassCleanup(cls.codex.close)
        wait_for(cls.vantrel.panel_shown, "the panel over Codex")
        cls.app = a11y.application(cls.vantrel.process.pid)

    def setUp(self):
        self.codex.activate()
        wait_for(self.vantrel.panel_shown, "the panel over Codex")

    def test_limit_rows_show_the_document(self):
        quota = wait_for(lambda: a11y.row_at(self.app, 0).caption == "Zbývá · 5 h" and a11y.row_at(self.app, 0),
                         "the short-term limit")
        self.assertEqual(quota.value_text, "64 %")
        self.assertAlmostEqual(quota.bar_value, 64.0)
        self.assertEqual(quota.tooltip, SHARED_TIP + " Obnova: 14. 11. 23:13 UTC")
        weekly = a11y.row_at(self.app, 1)
        self.assertEqual(weekly.caption, "Zbývá · týden")
        self.assertEqual(weekly.value_text, "12 %")
        self.assertAlmostEqual(weekly.bar_value, 12.0)
        self.assertEqual(weekly.tooltip, SHARED_TIP)

    def test_credit_and_status_lines(self):
        expected_status = "Limity " + time.strftime("%H:%M", time.gmtime(self.observed_at)) + " · počítač každé 2 s"
        wait_for(lambda: expected_status in a11y.labels(self.app), "the status line")
        self.assertIn("Kredity: 12,50 $ · tokeny: API neposkytuje", a11y.labels(self.app))

    def test_telemetry_rows_get_figures_and_tips(self):
        cpu = a11y.row(self.app, "CPU")
        wait_for(lambda: re.fullmatch(r"\d+ %", cpu.value_text), "a CPU figure from the second tick")
        self.assertEqual(cpu.tooltip, "Vytížení všech jader CPU za poslední interval.")
        self.assertGreaterEqual(cpu.bar_value, 0.0)
        ram = a11y.row(self.app, "RAM")
        self.assertRegex(ram.value_text, r"^\d+ %$")
        self.assertTrue(ram.tooltip.startswith("Aktivní + wired + komprimované fyzické stránky"))
        first_core = a11y.row(self.app, "1")
        self.assertEqual(first_core.tooltip, "Logické jádro CPU 1, poslední interval.")
        self.assertEqual(first_core.bar.name, "Jádro 1")
        gpu = a11y.row(self.app, "GPU")
        self.assertTrue(gpu.tooltip.startswith("Vytížení GPU hlášené ovladačem"))
        if gpu.value_text == "—":
            self.assertEqual(gpu.bar_text, "Nedostupné")
        self.assertIn("Ovladač neposkytuje vytížení jednotlivých GPU jader. — = nedostupné.", a11y.labels(self.app))

    def test_panel_sits_in_the_bottom_right_corner_of_the_work_area(self):
        x, y, width, height = self.desktop.geometry(self.vantrel.panel_window())
        area_x, area_y, area_width, area_height = self.desktop.work_area()
        self.assertEqual(width, 292)
        self.assertEqual(area_x + area_width - (x + width), 16)
        self.assertEqual(area_y + area_height - (y + height), 16)
        self.assertLess(height, area_height - 32)

    def test_panel_is_on_every_workspace_above_the_others_without_a_taskbar_entry(self):
        panel = self.vantrel.panel_window()
        self.assertEqual(self.desktop.cardinals(panel, "_NET_WM_DESKTOP"), [0xFFFFFFFF])
        states = self.desktop.xprop(panel, "_NET_WM_STATE")
        self.assertIn("_NET_WM_STATE_ABOVE", states)
        self.assertIn("_NET_WM_STATE_SKIP_TASKBAR", states)
        # openbox keeps a window on all workspaces through the desktop number and drops the sticky state;
        # a window manager that supports the state shows it.
        if "_NET_WM_STATE_STICKY" in self.desktop.xprop_root("_NET_SUPPORTED"):
            self.assertIn("_NET_WM_STATE_STICKY", states)
        # An empty workspace has no window in front, which hides an unpinned panel a moment later: pinned,
        # the panel stays up whatever is in front, and what is seen is only the window manager's doing.
        tray = wait_for(self.vantrel.tray_windows, "the tray item")[0]
        a11y.TrayMenu(self.desktop, tray).open().choose(3)
        try:
            for workspace in (1, 2):
                self.desktop.run("xdotool", "set_desktop", str(workspace))
                wait_for(lambda w=workspace: f"= {w}" in self.desktop.xprop_root("_NET_CURRENT_DESKTOP"),
                         "the workspace switch")
                # openbox may announce the new workspace before it has mapped the windows shown there.
                wait_for(lambda: self.desktop.is_viewable(panel), f"the panel on workspace {workspace}")
        finally:
            self.desktop.run("xdotool", "set_desktop", "0")
            a11y.TrayMenu(self.desktop, tray).open().choose(3)

    def test_no_window_of_the_program_has_a_taskbar_entry(self):
        clients = {int(w, 16) for w in re.findall(r"0x[0-9a-f]+", self.desktop.xprop_root("_NET_CLIENT_LIST"))}
        ours = [w for w in self.desktop.windows_of_class("Vantrel") if w in clients]
        self.assertIn(self.vantrel.panel_window(), ours)
        for window in ours:
            self.assertIn("_NET_WM_STATE_SKIP_TASKBAR", self.desktop.xprop(window, "_NET_WM_STATE"))
        self.assertIsNone(self.vantrel.process.poll())  # and it keeps running

    def test_clicking_the_panel_leaves_the_focus_with_codex(self):
        panel = self.vantrel.panel_window()
        x, y, width, height = self.desktop.geometry(panel)
        self.desktop.run("xdotool", "mousemove", str(x + width // 2), str(y + 30), "click", "1")
        time.sleep(0.3)  # give a focus change, if any were coming, its time
        self.assertEqual(self.desktop.active_window(), self.codex.window)
        self.assertEqual(self.desktop.input_focus(), self.codex.window)

    def test_clicking_a_switch_works_and_leaves_the_focus_with_codex(self):
        details = a11y.switch(self.app, "Všechny parametry")
        cpu = a11y.row(self.app, "CPU")
        full_height = self.desktop.geometry(self.vantrel.panel_window())[3]
        extents = details.queryComponent().getExtents(0)  # screen coordinates
        centre = (extents.x + extents.width // 2, extents.y + extents.height // 2)
        self.desktop.run("xdotool", "mousemove", str(centre[0]), str(centre[1]), "click", "1")
        try:
            wait_for(lambda: not a11y.showing(cpu.node), "the telemetry block hidden")
            self.assertLess(self.desktop.geometry(self.vantrel.panel_window())[3], full_height)
            self.assertEqual(self.desktop.active_window(), self.codex.window)
            self.assertEqual(self.desktop.input_focus(), self.codex.window)
        finally:
            # The panel shrank towards its bottom edge, so the switch has moved: find it again.
            extents = details.queryComponent().getExtents(0)
            self.desktop.run("xdotool", "mousemove", str(extents.x + extents.width // 2),
                             str(extents.y + extents.height // 2), "click", "1")
            wait_for(lambda: a11y.showing(cpu.node), "the telemetry block back")


if __name__ == "__main__":
    main()
