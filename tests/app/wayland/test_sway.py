"""Vantrel on sway 1.7 with waybar's tray: the panel follows native Wayland windows and XWayland ones, told
by sway's IPC and, in a second instance without SWAYSOCK, by the foreign-toplevel protocol; it sits at the
bottom right above tiled and floating windows without ever taking the focus; pinning from the tray keeps
it up over everything; without waybar the panel's own menu serves, and waybar coming back gets the tray
item, also of an instance started while it was away; and it keeps running, knowing nothing, when the
compositor's connection drops, garbles or falls silent, pinned where no connection could be made at all."""

import os
import pathlib
import subprocess
import time

import accessibility as a11y
from compositors import LOST, MARGIN, PANEL_WIDTH, panel_backdrop_pixel
from desktop_case import COMPANION, MENU_ENTRIES, NO_TRAY_HOST, TRAY_HOST_ARRIVED, DesktopTestCase, main
from panel_scenarios import PanelScenarios
from socket_proxy import SocketProxy
from status_notifier import TrayItem
from sway import Sway
from vantrel_desktop import wait_for

VIRTUAL_POINTER = os.environ["VANTREL_VIRTUAL_POINTER"]
NOTHING_TELLS = ("vantrel: this Wayland compositor tells no application which window is in front, so the panel is "
                 "pinned.")


class OnSway(PanelScenarios, DesktopTestCase):
    desktop_type = Sway
    desktop_options = {"tray": True}

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.open_windows()
        cls.paths = {"sway IPC": cls.start_vantrel(),
                     "foreign toplevel": cls.start_vantrel(environment={"SWAYSOCK": None})}
        for vantrel in cls.paths.values():
            cls.addClassCleanup(vantrel.stop)

    def test_a_window_running_the_codex_cli_counts_where_the_process_is_known(self):
        cli = pathlib.Path(self.desktop.runtime.name) / "cli" / "codex"
        cli.parent.mkdir(exist_ok=True)
        cli.symlink_to("/bin/sleep")
        terminal = self.desktop.open_native(COMPANION, "org.example.Terminal", child=cli)
        try:
            terminal.activate()
            # sway's IPC tells the window's process, whose child is `codex`; the protocol tells no process.
            wait_for(self.paths["sway IPC"].panel_shown, "the panel over the terminal running codex")
            time.sleep(1)
            self.assertFalse(self.paths["foreign toplevel"].panel_shown())
        finally:
            terminal.close()

    def test_the_tray_item_registers_with_waybar_and_offers_its_menu(self):
        for name, vantrel in self.paths.items():
            with self.subTest(name):
                self.assertEqual(TrayItem(vantrel.process.pid).entries(), MENU_ENTRIES)
                self.assertNotIn(NO_TRAY_HOST, vantrel.stderr.read_text())

    def test_without_waybar_the_panels_menu_serves_and_waybar_coming_back_gets_the_item(self):
        self.desktop.stop_process("waybar")
        try:
            late = self.start_vantrel()  # starts while no tray host runs
            self.addCleanup(late.stop)
            instances = [*self.paths.values(), late]
            for vantrel in instances:
                wait_for(lambda v=vantrel: NO_TRAY_HOST in v.stderr.read_text(), "the line about no tray host")
            menu = self.panel_menu_over_codex(late)
            self.assertEqual(menu.entries(), MENU_ENTRIES)
            time.sleep(0.5)  # a focus change that were to come late would still be seen
            self.assertEqual(self.desktop.focused()["pid"], self.codex.pid)
            # XWayland sees no click on a native window; another window in front closes the menu.
            self.editor.activate()
            wait_for(menu.closed, "the menu closed once the editor came to the front")
            # The panels lie on one another, shown again in any order: the one on top opens its menu.
            menu = self.panel_menu_over_codex(late)
            pinned = next(v for v in instances if v.process.pid == menu.process_id())
            menu.choose(3)
            self.editor.activate()
            for vantrel in instances:
                wait_for(lambda v=vantrel: v.panel_shown() == (v is pinned), "only the pinned panel over the editor")
            self.assertEqual(self.desktop.focused()["pid"], self.editor.pid)
            menu = self.panel_menu(pinned)
            self.assertTrue(menu.checked(3))
            menu.choose(3)
            wait_for(lambda: not pinned.panel_shown(), "the unpinned panel hidden over the editor")
            self.assertEqual(self.desktop.focused()["pid"], self.editor.pid)
        finally:
            self.desktop.start_tray()
        for vantrel in instances:
            wait_for(lambda v=vantrel: TRAY_HOST_ARRIVED in v.stderr.read_text(), "the line about waybar's tray")
            self.assertEqual(TrayItem(vantrel.process.pid).entries(), MENU_ENTRIES)
            self.assertEqual(vantrel.stderr.read_text().count(NO_TRAY_HOST), 1)

    def panel_menu_over_codex(self, late):
        self.codex.activate()
        self.wait_until_shown(True, "over Codex")
        wait_for(late.panel_shown, "the late instance's panel over Codex")
        return self.panel_menu(late)

    def panel_menu(self, vantrel):
        x, y = a11y.panel_spot(self.desktop, vantrel)
        return a11y.PopupMenu(self.desktop, lambda: self.click(x, y, "right")).open()

    def test_the_panel_sits_at_the_bottom_right_and_never_takes_the_focus(self):
        self.codex.activate()
        self.wait_until_shown(True, "over Codex")
        for name, vantrel in self.paths.items():
            with self.subTest(name):
                x, y, width, height = self.desktop.geometry(vantrel.panel_window())
                self.assertEqual((x, width, y + height), (1280 - MARGIN - PANEL_WIDTH, PANEL_WIDTH, 800 - MARGIN))
                # Unmanaged: sway neither lists nor focuses it.
                self.assertIsNone(self.desktop.view_of(vantrel.process.pid))
        time.sleep(0.5)  # a focus change that were to come late would still be seen
        self.assertEqual(self.desktop.focused()["pid"], self.codex.pid)

    def test_a_click_on_the_panel_works_and_leaves_the_focus_where_it_was(self):
        self.codex.activate()
        self.wait_until_shown(True, "over Codex")
        apps = [a11y.application(vantrel.process.pid) for vantrel in self.paths.values()]

        def figures_shown():
            return [a11y.showing(a11y.row(app, "CPU").node) for app in apps]

        self.assertEqual(figures_shown(), [True, True])
        self.click_switch(apps[0])
        try:
            # The two panels lie on one another: the one on top took the click.
            wait_for(lambda: sorted(figures_shown()) == [False, True], "the figures of the clicked panel hidden")
            self.assertEqual(self.desktop.focused()["pid"], self.codex.pid)
        finally:
            # The shorter panel sits lower: its switch has moved.
            for app, shown in zip(apps, figures_shown()):
                if not shown:
                    self.click_switch(app)
        wait_for(lambda: figures_shown() == [True, True], "the figures back")

    def click_switch(self, app):
        switch = a11y.switch(app, "Zobrazit nebo skrýt údaje").queryComponent().getExtents(0)
        self.click(switch.x + switch.width // 2, switch.y + switch.height // 2)

    def click(self, x, y, button="left"):
        subprocess.run([VIRTUAL_POINTER, str(x), str(y), "1280", "800", button], env=self.desktop.env, check=True,
                       timeout=20)

    def test_the_panel_is_drawn_above_a_floating_window_covering_it(self):
        self.desktop.swaymsg(f"[pid={self.chatgpt.pid}] floating enable, resize set 900 700, move position 380 100")
        try:
            self.chatgpt.activate()
            self.wait_until_shown(True, "over the floating ChatGPT")
            x, y, _, height = self.desktop.geometry(self.paths["sway IPC"].panel_window())
            shot = pathlib.Path(self.desktop.runtime.name) / "floating.png"
            # The panel's dark backdrop where the window's blue would otherwise be.
            red, green, blue = panel_backdrop_pixel(self.desktop, shot, x + 8, y + height // 2)
            self.assertLess(max(red, green, blue), 60, (red, green, blue))
        finally:
            self.desktop.swaymsg(f"[pid={self.chatgpt.pid}] floating disable")

    def test_the_panel_follows_onto_another_workspace(self):
        self.desktop.swaymsg("workspace 2")
        try:
            codex = self.desktop.open_native(COMPANION, "codex")
            try:
                self.wait_until_shown(True, "over Codex on workspace 2")
            finally:
                codex.close()
            self.wait_until_shown(False, "over the empty workspace")
        finally:
            self.desktop.swaymsg("workspace 1")

    # --- faults ------------------------------------------------------------------------------------
    def start_behind(self, proxy_name, variable, **proxy_options):
        proxy = SocketProxy(pathlib.Path(self.desktop.runtime.name) / proxy_name, **proxy_options)
        self.addCleanup(proxy.close)
        environment = {variable: proxy.path}
        if variable == "WAYLAND_DISPLAY":
            environment["SWAYSOCK"] = None
        vantrel = self.start_vantrel(environment=environment)
        self.addCleanup(vantrel.stop)
        return proxy, vantrel

    def assert_knows_nothing_and_runs(self, vantrel):
        self.codex.activate()
        time.sleep(0.6)  # past the settling of a change
        self.assertFalse(vantrel.panel_shown())
        self.assertIsNone(vantrel.process.poll())

    def test_a_dropped_connection_leaves_the_panel_knowing_nothing(self):
        for proxy_name, variable in (("sway-ipc", "SWAYSOCK"), ("wayland-proxy", "WAYLAND_DISPLAY")):
            with self.subTest(variable):
                proxy, vantrel = self.start_behind(proxy_name, variable, upstream=self.desktop.env[variable])
                self.codex.activate()
                wait_for(vantrel.panel_shown, "the panel over Codex through the proxy")
                proxy.cut()
                wait_for(lambda v=vantrel: not v.panel_shown(), "the panel hidden once the connection dropped")
                self.assert_knows_nothing_and_runs(vantrel)
                self.assertEqual(vantrel.stderr.read_text().count(LOST), 1)

    def test_garbage_from_the_ipc_socket_is_a_dropped_connection(self):
        _, vantrel = self.start_behind("sway-garbage", "SWAYSOCK", answer=b"HTTP/1.1 400 Bad Request\r\n\r\n")
        self.assert_knows_nothing_and_runs(vantrel)
        wait_for(lambda: LOST in vantrel.stderr.read_text(), "the line about the lost connection")

    def test_a_wayland_socket_that_garbles_or_falls_silent_starts_pinned_with_xwayland_windows_only(self):
        for proxy_name, answer in (("wayland-garbage", b"\x01\x00\x00\x00\xff\xff\xff\xff" * 4),
                                   ("wayland-silent", b"")):
            with self.subTest(proxy_name):
                _, vantrel = self.start_behind(proxy_name, "WAYLAND_DISPLAY", answer=answer)
                # Nothing tells the window in front: pinned, with the tray's check mark, and said once.
                tray = TrayItem(vantrel.process.pid)
                wait_for(lambda t=tray: t.checked(3), "the pin's check mark")
                wait_for(vantrel.panel_shown, "the pinned panel")
                self.assertEqual(vantrel.stderr.read_text().count(NOTHING_TELLS), 1)
                tray.choose(3)
                self.assert_knows_nothing_and_runs(vantrel)
                self.x11_codex.activate()
                wait_for(vantrel.panel_shown, "the panel over X11 Codex, seen through XWayland")

    def test_an_ipc_socket_that_never_answers_blocks_nothing(self):
        _, vantrel = self.start_behind("sway-silent", "SWAYSOCK", answer=b"")
        self.assert_knows_nothing_and_runs(vantrel)
        wait_for(lambda: a11y.answers(vantrel.process.pid), "Vantrel answering assistive technology")


if __name__ == "__main__":
    main()
