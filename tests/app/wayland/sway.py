"""sway 1.7 headless, for the Wayland tests (see compositors.py)."""

import json
import os
import pwd

from compositors import CompositorSession, environment_dump, read_environment
from vantrel_desktop import die_with_parent, wait_for

NOBODY = 65534


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
