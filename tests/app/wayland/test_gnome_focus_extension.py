"""The GNOME Shell extension that tells Vantrel the focused window, running in gnome-shell 43 headless:
what it reports for native and X11 windows, its signal on every change (also when the focused window
closes), and its bus name, which goes and comes back with the extension. Both styles of the extension
(43–44 and the ES modules of 45+) are at least parsed: Debian 12 has no GNOME 45 to run the second."""

import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from gi.repository import Gio, GLib

from compositors import dbus_call, name_has_owner
from desktop_case import COMPANION, DesktopTestCase, main
from gnome_shell import GnomeShell
from vantrel_desktop import wait_for

EXTENSIONS = pathlib.Path(os.environ["VANTREL_SHARE"]) / "gnome-shell" / "extensions"
LEGACY_UUID = "vantrel-focus-gnome43@vantrel.github.io"
MODULE_UUID = "vantrel-focus@vantrel.github.io"
BUS_NAME, PATH, INTERFACE = "io.github.vantrel.Focus", "/io/github/vantrel/Focus", "io.github.vantrel.Focus1"


def focused_window():
    return dbus_call(BUS_NAME, PATH, INTERFACE, "GetFocusedWindow", reply_type="(a{sv})")[0]


def name_owned():
    return name_has_owner(BUS_NAME)


class Announcements:
    """Every FocusedWindowChanged the extension emits, in order."""

    def __init__(self):
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        self.received = []
        self.subscription = self.bus.signal_subscribe(None, INTERFACE, "FocusedWindowChanged", PATH, None,
                                                      Gio.DBusSignalFlags.NONE, self._on_signal)

    def _on_signal(self, _connection, _sender, _path, _interface, _signal, parameters):
        self.received.append(parameters.unpack()[0])

    def wait_for(self, condition, what):
        def met():
            while GLib.MainContext.default().iteration(False):
                pass
            return condition(self.received)

        return wait_for(met, what)

    def close(self):
        self.bus.signal_unsubscribe(self.subscription)


class FocusExtension(DesktopTestCase):
    desktop_type = GnomeShell
    desktop_options = {"extensions": [EXTENSIONS / LEGACY_UUID]}

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.native = cls.desktop.open_native(COMPANION, "codex", title="Codex native")
        cls.addClassCleanup(cls.native.close)
        cls.x11 = cls.desktop.open_companion(COMPANION, "Codex", instance="codex-x11", geometry=(600, 300, 400, 300))
        cls.addClassCleanup(cls.x11.close)

    def setUp(self):
        self.announcements = Announcements()
        self.addCleanup(self.announcements.close)

    def test_a_native_window_is_its_app_id_and_process(self):
        self.native.activate()
        # GNOME gives a Wayland window its app_id as instance name too.
        self.assertEqual(focused_window(), {"wm-class": "codex", "wm-class-instance": "codex",
                                            "pid": self.native.pid, "client-type": "wayland"})

    def test_an_x11_window_is_its_class_instance_and_process(self):
        self.x11.activate()
        self.assertEqual(focused_window(), {"wm-class": "Codex", "wm-class-instance": "codex-x11",
                                            "pid": self.x11.pid, "client-type": "x11"})

    def test_every_change_is_announced_with_the_new_window(self):
        self.native.activate()
        self.x11.activate()
        self.native.activate()
        self.announcements.wait_for(lambda r: [w.get("pid") for w in r][-3:] == [self.native.pid, self.x11.pid,
                                                                                 self.native.pid],
                                    "three announcements")
        self.assertEqual(self.announcements.received[-1], focused_window())

    def test_closing_the_focused_window_announces_the_next_one(self):
        chatgpt = self.desktop.open_native(COMPANION, "chatgpt")
        self.announcements.wait_for(lambda r: r and r[-1].get("wm-class") == "chatgpt", "ChatGPT announced")
        chatgpt.close()
        self.announcements.wait_for(lambda r: r[-1].get("pid") in (self.native.pid, self.x11.pid) or r[-1] == {},
                                    "the window after ChatGPT announced")
        self.assertNotEqual(focused_window().get("wm-class"), "chatgpt")

    def test_the_bus_name_goes_and_comes_with_the_extension(self):
        self.desktop.set_extension_enabled(LEGACY_UUID, False)
        try:
            wait_for(lambda: not name_owned(), "the name released")
        finally:
            self.desktop.set_extension_enabled(LEGACY_UUID, True)
        wait_for(name_owned, "the name owned again")
        self.x11.activate()
        self.assertEqual(focused_window()["pid"], self.x11.pid)


@unittest.skipIf(shutil.which("node") is None, "node parses the extension's JavaScript")
class BothStyles(unittest.TestCase):
    def test_each_style_parses_and_names_its_own_folder(self):
        for uuid, ending in ((LEGACY_UUID, ".cjs"), (MODULE_UUID, ".mjs")):
            with self.subTest(uuid), tempfile.TemporaryDirectory() as folder:
                self.assertEqual(json.loads((EXTENSIONS / uuid / "metadata.json").read_text())["uuid"], uuid)
                source = (EXTENSIONS / uuid / "extension.js").read_text()
                self.assertIn("class FocusService", source)
                # node tells a script from an ES module by the file's ending.
                copy = pathlib.Path(folder) / f"extension{ending}"
                copy.write_text(source)
                parsed = subprocess.run(["node", "--check", str(copy)], capture_output=True, text=True,
                                        check=False, timeout=20)
                self.assertEqual(parsed.returncode, 0, parsed.stderr)


if __name__ == "__main__":
    main()
