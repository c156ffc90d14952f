"""Takes the README's picture of the panel on a Wayland session: over a native Codex window on headless
sway, told by sway's IPC.

    PYTHONPATH=tests/app/desktop dbus-run-session -- /usr/bin/python3 tests/app/wayland/sway_screenshot.py \\
        build/bin/vantrel build/bin/companion_window docs/screenshots
"""

import pathlib
import subprocess
import sys
import time

import accessibility as a11y
from screenshots import LIMITS_SCRIPT, MARGIN, document
from sway import Sway
from vantrel_desktop import Vantrel, wait_for


def main(executable, companion, folder):
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    sway = Sway().start()
    sway.env.update(TZ="Europe/Prague", LANG="C.UTF-8")
    try:
        sway.add_desktop_entry("codex", "Codex")
        codex = sway.open_native(companion, "codex", title="Codex")
        vantrel = Vantrel(sway, executable, LIMITS_SCRIPT)
        vantrel.behave(document(int(time.time())))
        vantrel.start()
        codex.activate()
        wait_for(vantrel.panel_shown, "the panel")
        app = a11y.application(vantrel.process.pid)
        wait_for(lambda: a11y.row_at(app, 0).value_text == "64 %", "the limits")
        time.sleep(2.5)  # a telemetry tick with real figures
        x, y, width, height = sway.geometry(vantrel.panel_window())
        whole = pathlib.Path(sway.runtime.name) / "screen.png"
        sway.screenshot(whole)
        left = x - MARGIN - 300
        subprocess.run(["convert", str(whole), "-crop",
                        f"{width + MARGIN * 2 + 300}x{height + MARGIN * 2}+{left}+{y - MARGIN}", "+repage",
                        str(folder / "panel-sway.png")], check=True, timeout=20)
        vantrel.stop()
        codex.close()
    finally:
        sway.stop()


if __name__ == "__main__":
    main(*sys.argv[1:4])
