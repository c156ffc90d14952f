"""What the GNOME Shell test scripts share: Vantrel's extension as built, the lines Vantrel prints about it,
and a test case on one headless gnome-shell per script (see gnome_shell.py)."""

import os
import pathlib

from desktop_case import DesktopTestCase
from gnome_shell import GnomeShell

EXTENSION_UUID = "vantrel-focus-gnome43@vantrel.github.io"
EXTENSION = pathlib.Path(os.environ["VANTREL_SHARE"]) / "gnome-shell" / "extensions" / EXTENSION_UUID
FOCUS_NAME = "io.github.vantrel.Focus"
PINNED_ENTRY = 3  # "Zobrazovat i nad jinými aplikacemi" in the tray menu

ADVICE = ("vantrel: GNOME Shell tells which window is in front only through Vantrel's extension, so the panel is "
          "pinned. Enable it with `gnome-extensions enable vantrel-focus-gnome43@vantrel.github.io`; on Wayland, "
          "log out and back in if it was installed during this session.")


class GnomeCase(DesktopTestCase):
    desktop_type = GnomeShell

    def start(self):
        vantrel = self.start_vantrel()
        self.addCleanup(vantrel.stop)
        return vantrel

    @staticmethod
    def lines_said(vantrel):
        """Vantrel's own lines on standard error, without what Qt or its plugins may add."""
        return [line for line in vantrel.stderr.read_text().splitlines() if line.startswith("vantrel:")]

    def said(self, vantrel, line):
        return self.lines_said(vantrel).count(line)
