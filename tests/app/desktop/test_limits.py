"""The limits as the script delivers them: failures and their texts, a script that never ends, and
quitting while it runs."""

import os
import signal
import time

import accessibility as a11y
from desktop_case import main, DesktopTestCase, full_document, reap, terminated_by_sigterm
from vantrel_desktop import wait_for

UNAVAILABLE = "Limity nejsou dostupné · místní výkon funguje"
NO_BUCKETS = "API nevrátilo limity účtu"


class Limits(DesktopTestCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.codex = cls.open("Codex", geometry=(40, 80, 500, 360))
        cls.addClassCleanup(cls.codex.close)

    def launch(self, document=None, **behaviour):
        vantrel = self.start_vantrel(document, **behaviour)
        self.addCleanup(vantrel.stop)
        self.codex.activate()
        wait_for(vantrel.panel_shown, "the panel over Codex")
        return vantrel, a11y.application(vantrel.process.pid), wait_for(vantrel.tray_windows, "the tray item")[0]

    def wait_for_status(self, app, text):
        wait_for(lambda: text in a11y.labels(app), f"the status line {text!r}")

    def test_limits_unavailable_from_the_start(self):
        _, app, _ = self.launch(exit_status=1)
        self.wait_for_status(app, UNAVAILABLE)
        for index in (0, 1):
            # Never given a reading: "—" over an empty bar, and no tip.
            limit = a11y.row_at(app, index)
            self.assertEqual(limit.value_text, "—")
            self.assertEqual(limit.bar_value, 0.0)
            self.assertEqual(limit.tooltip, "")
        self.assertEqual(a11y.row_at(app, 0).caption, "Zbývá · krátkodobý limit")
        self.assertIn("Tokeny: API neposkytuje", a11y.labels(app))
        time.sleep(2.5)  # a telemetry tick: without limits there is no age to tell
        self.assertIn(UNAVAILABLE, a11y.labels(app))

    def test_a_failure_after_a_success_warns_of_old_data_and_keeps_the_figures(self):
        vantrel, app, tray = self.launch(full_document(int(time.time())))
        wait_for(lambda: a11y.row_at(app, 0).value_text == "64 %", "the limits")
        vantrel.behave(exit_status=1, document={"buckets": []})
        a11y.TrayMenu(self.desktop, tray).open().choose(2)
        self.wait_for_status(app, "Limity: starší údaj (0 min) · nelze obnovit")
        self.assertEqual(a11y.row_at(app, 0).value_text, "64 %")
        self.assertEqual(a11y.row_at(app, 1).caption, "Zbývá · týden")
        self.assertIn("Kredity: 12,50 $ · tokeny: API neposkytuje", a11y.labels(app))

    def test_bad_output_ends_in_the_failure_display(self):
        vantrel, app, tray = self.launch({})
        self.wait_for_status(app, NO_BUCKETS)
        # Every kind of bad output has its unit test; here two go through the real program.
        for output in ("[]", b'{"a": "\xff\xfe"}'):
            with self.subTest(output=output):
                vantrel.behave(raw=output)
                a11y.TrayMenu(self.desktop, tray).open().choose(2)
                self.wait_for_status(app, UNAVAILABLE)
                vantrel.behave(document={})
                a11y.TrayMenu(self.desktop, tray).open().choose(2)
                self.wait_for_status(app, NO_BUCKETS)

    def test_a_script_that_never_ends_blocks_refreshes_and_is_terminated_on_quit(self):
        vantrel, app, tray = self.launch(hang=True)
        script = wait_for(vantrel.script_runs, "the script's run")[0]
        for _ in range(2):
            a11y.TrayMenu(self.desktop, tray).open().choose(2)
        time.sleep(1)
        self.assertEqual(vantrel.script_runs(), [script])
        self.assertIn("Limity: načítání…", a11y.labels(app))

        a11y.TrayMenu(self.desktop, tray).open().choose_last(5)
        self.assertEqual(vantrel.process.wait(20), 0)
        # The script was the program's child; now it is ours, and it ended on the termination request.
        outcome, status = reap(script)
        if outcome == "reaped":
            self.assertTrue(terminated_by_sigterm(status), status)
        self.assertFalse(os.path.exists(f"/proc/{script}"))

    def test_a_termination_request_quits_as_the_menu_does_and_ends_the_script(self):
        vantrel, _, _ = self.launch(hang=True)
        script = wait_for(vantrel.script_runs, "the script's run")[0]
        vantrel.process.send_signal(signal.SIGTERM)
        self.assertEqual(vantrel.process.wait(20), 0)
        outcome, status = reap(script)
        if outcome == "reaped":
            self.assertTrue(terminated_by_sigterm(status), status)
        self.assertFalse(os.path.exists(f"/proc/{script}"))


if __name__ == "__main__":
    main()
