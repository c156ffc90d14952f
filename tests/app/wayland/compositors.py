"""Wayland sessions for end-to-end tests: sway, KWin and GNOME Shell started headless, each with XWayland.

A test script starts one of them once (in setUpClass) and opens its stand-in applications there: native
Wayland windows of a chosen app_id and X11 windows of a chosen class, both from companion_window. Each
session can bring a window to the front, tell which window has the focus, and take a screenshot, each the
way that compositor offers it. Desktop entries written with add_desktop_entry() are in the XDG_DATA_DIRS
of every client.

Needs the test's own D-Bus session (desktop_case.main() starts one) and PYTHONPATH naming
tests/app/desktop.
"""

import glob
import json
import os
import pathlib
import pwd
import re
import shutil
import subprocess
import threading

from gi.repository import Gio, GLib

from vantrel_desktop import Session, die_with_parent, wait_for

NOBODY = 65534


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
        self.process.terminate()
        self.process.wait(5)
        self.process.stdout.close()


class CompositorSession(Session):
    """What the three compositors share: the clients' environment, the test desktop entries and the
    stand-in windows. Subclasses start the compositor and say how to focus, read the focus and shoot."""

    desktop_name = ""

    def __init__(self, width=1280, height=800):
        super().__init__(f"vantrel-{type(self).__name__.lower()}-")
        self.width, self.height = width, height
        self.root = pathlib.Path(self.runtime.name)
        self.data_dir = self.root / "data"
        (self.data_dir / "applications").mkdir(parents=True)
        self.xdg_runtime = pathlib.Path(os.environ.get("XDG_RUNTIME_DIR") or self.root / "xdg")
        self.xdg_runtime.mkdir(mode=0o700, exist_ok=True)

    def start(self):
        try:
            self._start()
        except BaseException:
            self.stop()
            raise
        return self

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
    def open_native(self, helper, app_id, title=None, process=None, size=(420, 300)):
        command = [helper, "--app-id", app_id, "--title", title or app_id,
                   "--geometry", f"0,0,{size[0]},{size[1]}"]
        if process:
            command += ["--process", process]
        return self._open(command, lambda line: None)

    def open_companion(self, helper, window_class, process=None, instance=None, geometry=None):
        """An X11 window through XWayland, as vantrel_desktop.Desktop.open_companion opens one."""
        command = [helper, "--class", window_class, "--instance", instance or window_class.lower(),
                   "--title", window_class]
        if process:
            command += ["--process", process]
        if geometry:
            command += ["--geometry", ",".join(str(v) for v in geometry)]
        return self._open(command, int)

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


# --- sway ----------------------------------------------------------------------------------------------
class Sway(CompositorSession):
    """sway 1.7 with wlroots' headless backend. sway refuses to run as root, so as root the compositor
    runs as nobody in a runtime directory of its own; clients reach it through absolute socket paths."""

    desktop_name = "sway"

    def _start(self):
        self.sway_runtime = self.root / "sway"
        self.sway_runtime.mkdir(mode=0o700)
        as_root = os.geteuid() == 0
        if as_root:
            os.chown(self.sway_runtime, NOBODY, NOBODY)
            self.root.chmod(0o755)
        # XWayland, started by nobody, admits only nobody's clients until told otherwise.
        user = pwd.getpwuid(os.geteuid()).pw_name
        dump, session_env = environment_dump(self.sway_runtime,
                                             f"xhost +si:localuser:{user} >/dev/null" if as_root else "")
        config = self.sway_runtime / "config"
        config.write_text(f"output HEADLESS-1 resolution {self.width}x{self.height} position 0 0\n"
                          "xwayland enable\n"
                          f"exec {dump}\n")
        env = dict(os.environ, XDG_RUNTIME_DIR=str(self.sway_runtime), HOME=str(self.sway_runtime),
                   WLR_BACKENDS="headless", WLR_RENDERER="pixman", WLR_LIBINPUT_NO_DEVICES="1")
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "SWAYSOCK", "DBUS_SESSION_BUS_ADDRESS"):
            env.pop(name, None)

        def unprivileged():
            if as_root:
                os.setgroups([])
                os.setgid(NOBODY)
                os.setuid(NOBODY)
            die_with_parent()  # after the change of user, which clears it

        self.log = self.root / "sway.log"
        with open(self.log, "w") as log:
            sway = self.spawn("sway", ["sway", "-c", str(config)], env=env, stdout=log, stderr=log,
                              preexec_fn=unprivileged)
        wait_for(lambda: session_env.exists() or sway.poll() is not None, "sway's start")
        if sway.poll() is not None:
            raise RuntimeError(f"sway exited: {self.log.read_text()[-2000:]}")
        inner = read_environment(session_env)
        self.env = self.client_environment(str(self.sway_runtime / inner["WAYLAND_DISPLAY"]), inner["DISPLAY"])
        self.env["SWAYSOCK"] = inner["SWAYSOCK"]

    def swaymsg(self, *arguments, check=True):
        return self.run("swaymsg", *arguments, check=check)

    def tree(self):
        return json.loads(self.swaymsg("-r", "-t", "get_tree"))

    def focus(self, window):
        self.swaymsg(f"[pid={window.pid}] focus")

    def focused(self):
        node = next((n for n in sway_views(self.tree()) if n.get("focused")), None)
        if node is None:
            return None
        identity = node.get("app_id") or (node.get("window_properties") or {}).get("class")
        return {"app_id": identity, "pid": node.get("pid"), "shell": node.get("shell")}

    def view_of(self, pid):
        return next((n for n in sway_views(self.tree()) if n.get("pid") == pid), None)

    def screenshot(self, path):
        self.run("grim", str(path))


def sway_views(node):
    """Every window in a sway tree, tiled or floating."""
    for child in node.get("nodes", []) + node.get("floating_nodes", []):
        if child.get("type") in ("con", "floating_con") and child.get("pid"):
            yield child
        yield from sway_views(child)


# --- KWin -----------------------------------------------------------------------------------------------
class KWin(CompositorSession):
    """kwin_wayland 5.27 on its virtual backend. The packaged binary carries a file capability that a
    container may not grant, so a plain copy runs; KWin's Qt platform plugin insists on the name
    kwin_wayland. One-shot KWin scripts focus windows and report the active one on KWin's standard error."""

    desktop_name = "KDE"
    MARKER = "vantrel-kwin-focus:"

    def _start(self):
        folder = self.root / "kwin"
        (folder / "bin").mkdir(parents=True)
        binary = folder / "bin" / "kwin_wayland"
        shutil.copy(shutil.which("kwin_wayland"), binary)  # the mode bits, not the capability
        dump, session_env = environment_dump(folder)
        self.socket = f"wayland-vantrel-{os.getpid()}"
        env = dict(os.environ, XDG_RUNTIME_DIR=str(self.xdg_runtime), KWIN_SCREENSHOT_NO_PERMISSION_CHECKS="1",
                   QT_LOGGING_RULES="kwin_scripting.debug=true", XDG_DATA_DIRS=os.pathsep.join(
                       [str(self.data_dir), "/usr/local/share", "/usr/share"]))
        for name in ("DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"):
            env.pop(name, None)
        self.log = self.root / "kwin.log"
        with open(self.log, "w") as log:
            kwin = self.spawn("kwin", [str(binary), "--virtual", "--xwayland", "--width", str(self.width),
                                       "--height", str(self.height), "--no-lockscreen", "--no-global-shortcuts",
                                       "--no-kactivities", "--socket", self.socket, str(dump)],
                              env=env, stdout=log, stderr=log)
        wait_for(lambda: session_env.exists() or kwin.poll() is not None, "KWin's start")
        if kwin.poll() is not None:
            raise RuntimeError(f"kwin_wayland exited: {self.log.read_text()[-2000:]}")
        inner = read_environment(session_env)
        self.env = self.client_environment(self.socket, inner["DISPLAY"], inner.get("XAUTHORITY"))
        self.scripts = 0

    def run_script(self, source):
        """Loads, runs and unloads a one-shot KWin script."""
        self.scripts += 1
        name = f"vantrel-test-{self.scripts}"
        path = self.root / f"{name}.js"
        path.write_text(source)
        (number,) = dbus_call("org.kde.KWin", "/Scripting", "org.kde.kwin.Scripting", "loadScript",
                              GLib.Variant("(ss)", (str(path), name)), "(i)")
        dbus_call("org.kde.KWin", f"/{number}", "org.kde.kwin.Script", "run")
        return name

    def unload_script(self, name):
        dbus_call("org.kde.KWin", "/Scripting", "org.kde.kwin.Scripting", "unloadScript",
                  GLib.Variant("(s)", (name,)))

    def focus(self, window):
        self.unload_script(self.run_script(
            "const clients = workspace.clientList();\n"
            "for (let i = 0; i < clients.length; ++i) {\n"
            f"    if (clients[i].pid === {window.pid}) workspace.activeClient = clients[i];\n"
            "}\n"))

    def focused(self):
        token = f"{self.MARKER}{self.scripts + 1}"
        name = self.run_script(
            "const c = workspace.activeClient;\n"
            f"print('{token} ' + JSON.stringify(c ? {{app_id: String(c.resourceClass), pid: c.pid}} : null));\n")
        try:
            line = wait_for(lambda: next((l for l in self.log.read_text().splitlines() if token + " " in l), None),
                            "KWin's answer")
        finally:
            self.unload_script(name)
        return json.loads(line.split(token + " ", 1)[1])

    def screenshot(self, path):
        capture_screen_with_fd(
            self.env, "org.kde.KWin", "/org/kde/KWin/ScreenShot2", "org.kde.KWin.ScreenShot2",
            "CaptureActiveScreen", path)


def capture_screen_with_fd(env, service, path_name, interface, method, png):
    """KWin's ScreenShot2: the image arrives raw through a pipe, described by the reply; ImageMagick
    turns it into a PNG. The pipe is drained while the call runs: the image is larger than its buffer."""
    read_end, write_end = os.pipe()
    chunks = []
    reader = threading.Thread(target=lambda: chunks.extend(iter(lambda: os.read(read_end, 1 << 16), b"")))
    reader.start()
    try:
        fds = Gio.UnixFDList()
        fds.append(write_end)  # a duplicate: the list closes it when freed
        os.close(write_end)
        bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        reply, _ = bus.call_with_unix_fd_list_sync(
            service, path_name, interface, method,
            GLib.Variant("(a{sv}h)", ({"native-resolution": GLib.Variant("b", True)}, 0)),
            GLib.VariantType("(a{sv})"), Gio.DBusCallFlags.NONE, 20000, fds, None)
        del fds
    finally:
        reader.join(20)
        os.close(read_end)
    data = b"".join(chunks)
    info = reply.unpack()[0]
    width, height, stride = info["width"], info["height"], info["stride"]
    rows = b"".join(data[row * stride:row * stride + width * 4] for row in range(height))
    subprocess.run(["convert", "-size", f"{width}x{height}", "-depth", "8", "bgra:-", str(png)],
                   input=rows, check=True, env=env, timeout=20)


# --- GNOME Shell -----------------------------------------------------------------------------------------
HELPER_UUID = "vantrel-test-helper@vantrel.github.io"
HELPER = pathlib.Path(__file__).resolve().parent / "gnome" / HELPER_UUID


class GnomeShell(CompositorSession):
    """gnome-shell 43 headless on a virtual monitor. It wants a system bus (a private one will do) and
    dconf activated with its configuration folders. GNOME offers a test no way to focus a window or take a
    screenshot from outside, so a test-only extension does both, reports the focus and leaves the
    overview that the shell starts in. Extensions named in `extensions` (folders holding metadata.json)
    are installed for the session's user and enabled before start."""

    desktop_name = "GNOME"

    def __init__(self, width=1280, height=800, extensions=()):
        super().__init__(width, height)
        self.extensions = [pathlib.Path(e) for e in extensions]

    def _start(self):
        config, data = self.root / "config", self.root / "data-home"
        extensions_folder = data / "gnome-shell" / "extensions"
        extensions_folder.mkdir(parents=True)
        uuids = []
        for folder in [HELPER, *self.extensions]:
            uuid = json.loads((folder / "metadata.json").read_text())["uuid"]
            shutil.copytree(folder, extensions_folder / uuid)
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
        self.socket = f"wayland-vantrel-{os.getpid()}"
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
