"""The Wayland test sessions themselves, so that a failing panel test is never a failing harness: on sway,
KWin and GNOME Shell a native window carries the app_id it was given, an X11 window its class, either can
be brought to the front, and a screenshot shows the whole screen."""

import pathlib
import subprocess

from desktop_case import COMPANION, DesktopTestCase, main
from gnome_shell import GnomeShell
from kwin import KWin
from sway import Sway


class SessionChecks:
    """The same checks on each compositor; the identity of an X11 window is the class as that compositor
    reports it (KWin lower-cases it)."""

    x11_identity = "Codex"

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.native = cls.desktop.open_native(COMPANION, "codex", title="Codex native")
        cls.addClassCleanup(cls.native.close)
        cls.x11 = cls.desktop.open_companion(COMPANION, "Codex", geometry=(40, 80, 400, 300))
        cls.addClassCleanup(cls.x11.close)

    def identity_in_front(self):
        focused = self.desktop.focused()
        return focused["app_id"], focused["pid"]

    def test_windows_are_known_by_their_identity_and_process(self):
        self.native.activate()
        self.assertEqual(self.identity_in_front(), ("codex", self.native.pid))
        self.x11.activate()
        self.assertEqual(self.identity_in_front(), (self.x11_identity, self.x11.pid))

    def test_a_new_window_comes_to_the_front(self):
        window = self.desktop.open_native(COMPANION, "chatgpt")
        try:
            self.assertEqual(self.desktop.focused()["app_id"], "chatgpt")
        finally:
            window.close()

    def test_a_screenshot_shows_the_whole_screen(self):
        path = pathlib.Path(self.desktop.runtime.name) / "screen.png"
        self.desktop.screenshot(path)
        size = subprocess.run(["identify", "-format", "%w %h", str(path)], capture_output=True, text=True,
                              check=True, timeout=20).stdout
        self.assertEqual(size, "1280 800")


class OnSway(SessionChecks, DesktopTestCase):
    desktop_type = Sway

    def test_sway_tells_the_shell_of_each_window(self):
        self.assertEqual(self.desktop.view_of(self.native.pid)["shell"], "xdg_shell")
        self.assertEqual(self.desktop.view_of(self.x11.pid)["shell"], "xwayland")


class OnKWin(SessionChecks, DesktopTestCase):
    desktop_type = KWin
    x11_identity = "codex"


class OnGnomeShell(SessionChecks, DesktopTestCase):
    desktop_type = GnomeShell


if __name__ == "__main__":
    main()
