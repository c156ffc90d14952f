"""The base of the end-to-end test scripts: one private desktop per script, shared by its scenarios."""

import os
import signal
import subprocess
import sys
import tempfile
import unittest

from vantrel_desktop import Desktop, Vantrel, become_subreaper, wait_for

EXECUTABLE = os.environ["VANTREL_EXECUTABLE"]
COMPANION = os.environ["VANTREL_COMPANION"]
LIMITS_SCRIPT = os.environ["VANTREL_LIMITS_SCRIPT"]

SHARED_TIP = "Sdílený limit účtu Codex, ne tokeny této konverzace."
# The menu of the tray item and of the panel, as AT-SPI and tray hosts read it: (kind, label) in order.
MENU_ENTRIES = [
    ("menu item", "Zobrazit / skrýt údaje"),
    ("menu item", "Obnovit limity"),
    ("menu item", "Zobrazovat i nad jinými aplikacemi"),
    ("separator", ""),
    ("menu item", "Ukončit Vantrel"),
]
# What the program says on standard error as tray hosts come and go.
NO_TRAY_HOST = ("vantrel: no system tray or StatusNotifierItem host runs, so there is no tray item; a right click "
                "on the panel opens the same menu")
TRAY_HOST_ARRIVED = "vantrel: a tray host runs now and shows the tray item"


def full_document(observed_at):
    return {
        "observedAt": observed_at,
        "buckets": [
            {"id": "other", "windows": [{"slot": "primary", "windowDurationMins": 60, "remainingPercent": 3}]},
            {"id": "codex", "creditBalance": "12,50 $", "spendControlReached": False,
             "windows": [
                 {"slot": "primary", "windowDurationMins": 300, "remainingPercent": 64,
                  "resetsAt": 1700003600},
                 {"slot": "secondary", "windowDurationMins": 10080, "remainingPercent": 12},
             ]},
        ],
    }


class DesktopTestCase(unittest.TestCase):
    """The session is an X desktop unless a script names another kind (a Wayland compositor's)."""

    desktop_type = Desktop
    desktop_options = {}

    @classmethod
    def setUpClass(cls):
        become_subreaper()
        cls.desktop = cls.desktop_type(**cls.desktop_options).start()
        cls.addClassCleanup(cls.desktop.stop)
        # Fixed time zone and locale, so reset times and the status line read the same on every machine.
        cls.desktop.env.update(TZ="UTC", LANG="C.UTF-8", LC_ALL="C.UTF-8")

    @classmethod
    def start_vantrel(cls, document=None, environment=None, prefix=None, **behaviour):
        vantrel = Vantrel(cls.desktop, EXECUTABLE, LIMITS_SCRIPT, prefix)
        vantrel.behave(document=document if document is not None else {}, **behaviour)
        vantrel.start(**(environment or {}))
        return vantrel

    @classmethod
    def open(cls, window_class, **options):
        return cls.desktop.open_companion(COMPANION, window_class, **options)

    @classmethod
    def start_beside_codex_and_xterm(cls):
        """Vantrel, a Codex window on the left and an xterm, which is no companion, on the right; all three
        for the whole script."""
        cls.vantrel = cls.start_vantrel()
        cls.addClassCleanup(cls.vantrel.stop)
        cls.codex = cls.open("Codex", geometry=(40, 80, 400, 300))
        cls.addClassCleanup(cls.codex.close)
        cls.xterm = cls.open("XTerm", process="xterm", geometry=(480, 80, 400, 300))
        cls.addClassCleanup(cls.xterm.close)


def reap(pid, timeout=20.0):
    """Waits for an orphan handed to us as subreaper; returns its wait status."""
    def exited():
        try:
            finished, status = os.waitpid(pid, os.WNOHANG)
        except ChildProcessError:
            return ("gone", None)
        return ("reaped", status) if finished == pid else None

    return wait_for(exited, f"process {pid} to end", timeout=timeout)


def terminated_by_sigterm(status):
    return os.WIFSIGNALED(status) and os.WTERMSIG(status) == signal.SIGTERM


def main():
    """Runs the script's tests in a D-Bus session of their own. The accessibility bus that the session
    starts puts its socket in XDG_RUNTIME_DIR, so that directory is private too: test scripts running side
    by side would otherwise share, and break, one socket."""
    if os.environ.get("VANTREL_TEST_SESSION") is None:
        with tempfile.TemporaryDirectory(prefix="vantrel-session-") as runtime:
            os.chmod(runtime, 0o700)
            env = dict(os.environ, XDG_RUNTIME_DIR=runtime, VANTREL_TEST_SESSION="1")
            command = ["dbus-run-session", "--", sys.executable, "-W", "ignore::DeprecationWarning", *sys.argv]
            sys.exit(subprocess.run(command, env=env, check=False).returncode)
    unittest.main(argv=sys.argv[:1], verbosity=2)
