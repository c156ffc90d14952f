"""Vantrel on KWin 5.27 with waybar's tray standing in for Plasma's: the panel follows native Wayland
windows and XWayland ones, told by KWin's window-management protocol, which KWin offers to Vantrel through
the desktop entry an installation brings; it sits at the bottom right above other windows without ever
taking the focus; pinning from the tray keeps it up over everything; and it keeps running, knowing only
X11 windows or nothing, when KWin does not offer the protocol or the connection drops, garbles or falls
silent (starting pinned where nothing could tell the window in front from the start)."""

import os
import pathlib
import shutil
import subprocess
import sys
import time

from compositors import LOST, MARGIN, PANEL_WIDTH, panel_backdrop_pixel
from desktop_case import COMPANION, EXECUTABLE, LIMITS_SCRIPT, DesktopTestCase, main
from kwin import KWin, window_management_entry
from panel_scenarios import PanelScenarios, wait_until
import socket_proxy
from status_notifier import TrayItem
from vantrel_desktop import install_into_prefix, wait_for

# The entry that `cmake --install` and the package install, as the build tree has it.
ENTRY = (pathlib.Path(EXECUTABLE).parents[1] / "share" / "applications" /
         "io.github.vantrel.Vantrel.WindowManagement.desktop")
ALL_DESKTOPS = 0xFFFFFFFF
NOT_GRANTED = "vantrel: KWin does not tell Vantrel which window is in front, so the panel is pinned."


class OnKWin(PanelScenarios, DesktopTestCase):
    @classmethod
    def setUpClass(cls):
        # KWin offers its protocol by the program's path: every granted Vantrel runs from one prefix, named
        # by an entry KWin reads at its start. A proxy standing between Vantrel and KWin is the client KWin
        # sees, so it is granted too: it runs on a copy of the interpreter that only its entry names (KWin
        # reads the first entry naming a program, and Debian's python3.11.desktop names the original).
        cls.prefix = install_into_prefix(EXECUTABLE, LIMITS_SCRIPT, "vantrel-kwin-prefix-")
        cls.addClassCleanup(shutil.rmtree, cls.prefix, ignore_errors=True)
        cls.proxy_python = cls.prefix / "proxy" / "python3"
        cls.proxy_python.parent.mkdir()
        shutil.copy(os.path.realpath(sys.executable), cls.proxy_python)
        cls.desktop_type = KWin
        cls.desktop_options = {"tray": True, "window_management": [
            window_management_entry(ENTRY, cls.prefix / "bin" / "vantrel"),
            window_management_entry(ENTRY, cls.proxy_python)]}
        super().setUpClass()
        cls.open_windows()
        cls.vantrel = cls.start_vantrel(prefix=cls.prefix)
        cls.addClassCleanup(cls.vantrel.stop)
        cls.paths = {"KWin window management": cls.vantrel}

    def test_a_window_running_the_codex_cli_counts_as_codex(self):
        cli = pathlib.Path(self.desktop.runtime.name) / "cli" / "codex"
        cli.parent.mkdir(exist_ok=True)
        cli.symlink_to("/bin/sleep")
        self.editor.activate()
        self.wait_until_shown(False, "over the editor")
        # KWin tells the window's process, whose child is `codex`.
        terminal = self.desktop.open_native(COMPANION, "org.example.Terminal", child=cli)
        try:
            self.wait_until_shown(True, "over the terminal running codex")
        finally:
            terminal.close()
        self.wait_until_shown(False, "once the terminal closed")

    def test_the_panel_sits_at_the_bottom_right_on_every_desktop_and_never_takes_the_focus(self):
        self.codex.activate()
        self.wait_until_shown(True, "over Codex")
        window = self.vantrel.panel_window()
        x, y, width, height = self.desktop.geometry(window)
        self.assertEqual((x, width, y + height), (1280 - MARGIN - PANEL_WIDTH, PANEL_WIDTH, 800 - MARGIN))
        self.assertEqual(self.desktop.cardinals(window, "_NET_WM_DESKTOP"), [ALL_DESKTOPS])
        time.sleep(0.5)  # a focus change that were to come late would still be seen
        self.assertEqual(self.desktop.focused()["pid"], self.codex.pid)

    def test_the_panel_is_drawn_above_a_window_covering_it(self):
        self.desktop.place(self.chatgpt, 380, 100, 900, 700)
        self.chatgpt.activate()
        self.wait_until_shown(True, "over ChatGPT")
        x, y, _, height = self.desktop.geometry(self.vantrel.panel_window())
        shot = pathlib.Path(self.desktop.runtime.name) / "covered.png"
        # The panel's dark backdrop where the window's blue would otherwise be.
        red, green, blue = panel_backdrop_pixel(self.desktop, shot, x + 8, y + height // 2)
        self.assertLess(max(red, green, blue), 60, (red, green, blue))
        self.assertEqual(self.desktop.focused()["pid"], self.chatgpt.pid)

    # --- without the protocol, and faults ----------------------------------------------------------
    def start_other(self, **environment):
        """A Vantrel from a prefix of its own, which no desktop entry names."""
        vantrel = self.start_vantrel(environment=environment)
        self.addCleanup(vantrel.stop)
        return vantrel

    def start_behind(self, proxy_name, answer):
        """A Vantrel whose Wayland socket answers garbage or nothing."""
        proxy = socket_proxy.SocketProxy(pathlib.Path(self.desktop.runtime.name) / proxy_name, answer=answer)
        self.addCleanup(proxy.close)
        vantrel = self.start_vantrel(environment={"WAYLAND_DISPLAY": proxy.path}, prefix=self.prefix)
        self.addCleanup(vantrel.stop)
        return vantrel

    def assert_sees_x11_windows_only(self, vantrel):
        # Nothing tells the window in front: pinned, with the tray's check mark, and said once. Unpinned by
        # the user, the panel follows X11 windows.
        tray = TrayItem(vantrel.process.pid)
        wait_for(lambda: tray.checked(3), "the pin's check mark")
        wait_until(vantrel, True, "pinned")
        self.assertEqual(vantrel.stderr.read_text().count(NOT_GRANTED), 1)
        tray.choose(3)
        self.codex.activate()
        time.sleep(0.6)  # past the settling of a change
        self.assertFalse(vantrel.panel_shown())
        self.assertIsNone(vantrel.process.poll())
        self.x11_codex.activate()
        wait_until(vantrel, True, "over X11 Codex, seen through XWayland")

    def test_without_the_desktop_entry_only_x11_windows_are_seen(self):
        self.assert_sees_x11_windows_only(self.start_other())

    def test_a_dropped_connection_leaves_the_panel_knowing_nothing(self):
        path = pathlib.Path(self.desktop.runtime.name) / "wayland-proxy"
        proxy = subprocess.Popen([self.proxy_python, socket_proxy.__file__, path,
                                  self.desktop.xdg_runtime / self.desktop.socket], stdout=subprocess.PIPE, text=True)
        self.addCleanup(proxy.wait)
        self.addCleanup(proxy.kill)
        self.assertEqual(proxy.stdout.readline(), "ready\n")
        proxy.stdout.close()
        vantrel = self.start_vantrel(environment={"WAYLAND_DISPLAY": str(path)}, prefix=self.prefix)
        self.addCleanup(vantrel.stop)
        self.codex.activate()
        wait_until(vantrel, True, "over Codex through the proxy")
        proxy.kill()
        wait_until(vantrel, False, "once the connection dropped")
        self.x11_codex.activate()
        time.sleep(0.6)  # past the settling of a change
        self.assertFalse(vantrel.panel_shown())
        self.assertIsNone(vantrel.process.poll())
        self.assertEqual(vantrel.stderr.read_text().count(LOST), 1)

    def test_a_wayland_socket_that_garbles_or_falls_silent_leaves_xwayland_windows_only(self):
        for proxy_name, answer in (("wayland-garbage", b"\x01\x00\x00\x00\xff\xff\xff\xff" * 4),
                                   ("wayland-silent", b"")):
            with self.subTest(proxy_name):
                vantrel = self.start_behind(proxy_name, answer)
                self.assert_sees_x11_windows_only(vantrel)


if __name__ == "__main__":
    main()
