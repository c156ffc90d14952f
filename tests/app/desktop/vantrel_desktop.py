"""A private X desktop for end-to-end tests of the real program.

Xvfb on a free display, openbox, a trayer tray, optionally xcompmgr, and Vantrel started from a copy of
the installed layout (bin/vantrel, lib/vantrel/, share/vantrel/vantrel.py) whose limits script is the
test's own.
Everything is read the way a user's tools see it: xprop, xwininfo, xdotool and AT-SPI.
Run it inside a D-Bus session of its own (desktop_case.main() starts one), for a private AT-SPI registry.
"""

import base64
import ctypes
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import time

PR_SET_CHILD_SUBREAPER = 36
PR_SET_PDEATHSIG = 1
TIMEOUT = 20.0  # a ceiling for a stuck desktop, not a speed requirement


def wait_for(condition, what, timeout=TIMEOUT, interval=0.05):
    deadline = time.monotonic() + timeout
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise AssertionError(f"timed out waiting for {what}")
        time.sleep(interval)


def install_into_prefix(executable, script, prefix_name):
    """A private prefix laid out as an installed one: bin/vantrel, the panel module beside it in
    lib/vantrel/, and the given script as share/vantrel/vantrel.py."""
    executable = pathlib.Path(executable)
    module = executable.parent.parent / "lib" / "vantrel" / "vantrel_panel.so"
    prefix = pathlib.Path(tempfile.mkdtemp(prefix=prefix_name))
    for source, target in ((executable, "bin/vantrel"), (module, "lib/vantrel/vantrel_panel.so"),
                           (script, "share/vantrel/vantrel.py")):
        (prefix / target).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(source, prefix / target)
    return prefix


def die_with_parent():
    """For preexec_fn: the desktop goes down with a test that is killed (a timeout) instead of lingering."""
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGTERM, 0, 0, 0)


def become_subreaper():
    """Orphans of the program (a limits script it left behind) become our children, so a test can see
    whether they were terminated and that none stays a zombie."""
    libc = ctypes.CDLL(None, use_errno=True)
    libc.prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


class _Cookie(ctypes.Structure):
    _fields_ = [("sequence", ctypes.c_uint)]


class _Reply(ctypes.Structure):  # the head shared by xcb_intern_atom_reply_t and the selection owner's
    _fields_ = [("response_type", ctypes.c_uint8), ("pad", ctypes.c_uint8), ("sequence", ctypes.c_uint16),
                ("length", ctypes.c_uint32), ("value", ctypes.c_uint32)]


def selection_owner(display, selection):
    """The window owning an X selection (0: none), through libxcb: no command-line tool reads it."""
    xcb = ctypes.CDLL("libxcb.so.1")
    xcb.xcb_connect.restype = ctypes.c_void_p
    xcb.xcb_connect.argtypes = [ctypes.c_char_p, ctypes.c_void_p]
    xcb.xcb_intern_atom.restype = _Cookie
    xcb.xcb_intern_atom.argtypes = [ctypes.c_void_p, ctypes.c_uint8, ctypes.c_uint16, ctypes.c_char_p]
    xcb.xcb_intern_atom_reply.restype = ctypes.POINTER(_Reply)
    xcb.xcb_intern_atom_reply.argtypes = [ctypes.c_void_p, _Cookie, ctypes.c_void_p]
    xcb.xcb_get_selection_owner.restype = _Cookie
    xcb.xcb_get_selection_owner.argtypes = [ctypes.c_void_p, ctypes.c_uint32]
    xcb.xcb_get_selection_owner_reply.restype = ctypes.POINTER(_Reply)
    xcb.xcb_get_selection_owner_reply.argtypes = [ctypes.c_void_p, _Cookie, ctypes.c_void_p]
    xcb.xcb_disconnect.argtypes = [ctypes.c_void_p]
    libc = ctypes.CDLL(None)
    libc.free.argtypes = [ctypes.c_void_p]
    connection = xcb.xcb_connect(display.encode(), None)
    try:
        name = selection.encode()
        atom_reply = xcb.xcb_intern_atom_reply(connection, xcb.xcb_intern_atom(connection, 0, len(name), name), None)
        if not atom_reply:
            return 0
        atom = atom_reply.contents.value
        libc.free(atom_reply)
        owner_reply = xcb.xcb_get_selection_owner_reply(connection, xcb.xcb_get_selection_owner(connection, atom),
                                                        None)
        if not owner_reply:
            return 0
        owner = owner_reply.contents.value
        libc.free(owner_reply)
        return owner
    finally:
        xcb.xcb_disconnect(connection)


class Session:
    """Processes started for one test script, with the environment its clients get; stopped in reverse
    order of starting, the display server last."""

    def __init__(self, prefix):
        self.processes = {}
        self.runtime = tempfile.TemporaryDirectory(prefix=prefix)
        self.env = None

    def spawn(self, name, command, **options):
        options.setdefault("stdout", subprocess.DEVNULL)
        options.setdefault("stderr", subprocess.DEVNULL)
        options.setdefault("env", self.env)
        process = subprocess.Popen(command, preexec_fn=options.pop("preexec_fn", die_with_parent), **options)
        self.processes[name] = process
        return process

    def run(self, *command, check=True):
        return subprocess.run(command, env=self.env, capture_output=True, text=True, check=check,
                              timeout=TIMEOUT).stdout

    def start_accessibility_bus(self):
        # Qt joins the accessibility bus only if it is running when the program starts.
        self.run("dbus-send", "--session", "--dest=org.a11y.Bus", "--print-reply", "/org/a11y/bus",
                 "org.a11y.Bus.GetAddress")

    def stop_process(self, name):
        process = self.processes.pop(name, None)
        if process is not None and process.poll() is None:
            process.terminate()
            try:
                process.wait(5)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()

    def stop(self):
        for name in reversed(list(self.processes)):
            self.stop_process(name)
        self.runtime.cleanup()


class XReading:
    """The X display as a user's tools read it (xprop, xwininfo, xdotool): an Xvfb desktop's, or a Wayland
    session's XWayland. Needs `run` and `env` from a Session."""

    def xprop_root(self, name):
        return self.run("xprop", "-root", name, check=False)

    def xprop(self, window, name):
        return self.run("xprop", "-id", str(window), name, check=False)

    def cardinals(self, window, name):
        text = self.xprop(window, name)
        return [int(value, 0) for value in re.findall(r"(?:0x[0-9a-f]+|\d+)", text.split("=", 1)[1])] \
            if "=" in text else []

    def work_area(self):
        text = self.xprop_root("_NET_WORKAREA")
        if "=" not in text:
            return None
        numbers = [int(v) for v in text.split("=", 1)[1].replace(" ", "").split(",")[:4]]
        return tuple(numbers)

    def active_window(self):
        text = self.xprop_root("_NET_ACTIVE_WINDOW")
        match = re.search(r"window id # (0x[0-9a-f]+)", text)
        return int(match.group(1), 16) if match else 0

    def input_focus(self):
        return int(self.run("xdotool", "getwindowfocus", "-f").strip())

    def compositor_running(self):
        return selection_owner(self.env["DISPLAY"], "_NET_WM_CM_S0") != 0

    def geometry(self, window):
        text = self.run("xwininfo", "-id", str(window))
        value = {key: int(re.search(rf"{key}:\s+(-?\d+)", text).group(1))
                 for key in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height")}
        return (value["Absolute upper-left X"], value["Absolute upper-left Y"], value["Width"], value["Height"])

    def is_viewable(self, window):
        return "IsViewable" in self.run("xwininfo", "-id", str(window), check=False)

    def windows_of_class(self, window_class):
        text = self.run("xdotool", "search", "--all", "--class", f"^{re.escape(window_class)}$", check=False)
        return [int(line) for line in text.split()]


class Desktop(Session, XReading):
    def __init__(self, width=1280, height=800, tray=True, compositor=False):
        super().__init__("vantrel-desktop-")
        self.width, self.height = width, height
        self.with_tray, self.with_compositor = tray, compositor

    # --- lifecycle -------------------------------------------------------------------------------
    def start(self):
        try:
            return self._start()
        except BaseException:
            self.stop()
            raise

    def _start(self):
        read_end, write_end = os.pipe()
        xvfb = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{self.width}x{self.height}x24",
             "-nolisten", "tcp", "-noreset"],
            pass_fds=(write_end,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            preexec_fn=die_with_parent)
        os.close(write_end)
        with os.fdopen(read_end) as display_file:
            number = display_file.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.processes["xvfb"] = xvfb
        runtime = os.environ.get("XDG_RUNTIME_DIR")
        if runtime is None:
            runtime = pathlib.Path(self.runtime.name) / "xdg"
            runtime.mkdir(mode=0o700)
        self.env = dict(os.environ, DISPLAY=f":{number}", XDG_RUNTIME_DIR=str(runtime),
                        QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        for name in ("WAYLAND_DISPLAY", "QT_QPA_PLATFORM"):
            self.env.pop(name, None)
        self.start_accessibility_bus()
        self.spawn("openbox", ["openbox", "--sm-disable"])
        wait_for(lambda: "window id" in self.xprop_root("_NET_SUPPORTING_WM_CHECK"), "openbox")
        if self.with_tray:
            self.start_tray()
        if self.with_compositor:
            self.spawn("xcompmgr", ["xcompmgr"])
            wait_for(lambda: self.compositor_running(), "xcompmgr")
        return self

    def start_tray(self, height=24):
        self.spawn("trayer", ["trayer", "--edge", "top", "--align", "right", "--widthtype", "request",
                              "--height", str(height), "--SetDockType", "true", "--SetPartialStrut", "true",
                              "--transparent", "false", "--tint", "0x303030"])
        wait_for(lambda: (self.work_area() or (0, 0))[1] == height, "the tray's strut in the work area")

    def screenshot(self, path):
        self.run("import", "-window", "root", str(path))

    # --- other applications ----------------------------------------------------------------------
    def open_companion(self, helper, window_class, process=None, instance=None, geometry=None, shell=None):
        command = companion_command(helper, window_class, process, instance, geometry, shell)
        process_handle = subprocess.Popen(command, env=self.env, stdout=subprocess.PIPE, text=True,
                                          preexec_fn=die_with_parent)
        window = int(process_handle.stdout.readline())
        wait_for(lambda: self.active_window() == window, f"{window_class} in front")
        return Companion(self, process_handle, window)


def companion_command(helper, window_class, process=None, instance=None, geometry=None, shell=None):
    """companion_window's command line for an X11 window of that class (instance: the class in lower
    case unless given); with `shell` (a FIFO), a window whose shell on a terminal of its own runs each
    line written there, as a terminal's tab does."""
    command = [helper, "--class", window_class, "--instance", instance or window_class.lower(),
               "--title", window_class]
    if process:
        command += ["--process", process]
    if geometry:
        command += ["--geometry", ",".join(str(v) for v in geometry)]
    if shell:
        command += ["--shell", str(shell)]
    return command


class Companion:
    def __init__(self, desktop, process, window):
        self.desktop, self.process, self.window = desktop, process, window

    def activate(self):
        self.desktop.run("xdotool", "windowactivate", "--sync", str(self.window))
        wait_for(lambda: self.desktop.active_window() == self.window, "the window in front")

    def close(self):
        self.process.terminate()
        self.process.wait(5)
        self.process.stdout.close()


class Vantrel:
    """The program, installed into a private prefix with a limits script that does what the test says."""

    def __init__(self, desktop, executable, script, prefix=None):
        """prefix: a prefix that install_into_prefix() made, to start the program from instead of a private
        one (where the program's path matters, as to KWin); the limits script's orders stay per program."""
        self.desktop = desktop
        self.own_prefix = prefix is None
        self.prefix = install_into_prefix(executable, script, "vantrel-prefix-") if prefix is None else prefix
        self.work = pathlib.Path(tempfile.mkdtemp(prefix="vantrel-run-"))
        self.control = self.work / "control"
        self.control.mkdir()
        self.process = None
        self.stderr = self.work / "stderr.txt"
        self.behave(document={})

    def behave(self, document=None, exit_status=0, hang=False, raw=None):
        """What the limits script does on its next run: print the document as JSON, or the raw text or
        bytes, then exit with the status; or never end."""
        output = raw if raw is not None else json.dumps(document)
        if isinstance(output, str):
            output = output.encode()
        behaviour = {"exit": exit_status, "hang": hang, "stdout": base64.b64encode(output).decode()}
        (self.control / "behaviour.json").write_text(json.dumps(behaviour))

    def script_runs(self):
        runs = self.control / "runs.txt"
        return [int(line) for line in runs.read_text().split()] if runs.exists() else []

    def start(self, **environment):
        """Keyword arguments change the program's environment: a string sets a variable, None removes it."""
        env = dict(self.desktop.env, VANTREL_TEST_LIMITS=str(self.control))
        for name, value in environment.items():
            if value is None:
                env.pop(name, None)
            else:
                env[name] = value
        with open(self.stderr, "w") as errors:
            self.process = subprocess.Popen([str(self.prefix / "bin" / "vantrel")], env=env,
                                            stdout=subprocess.DEVNULL, stderr=errors, preexec_fn=die_with_parent)
        # The first limits run starts once the tray item and the panel are built.
        wait_for(self.script_runs, "Vantrel's start")
        return self

    def stop(self):
        if self.process is not None and self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            try:
                self.process.wait(5)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        shutil.rmtree(self.work, ignore_errors=True)
        if self.own_prefix:
            shutil.rmtree(self.prefix, ignore_errors=True)

    def panel_window(self):
        text = self.desktop.run("xdotool", "search", "--all", "--pid", str(self.process.pid), "--name",
                                "^Vantrel Solvane$", check=False)
        windows = [int(line) for line in text.split()]
        return windows[0] if windows else None

    def tray_windows(self):
        """Vantrel's windows that the tray embedded."""
        trayer = self.desktop.windows_of_class("trayer")
        return [w for w in self.desktop.windows_of_class("Vantrel") if w != self.panel_window()
                and self._embedded(w)] if trayer else []

    def _embedded(self, window):
        return "_XEMBED_INFO" in self.desktop.xprop(window, "_XEMBED_INFO")

    def panel_shown(self):
        window = self.panel_window()
        return window is not None and self.desktop.is_viewable(window)
