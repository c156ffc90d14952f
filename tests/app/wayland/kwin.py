"""kwin_wayland 5.27 headless, for the Wayland tests (see compositors.py)."""

import json
import os
import pathlib
import shutil
import subprocess
import threading

from gi.repository import Gio, GLib

from compositors import CompositorSession, dbus_call, environment_dump, read_environment
from vantrel_desktop import wait_for


class KWin(CompositorSession):
    """kwin_wayland 5.27 on its virtual backend. The packaged binary carries a file capability that a
    container may not grant, so a plain copy runs; KWin's Qt platform plugin insists on the name
    kwin_wayland. One-shot KWin scripts focus windows and report the active one on KWin's standard error."""

    desktop_name = "KDE"
    MARKER = "vantrel-kwin-focus:"

    def __init__(self, width=1280, height=800, tray=False, window_management=()):
        """window_management: desktop entries (texts, see window_management_entry) that KWin finds from its
        start, each offering its window-management protocol to the program it names. KWin rereads desktop
        entries at most every 1.5 s, so an entry written later may not be seen yet."""
        super().__init__(width, height, tray)
        for number, entry in enumerate(window_management):
            (self.data_dir / "applications" / f"window-management-{number}.desktop").write_text(entry)

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

    def for_window(self, window, statement):
        """Runs the statement on the window's client (`client` in it)."""
        self.unload_script(self.run_script(
            "const clients = workspace.clientList();\n"
            "for (let i = 0; i < clients.length; ++i) {\n"
            f"    const client = clients[i];\n    if (client.pid === {window.pid}) {{ {statement} }}\n"
            "}\n"))

    def focus(self, window):
        self.for_window(window, "workspace.activeClient = client;")

    def place(self, window, x, y, width, height):
        self.for_window(window, f"client.frameGeometry = {{x: {x}, y: {y}, width: {width}, height: {height}}};")

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


def window_management_entry(template, executable):
    """Vantrel's desktop entry that asks KWin for its window-management protocol (template: the build
    tree's), naming another program by its absolute path."""
    lines = pathlib.Path(template).read_text().splitlines()
    return "\n".join(f"Exec={executable}" if line.startswith("Exec=") else line for line in lines) + "\n"


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
