"""gnome-shell 43 headless, for the Wayland tests (see compositors.py)."""

import glob
import json
import os
import pathlib
import re
import shutil
import subprocess

from gi.repository import GLib

from compositors import CompositorSession, dbus_call, name_has_owner
from vantrel_desktop import wait_for

HELPER_UUID = "vantrel-test-helper@vantrel.github.io"
HELPER = pathlib.Path(__file__).resolve().parent / "gnome" / HELPER_UUID
# Debian's build of the AppIndicator extension (package gnome-shell-extension-appindicator): the
# StatusNotifierItem host a GNOME user adds for tray items.
APPINDICATOR_UUID = "ubuntu-appindicators@ubuntu.com"


class GnomeShell(CompositorSession):
    """gnome-shell 43 headless on a virtual monitor. It wants a system bus (a private one will do) and
    dconf activated with its configuration folders. GNOME offers a test no way to focus a window or take a
    screenshot from outside, so a test-only extension does both, reports the focus and leaves the
    overview that the shell starts in. Extensions named in `extensions` (folders holding metadata.json)
    are installed for the session's user and enabled before start; those in `installed` only installed,
    for a test to enable later. With `tray`, the AppIndicator extension is enabled too."""

    desktop_name = "GNOME"

    def __init__(self, width=1280, height=800, extensions=(), installed=(), tray=False):
        super().__init__(width, height, tray)
        self.extensions = [pathlib.Path(e) for e in extensions]
        self.installed = [pathlib.Path(e) for e in installed]

    def _start(self):
        config, data = self.root / "config", self.root / "data-home"
        extensions_folder = data / "gnome-shell" / "extensions"
        extensions_folder.mkdir(parents=True)
        uuids = [APPINDICATOR_UUID] if self.with_tray else []
        for folder in [HELPER, *self.extensions, *self.installed]:
            uuid = json.loads((folder / "metadata.json").read_text())["uuid"]
            shutil.copytree(folder, extensions_folder / uuid)
            if folder not in self.installed:
                uuids.append(uuid)
        system_bus = self.root / "system_bus"
        self.spawn("system-bus", ["dbus-daemon", "--session", f"--address=unix:path={system_bus}", "--nofork"])
        wait_for(system_bus.exists, "the private system bus")
        env = dict(os.environ, XDG_RUNTIME_DIR=str(self.xdg_runtime), XDG_CONFIG_HOME=str(config),
                   XDG_DATA_HOME=str(data), DBUS_SYSTEM_BUS_ADDRESS=f"unix:path={system_bus}",
                   XDG_DATA_DIRS=os.pathsep.join([str(self.data_dir), "/usr/local/share", "/usr/share"]))
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"):
            env.pop(name, None)
        # dconf-service starts by D-Bus activation, with the bus's environment, not ours.
        subprocess.run(["dbus-update-activation-environment", "XDG_CONFIG_HOME", "XDG_DATA_HOME"], env=env,
                       check=True, timeout=20)
        subprocess.run(["gsettings", "set", "org.gnome.shell", "enabled-extensions", json.dumps(uuids)],
                       env=env, check=True, timeout=20)
        self.socket = f"wayland-{self.root.name}"
        # A shell that ended within a minute of its start leaves this mark, and the next one would start with
        # every extension disabled, as after a crash.
        (self.xdg_runtime / "gnome-shell-disable-extensions").unlink(missing_ok=True)
        self.log = self.root / "gnome-shell.log"
        with open(self.log, "w") as log:
            shell = self.spawn("gnome-shell", ["gnome-shell", "--headless", "--wayland", "--virtual-monitor",
                                               f"{self.width}x{self.height}", "--wayland-display", self.socket],
                               env=env, stdout=log, stderr=log)
        self.env = self.client_environment(self.socket, "")
        wait_for(lambda: shell.poll() is not None or self._ready(), "GNOME Shell's start", timeout=60)
        if shell.poll() is not None:
            raise RuntimeError(f"gnome-shell exited: {self.log.read_text()[-2000:]}")
        display = re.search(r"Using public X11 display (:\d+)", self.log.read_text()).group(1)
        xauthority = glob.glob(str(self.xdg_runtime / ".mutter-Xwaylandauth.*"))
        self.env = self.client_environment(self.socket, display, xauthority[0] if xauthority else None)

    def start_tray(self):
        """The AppIndicator extension, enabled with the others, is the tray: no waybar here."""
        wait_for(lambda: name_has_owner("org.kde.StatusNotifierWatcher"), "the AppIndicator extension's tray")

    @staticmethod
    def _helper(method, arguments=None, reply_type=None):
        return dbus_call("io.github.vantrel.TestHelper", "/io/github/vantrel/TestHelper",
                         "io.github.vantrel.TestHelper", method, arguments, reply_type)

    def _ready(self):
        try:
            return self._helper("Ready", reply_type="(b)")[0]
        except GLib.Error:  # the shell or its extension not there yet
            return False

    def focus(self, window):
        self._helper("Activate", GLib.Variant("(u)", (window.pid,)), "(b)")

    def focused(self):
        return json.loads(self._helper("GetFocus", reply_type="(s)")[0])

    def screenshot(self, path):
        self._helper("Screenshot", GLib.Variant("(s)", (str(pathlib.Path(path).resolve()),)))

    @staticmethod
    def set_extension_enabled(uuid, enabled):
        dbus_call("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell.Extensions",
                  "EnableExtension" if enabled else "DisableExtension", GLib.Variant("(s)", (uuid,)), "(b)")
