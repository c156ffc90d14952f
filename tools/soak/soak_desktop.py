"""The soak's actors on the private desktop: the program installed into a private prefix, and the windows
of other applications that come and go in front of it."""

import os
import pathlib
import shutil
import signal
import subprocess
import tempfile

from vantrel_desktop import install_into_prefix, wait_for

FRONT_CLASSES = ["Codex", "ChatGPT", "Firefox", "Other", "XTerm"]


class Program:
    """The program installed into a private prefix, so that it runs the soak's limits script."""

    def __init__(self, desktop, executable, script):
        self.desktop = desktop
        self.prefix = install_into_prefix(executable, script, "vantrel-soak-")
        self.stderr = self.prefix / "stderr.txt"
        with open(self.stderr, "w") as errors:
            self.process = subprocess.Popen([str(self.prefix / "bin" / "vantrel")], env=desktop.env,
                                            stdout=subprocess.DEVNULL, stderr=errors)
        wait_for(self.tray_windows, "the tray item", timeout=60)

    def tray_windows(self):
        """The program's icon that the tray embedded: Qt marks every top-level window as embeddable, so the
        icon is told from the panel by its size."""
        windows = self.desktop.run("xdotool", "search", "--all", "--pid", str(self.process.pid), check=False)
        icons = []
        for window in (int(w) for w in windows.split()):
            try:
                if "_XEMBED_INFO" in self.desktop.xprop(window, "_XEMBED_INFO") and \
                        max(self.desktop.geometry(window)[2:]) <= 64:
                    icons.append(window)
            except (AttributeError, subprocess.SubprocessError):  # gone meanwhile
                continue
        return icons

    def stop(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGTERM)
            try:
                self.process.wait(10)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        shutil.rmtree(self.prefix, ignore_errors=True)


class FrontWindows:
    """Plain X windows of several applications, opened, brought to the front and closed at random."""

    def __init__(self, desktop, rng):
        self.desktop, self.rng = desktop, rng
        self.windows = []  # (process, window id)
        self.opened = 0

    def churn(self):
        if self.windows and (len(self.windows) >= 4 or self.rng.random() < 0.35):
            process, _ = self.windows.pop(self.rng.randrange(len(self.windows)))
            process.terminate()
            process.wait(10)
        else:
            self.open()
        if self.windows:
            _, window = self.rng.choice(self.windows)
            self.desktop.run("xdotool", "windowactivate", "--sync", str(window), check=False)

    def open(self):
        self.opened += 1
        window_class = self.rng.choice(FRONT_CLASSES)
        title = f"soak-{os.getpid()}-{self.opened}"
        geometry = f"+{self.rng.randrange(0, 900)}+{self.rng.randrange(30, 600)}"
        process = subprocess.Popen(["xmessage", "-name", window_class.lower(), "-title", title, "-geometry",
                                    geometry, window_class], env=self.desktop.env, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        found = self.desktop.run("xdotool", "search", "--sync", "--name", f"^{title}$", check=False).split()
        if not found:
            process.terminate()
            process.wait(10)
            return
        window = int(found[0])
        self.desktop.run("xdotool", "set_window", "--class", window_class, str(window), check=False)
        self.windows.append((process, window))

    def close_all(self):
        for process, _ in self.windows:
            process.terminate()
            process.wait(10)
        self.windows.clear()
