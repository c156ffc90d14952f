"""The panel on a low screen: content taller than the work area scrolls, and a change of the work area
moves the panel even while it is hidden."""


import accessibility as a11y
from desktop_case import main, DesktopTestCase, full_document
from vantrel_desktop import wait_for

HEIGHT = 400


class LowScreen(DesktopTestCase):
    desktop_options = {"height": HEIGHT}

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.vantrel = cls.start_vantrel(full_document(0))
        cls.addClassCleanup(cls.vantrel.stop)
        cls.codex = cls.open("Codex", geometry=(40, 80, 400, 200))
        cls.addClassCleanup(cls.codex.close)
        cls.xterm = cls.open("XTerm", process="xterm", geometry=(480, 80, 300, 200))
        cls.addClassCleanup(cls.xterm.close)
        cls.app = a11y.application(cls.vantrel.process.pid)

    def expected_frame(self):
        area_x, area_y, area_width, area_height = self.desktop.work_area()
        return (area_x + area_width - 308, area_y + 16, 292, area_height - 32)

    def test_content_taller_than_the_work_area_scrolls_and_shows_its_top(self):
        self.codex.activate()
        wait_for(self.vantrel.panel_shown, "the panel over Codex")
        panel = self.vantrel.panel_window()
        wait_for(lambda: self.desktop.geometry(panel) == self.expected_frame(), "the panel's frame")
        _, panel_y, _, panel_height = self.desktop.geometry(panel)
        title = next(n for n in a11y.descendants(a11y.panel_root(self.app)) if n.name == "Vantrel Solvane"
                     and n.getRoleName() == "label")
        title_y = title.queryComponent().getExtents(0).y
        self.assertGreaterEqual(title_y - panel_y, 16)
        self.assertLess(title_y - panel_y, 24)
        maker = next(n for n in a11y.descendants(a11y.panel_root(self.app)) if n.name == "© Solvane")
        self.assertGreater(maker.queryComponent().getExtents(0).y, panel_y + panel_height)

    def test_a_work_area_change_while_hidden_moves_the_panel_without_showing_it(self):
        self.codex.activate()
        wait_for(self.vantrel.panel_shown, "the panel over Codex")
        self.xterm.activate()
        wait_for(lambda: not self.vantrel.panel_shown(), "the panel hidden over xterm")
        panel = self.vantrel.panel_window()
        before = self.desktop.geometry(panel)
        self.desktop.stop_process("trayer")
        try:
            wait_for(lambda: self.desktop.work_area() == (0, 0, 1280, HEIGHT), "the work area without the tray")
            wait_for(lambda: self.desktop.geometry(panel) == self.expected_frame(), "the hidden panel moved")
            self.assertNotEqual(self.desktop.geometry(panel), before)
            self.assertFalse(self.vantrel.panel_shown())
            self.codex.activate()
            wait_for(self.vantrel.panel_shown, "the panel over Codex")
            self.assertEqual(self.desktop.geometry(panel), self.expected_frame())
        finally:
            self.desktop.start_tray()


if __name__ == "__main__":
    main()
