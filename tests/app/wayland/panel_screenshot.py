"""Takes the README's pictures of the panel on a Wayland session: over a native Codex window on headless
sway (told by sway's IPC), KWin (told by its window-management protocol) or GNOME Shell (told by Vantrel's
extension).

    PYTHONPATH=tests/app/desktop dbus-run-session -- /usr/bin/python3 tests/app/wayland/panel_screenshot.py \\
        sway|kwin|gnome build/bin/vantrel build/bin/companion_window docs/screenshots
"""

import pathlib
import shutil
import subprocess
import sys
import time

from gnome_shell import GnomeShell
from kwin import KWin, window_management_entry
from screenshots import LIMITS_SCRIPT, around_panel, start_with_full_figures
from sway import Sway
from vantrel_desktop import install_into_prefix


def on_sway(executable):
    return Sway(), None


def on_kwin(executable):
    """KWin tells the window in front to the program its desktop entry names: one installed here."""
    prefix = install_into_prefix(executable, LIMITS_SCRIPT, "vantrel-screenshot-")
    entry = pathlib.Path(executable).parents[1] / "share" / "applications" / \
        "io.github.vantrel.Vantrel.WindowManagement.desktop"
    return KWin(window_management=[window_management_entry(entry, prefix / "bin" / "vantrel")]), prefix


def on_gnome(executable):
    """GNOME Shell tells the window in front through Vantrel's extension, as the build tree has it."""
    extension = pathlib.Path(executable).parents[1] / "share" / "gnome-shell" / "extensions" / \
        "vantrel-focus-gnome43@vantrel.github.io"
    return GnomeShell(extensions=[extension]), None


def main(compositor, executable, companion, folder):
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    session, prefix = {"sway": on_sway, "kwin": on_kwin, "gnome": on_gnome}[compositor](executable)
    session.start()
    session.env.update(TZ="Europe/Prague", LANG="C.UTF-8")
    try:
        session.add_desktop_entry("codex", "Codex")
        # As large as the screen: sway tiles it anyway, KWin and GNOME Shell place it over the whole screen.
        codex = session.open_native(companion, "codex", title="Codex", size=(session.width, session.height))
        vantrel, _ = start_with_full_figures(session, executable, codex, prefix)
        time.sleep(2.5)  # a telemetry tick with real figures
        whole = pathlib.Path(session.runtime.name) / "screen.png"
        session.screenshot(whole)
        subprocess.run(["convert", str(whole), "-crop", around_panel(session.geometry(vantrel.panel_window()), 300),
                        "+repage", str(folder / f"panel-{compositor}.png")], check=True, timeout=20)
        vantrel.stop()
        codex.close()
    finally:
        session.stop()
        if prefix:
            shutil.rmtree(prefix, ignore_errors=True)


if __name__ == "__main__":
    main(*sys.argv[1:5])
