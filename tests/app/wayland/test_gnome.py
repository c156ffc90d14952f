"""Vantrel on gnome-shell 43 (headless, with XWayland and the AppIndicator extension's tray) with Vantrel's
extension enabled: the panel follows native Wayland windows and XWayland ones, told by the extension; it
sits at the bottom right above them without ever taking the focus or keeping it from a new window; and
pinning from the tray keeps it up over everything (test_gnome_without_extension.py: without it)."""

import os
import pathlib
import time

from compositors import MARGIN, PANEL_WIDTH, children, pixel
from desktop_case import COMPANION, main
from gnome_case import EXTENSION, GnomeCase
from panel_scenarios import PanelScenarios
from vantrel_desktop import wait_for


class WithTheExtension(PanelScenarios, GnomeCase):
    desktop_options = {"extensions": [EXTENSION], "tray": True}

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.open_windows()
        cls.vantrel = cls.start_vantrel()
        cls.addClassCleanup(cls.vantrel.stop)
        cls.paths = {"GNOME Shell extension": cls.vantrel}

    def test_a_terminal_counts_while_its_shell_runs_the_codex_cli(self):
        commands = pathlib.Path(self.desktop.runtime.name) / "commands"
        os.mkfifo(commands)
        cli = pathlib.Path(self.desktop.runtime.name) / "cli" / "codex"
        cli.parent.mkdir()
        cli.symlink_to("/bin/sleep")
        terminal = self.desktop.open_native(COMPANION, "org.example.Terminal", shell=commands)
        try:
            shell = wait_for(lambda: children(terminal.pid), "the terminal's shell").pop()
            self.wait_until_shown(False, "over the terminal before codex runs in it")
            with open(commands, "w") as shell_input:
                shell_input.write(f"{cli} 600\n")
            running = wait_for(lambda: children(shell), "codex started in the terminal").pop()
            # The extension tells the terminal's process; the next 2-second tick finds codex below it.
            self.wait_until_shown(True, "over the terminal running codex")
            os.kill(running, 15)
            self.wait_until_shown(False, "once codex ended")
        finally:
            terminal.close()

    def test_the_panel_sits_at_the_bottom_right_and_never_takes_the_focus(self):
        self.codex.activate()
        self.wait_until_shown(True, "over Codex")
        x, y, width, height = self.desktop.geometry(self.vantrel.panel_window())
        self.assertEqual((x, width, y + height), (1280 - MARGIN - PANEL_WIDTH, PANEL_WIDTH, 800 - MARGIN))
        time.sleep(0.5)  # a focus change that were to come late would still be seen
        self.assertEqual(self.desktop.focused()["pid"], self.codex.pid)

    def test_a_window_opened_while_the_panel_is_up_gets_the_focus(self):
        self.codex.activate()
        self.wait_until_shown(True, "over Codex")
        # Large enough to lie under the panel: GNOME Shell opens a window that one kept above others would
        # cover without the focus, and below the focused window.
        viewer = self.desktop.open_native(COMPANION, "org.example.Viewer", size=(1240, 740))
        try:
            self.assertEqual(self.desktop.focused()["pid"], viewer.pid)
            self.wait_until_shown(False, "over the new window")
        finally:
            viewer.close()

    def test_the_panel_is_drawn_above_a_window_covering_it(self):
        cover = self.desktop.open_native(COMPANION, "ChatGPT", title="ChatGPT cover", size=(1240, 740))
        try:
            self.wait_until_shown(True, "over the ChatGPT window covering the screen")
            x, y, _, height = self.desktop.geometry(self.vantrel.panel_window())
            shot = pathlib.Path(self.desktop.runtime.name) / "covered.png"

            def drawn_over_the_window():
                # The window's blue beside the panel, the panel's dark backdrop on it.
                self.desktop.screenshot(shot)
                beside, on = pixel(shot, x - 8, y + height // 2), pixel(shot, x + 8, y + height // 2)
                return beside == (0x3a, 0x6e, 0xa5) and max(on) < 60

            # Both drawn: GNOME Shell zooms a new window in.
            wait_for(drawn_over_the_window, "the panel drawn over the covering window")
            self.assertEqual(self.desktop.focused()["pid"], cover.pid)
        finally:
            cover.close()

    def test_with_the_extension_running_nothing_is_said(self):
        self.assertNotIn("vantrel:", self.vantrel.stderr.read_text())


if __name__ == "__main__":
    main()
