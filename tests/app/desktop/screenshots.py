"""Takes the README's pictures of the panel on a private desktop with a compositor:

    dbus-run-session -- /usr/bin/python3 tests/app/desktop/screenshots.py \\
        build/bin/vantrel build/bin/companion_window docs/screenshots

full figures, a staleness warning, limits unavailable, and the panel pinned over another application."""

import pathlib
import sys
import time

import accessibility as a11y
from vantrel_desktop import Desktop, Vantrel, wait_for

LIMITS_SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "fixtures" / "app" / "limits_script.py"
MARGIN = 24


def document(observed_at):
    return {
        "observedAt": observed_at,
        "buckets": [{"id": "codex", "creditBalance": "12,50 $", "windows": [
            {"slot": "primary", "windowDurationMins": 300, "remainingPercent": 64, "resetsAt": observed_at + 7200},
            {"slot": "secondary", "windowDurationMins": 10080, "remainingPercent": 12,
             "resetsAt": observed_at + 3 * 86400}]}],
    }


def around_panel(geometry, left_extra=0):
    """ImageMagick's crop of the screen around the panel's geometry: a margin, and left_extra more on its
    left to show what lies beside it."""
    x, y, width, height = geometry
    return f"{width + MARGIN * 2 + left_extra}x{height + MARGIN * 2}+{x - MARGIN - left_extra}+{y - MARGIN}"


def start_with_full_figures(desktop, executable, window, prefix=None):
    """Vantrel showing the full figures over the window: the program and its accessible application."""
    vantrel = Vantrel(desktop, executable, LIMITS_SCRIPT, prefix)
    vantrel.behave(document(int(time.time())))
    vantrel.start()
    window.activate()
    wait_for(vantrel.panel_shown, "the panel")
    app = a11y.application(vantrel.process.pid)
    wait_for(lambda: a11y.row_at(app, 0).value_text == "64 %", "the limits")
    return vantrel, app


def main(executable, companion, folder):
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    desktop = Desktop(compositor=True).start()
    desktop.env.update(TZ="Europe/Prague", LANG="C.UTF-8")
    try:
        codex = desktop.open_companion(companion, "Codex", geometry=(60, 120, 620, 520))

        def shoot(vantrel, name, left_extra=0):
            time.sleep(2.5)  # a telemetry tick with real figures
            desktop.run("import", "-window", "root", "-crop",
                        around_panel(desktop.geometry(vantrel.panel_window()), left_extra),
                        "+repage", str(folder / f"{name}.png"))

        vantrel, app = start_with_full_figures(desktop, executable, codex)
        shoot(vantrel, "panel-full-figures")

        vantrel.behave(exit_status=1)
        tray = wait_for(vantrel.tray_windows, "the tray item")[0]
        a11y.TrayMenu(desktop, tray).open().choose(2)
        wait_for(lambda: any(t.startswith("Limity: starší údaj (") for t in a11y.labels(app)), "the warning")
        shoot(vantrel, "panel-warning")
        vantrel.stop()

        vantrel = Vantrel(desktop, executable, LIMITS_SCRIPT)
        vantrel.behave(exit_status=1)
        vantrel.start()
        codex.activate()
        wait_for(vantrel.panel_shown, "the panel")
        app = a11y.application(vantrel.process.pid)
        wait_for(lambda: "Limity nejsou dostupné · místní výkon funguje" in a11y.labels(app), "the failure")
        shoot(vantrel, "panel-limits-unavailable")

        vantrel.behave(document(int(time.time())))
        tray = wait_for(vantrel.tray_windows, "the tray item")[0]
        a11y.TrayMenu(desktop, tray).open().choose(2)
        other = desktop.open_companion(companion, "Editor", geometry=(700, 300, 560, 480))
        a11y.TrayMenu(desktop, tray).open().choose(3)
        other.activate()
        wait_for(vantrel.panel_shown, "the pinned panel")
        shoot(vantrel, "panel-pinned-over-another-window", left_extra=300)
        vantrel.stop()
        other.close()
        codex.close()
    finally:
        desktop.stop()


if __name__ == "__main__":
    main(*sys.argv[1:4])
