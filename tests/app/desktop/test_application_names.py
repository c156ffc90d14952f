"""The application in front as Linux names it: the Name of its desktop entry, found from the window's
class, and a terminal counts as Codex while one of its shells runs the Codex CLI."""

import os
import pathlib
import shutil
import signal
import tempfile

from desktop_case import main, DesktopTestCase
from vantrel_desktop import wait_for

ENTRIES = {
    # The Linux Codex application under a class of its own: its entry gives the name users see.
    "codex-desktop.desktop": "[Desktop Entry]\nType=Application\nName=Codex\nExec=true\n",
    # A listed class whose entry names the application otherwise.
    "chatgpt.desktop": "[Desktop Entry]\nType=Application\nName=Chat Archive\nExec=true\n",
}


def process_children(pid):
    children = set()
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        children.update(int(p) for p in (task / "children").read_text().split())
    return children


class ApplicationNames(DesktopTestCase):
    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.files = tempfile.TemporaryDirectory(prefix="vantrel-names-")
        cls.addClassCleanup(cls.files.cleanup)
        root = pathlib.Path(cls.files.name)
        applications = root / "data" / "applications"
        applications.mkdir(parents=True)
        for name, text in ENTRIES.items():
            (applications / name).write_text(text)
        (root / "home").mkdir()
        system = cls.desktop.env.get("XDG_DATA_DIRS") or "/usr/local/share:/usr/share"
        cls.desktop.env.update(XDG_DATA_DIRS=f"{applications.parent}:{system}", XDG_DATA_HOME=str(root / "home"))
        # A program named codex: what the npm package's native program is called.
        cls.codex = root / "codex"
        shutil.copy("/bin/sleep", cls.codex)

        cls.vantrel = cls.start_vantrel()
        cls.addClassCleanup(cls.vantrel.stop)
        cls.other = cls.open("Gimp", geometry=(480, 80, 400, 300))
        cls.addClassCleanup(cls.other.close)

    def hidden_over_another_application(self):
        self.other.activate()
        wait_for(lambda: not self.vantrel.panel_shown(), "the panel hidden over another application")

    def test_a_window_whose_entry_is_named_codex_shows_the_panel(self):
        self.hidden_over_another_application()
        window = self.open("codex-desktop", geometry=(100, 420, 300, 200))
        try:
            wait_for(self.vantrel.panel_shown, "the panel over the application its entry names Codex")
        finally:
            window.close()

    def test_a_listed_class_whose_entry_names_another_application_hides_the_panel(self):
        self.hidden_over_another_application()
        codex = self.open("Codex", geometry=(100, 420, 300, 200))
        try:
            wait_for(self.vantrel.panel_shown, "the panel over class Codex without an entry")
            chat = self.open("ChatGPT", instance="chatgpt", geometry=(140, 440, 300, 200))
            try:
                wait_for(lambda: not self.vantrel.panel_shown(), "the panel hidden over Chat Archive")
            finally:
                chat.close()
        finally:
            codex.close()

    def test_a_terminal_shows_the_panel_while_its_shell_runs_the_codex_cli(self):
        self.hidden_over_another_application()
        commands = pathlib.Path(self.files.name) / "commands"
        os.mkfifo(commands)
        terminal = self.open("XTerm", geometry=(100, 420, 300, 200), shell=commands)
        try:
            shell = wait_for(lambda: process_children(terminal.process.pid), "the terminal's shell").pop()
            self.assertFalse(self.vantrel.panel_shown())
            with open(commands, "w") as shell_input:
                shell_input.write(f"{self.codex} 600\n")
            cli = wait_for(lambda: process_children(shell), "codex started in the terminal").pop()
            # Nothing changed on screen: the next 2-second tick notices.
            wait_for(self.vantrel.panel_shown, "the panel over a terminal running codex")
            os.kill(cli, signal.SIGTERM)
            wait_for(lambda: not self.vantrel.panel_shown(), "the panel hidden once codex ended")
        finally:
            terminal.close()
            commands.unlink()


if __name__ == "__main__":
    main()
