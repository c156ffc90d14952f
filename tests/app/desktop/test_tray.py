"""No tray host is no crash: the program runs, the panel works, and the item appears once a host does."""

import time

from desktop_case import main, DesktopTestCase
from vantrel_desktop import wait_for


class WithoutTrayHost(DesktopTestCase):
    desktop_options = {"tray": False}

    def test_the_item_appears_when_a_tray_host_does(self):
        vantrel = self.start_vantrel()
        self.addCleanup(vantrel.stop)
        codex = self.open("Codex")
        self.addCleanup(codex.close)
        wait_for(vantrel.panel_shown, "the panel over Codex")
        time.sleep(1)
        self.assertIsNone(vantrel.process.poll())
        self.assertEqual(vantrel.tray_windows(), [])
        self.desktop.start_tray()
        wait_for(vantrel.tray_windows, "the tray item embedded")
        self.assertIsNone(vantrel.process.poll())


if __name__ == "__main__":
    main()
