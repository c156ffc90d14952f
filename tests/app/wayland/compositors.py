"""Wayland sessions for end-to-end tests: sway (sway.py), KWin (kwin.py) and GNOME Shell (gnome_shell.py)
started headless, each with XWayland, on the common ground here.

A test script starts one of them once (in setUpClass) and opens its stand-in applications there: native
Wayland windows of a chosen app_id and X11 windows of a chosen class, both from companion_window. Each
session can bring a window to the front, tell which window has the focus, and take a screenshot, each the
way that compositor offers it. Desktop entries written with add_desktop_entry() are in the XDG_DATA_DIRS
of every client.

Needs the test's own D-Bus session (desktop_case.main() starts one) and PYTHONPATH naming
tests/app/desktop.
"""

import json
import os
import pathlib
import signal
import subprocess
import time

from gi.repository import Gio, GLib

from vantrel_desktop import Session, XReading, companion_command, die_with_parent, wait_for

# Where the panel sits: its width, and its distance from the screen's right and bottom edges.
PANEL_WIDTH = 292
MARGIN = 16
# No channel of the panel's dark backdrop reaches this; the test windows' blue does.
PANEL_BACKDROP_CEILING = 60
LOST = "vantrel: the compositor no longer tells which window is in front; the panel shows only when pinned"


class Window:
    """A companion_window process: one native Wayland toplevel or one X11 window."""

    def __init__(self, session, process, x11_window=None):
        self.session, self.process, self.x11_window = session, process, x11_window

    @property
    def pid(self):
        return self.process.pid

    def has_focus(self):
        focused = self.session.focused()
        return focused is not None and focused.get("pid") == self.pid

    def activate(self):
        self.session.focus(self)
        wait_for(self.has_focus, f"window of process {self.pid} in front")

    def close(self):
        for child in children(self.pid):
            os.kill(child, signal.SIGTERM)
        self.process.terminate()
        self.process.wait(5)
        self.process.stdout.close()


def children(pid):
    try:
        return [int(p) for p in pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text().split()]
    except FileNotFoundError:
        return []


class CompositorSession(Session, XReading):
    """What the three compositors share: the clients' environment, the test desktop entries and the
    stand-in windows. Subclasses start the compositor and say how to focus, read the focus and shoot."""

    desktop_name = ""

    def __init__(self, width=1280, height=800, tray=False):
        """tray: waybar's bar with its tray module, a StatusNotifierItem host such as a user's session has
        (waybar on sway, Plasma's own on KDE). It runs as the test's user, on the test's D-Bus session,
        where the programs register their items."""
        super().__init__(f"vantrel-{type(self).__name__.lower()}-")
        self.width, self.height = width, height
        self.with_tray = tray
        self.root = pathlib.Path(self.runtime.name)
        self.data_dir = self.root / "data"
        (self.data_dir / "applications").mkdir(parents=True)
        self.xdg_runtime = pathlib.Path(os.environ.get("XDG_RUNTIME_DIR") or self.root / "xdg")
        self.xdg_runtime.mkdir(mode=0o700, exist_ok=True)

    def start(self):
        try:
            self._start()
            if self.with_tray:
                self.start_tray()
            self.start_accessibility_bus()
        except BaseException:
            self.stop()
            raise
        return self

    def start_tray(self):
        config = self.root / "waybar.json"
        config.write_text(json.dumps({"layer": "top", "position": "top", "height": 24, "modules-right": ["tray"]}))
        self.spawn("waybar", ["waybar", "-c", str(config)])
        wait_for(lambda: name_has_owner("org.kde.StatusNotifierWatcher"), "waybar's tray")

    def client_environment(self, wayland_display, display, xauthority=None):
        env = dict(os.environ, XDG_RUNTIME_DIR=str(self.xdg_runtime), WAYLAND_DISPLAY=wayland_display,
                   DISPLAY=display, XDG_SESSION_TYPE="wayland", XDG_CURRENT_DESKTOP=self.desktop_name,
                   XDG_DATA_DIRS=os.pathsep.join([str(self.data_dir), "/usr/local/share", "/usr/share"]),
                   QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        env.pop("QT_QPA_PLATFORM", None)
        env.pop("XAUTHORITY", None)
        if xauthority:
            env["XAUTHORITY"] = xauthority
        return env

    def add_desktop_entry(self, file_id, name, executable="/bin/true", **keys):
        lines = ["[Desktop Entry]", "Type=Application", f"Name={name}", f"Exec={executable}"]
        lines += [f"{key.replace('_', '-')}={value}" for key, value in keys.items()]
        (self.data_dir / "applications" / f"{file_id}.desktop").write_text("\n".join(lines) + "\n")

    # --- stand-in applications --------------------------------------------------------------------
    def open_native(self, helper, app_id, title=None, process=None, size=(420, 300), child=None, shell=None):
        """A native window; `child`, a program the window's process starts first (as a terminal runs its
        shell's programs), runs until the window closes; with `shell` (a FIFO), a terminal-like window as
        vantrel_desktop.companion_command describes."""
        command = [helper, "--app-id", app_id, "--title", title or app_id,
                   "--geometry", f"0,0,{size[0]},{size[1]}"]
        if process:
            command += ["--process", process]
        if shell:
            command += ["--shell", str(shell)]
        if child:
            command = ["sh", "-c", '"$0" 600 & exec "$@"', str(child), *command]
        return self._open(command, lambda line: None)

    def open_companion(self, helper, window_class, process=None, instance=None, geometry=None):
        """An X11 window through XWayland, as vantrel_desktop.Desktop.open_companion opens one."""
        return self._open(companion_command(helper, window_class, process, instance, geometry), int)

    def _open(self, command, window_of):
        process = subprocess.Popen(command, env=self.env, stdout=subprocess.PIPE, text=True,
                                   preexec_fn=die_with_parent)
        line = process.stdout.readline()
        if not line:
            process.wait(5)
            process.stdout.close()
            raise AssertionError(f"{command[1:3]} did not open a window")
        window = Window(self, process, window_of(line))
        wait_for(window.has_focus, f"the new window {command[1:3]} in front")
        return window

    # --- per compositor ---------------------------------------------------------------------------
    def focus(self, window):
        raise NotImplementedError

    def focused(self):
        """The focused window as the compositor tells it: {"app_id": app_id or X11 class, "pid": …},
        or None."""
        raise NotImplementedError

    def screenshot(self, path):
        raise NotImplementedError


def dbus_call(service, path, interface, method, arguments=None, reply_type=None):
    """A method call on the test's session bus (the compositor's too); the reply unpacked."""
    bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
    reply = bus.call_sync(service, path, interface, method, arguments,
                          GLib.VariantType(reply_type) if reply_type else None, Gio.DBusCallFlags.NONE, 20000, None)
    return reply.unpack() if reply is not None else None


def name_has_owner(name):
    return dbus_call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
                     GLib.Variant("(s)", (name,)), "(b)")[0]


def read_environment(path):
    """The NAME=value lines that a helper started inside the session wrote."""
    return dict(line.split("=", 1) for line in pathlib.Path(path).read_text().splitlines() if "=" in line)


def environment_dump(folder, first=""):
    """A script that runs the shell command `first`, then writes its environment into
    folder/session-env, atomically."""
    script = pathlib.Path(folder) / "dump-env"
    target = pathlib.Path(folder) / "session-env"
    script.write_text(f"#!/bin/sh\n{first}\nenv > {target}.part && mv {target}.part {target}\n")
    script.chmod(0o755)
    return script, target


def pixel(png, x, y):
    """The (red, green, blue) of one pixel of a screenshot."""
    text = subprocess.run(["convert", str(png), "-crop", f"1x1+{x}+{y}", "-depth", "8", "txt:-"],
                          capture_output=True, text=True, check=True, timeout=20).stdout
    values = text.splitlines()[-1].split("(", 1)[1].split(")", 1)[0].split(",")
    return tuple(int(float(v)) for v in values[:3])


def panel_backdrop_pixel(desktop, png, x, y, timeout=10):
    """The (red, green, blue) on the screen at x, y, once it is the panel's dark backdrop or the time is up:
    a newly mapped panel's first frame comes when the compositor gets to it, later on a busy machine."""
    deadline = time.monotonic() + timeout
    while True:
        desktop.screenshot(png)
        colour = pixel(png, x, y)
        if max(colour) < PANEL_BACKDROP_CEILING or time.monotonic() > deadline:
            return colour
        time.sleep(0.2)
