"""Reading and driving Vantrel through AT-SPI, as assistive technology does (needs /usr/bin/python3 with
python3-pyatspi, and the program started with QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1)."""

import time

import pyatspi
from gi.repository import GLib

from vantrel_desktop import wait_for


def application(pid):
    def find():
        for app in pyatspi.Registry.getDesktop(0):
            try:
                if app is not None and app.get_process_id() == pid and app.childCount > 0:
                    return app
            except GLib.GError:
                continue
        return None

    return wait_for(find, f"the accessible application of process {pid}")


def answers(pid):
    """Whether the program's event loop answers assistive technology (even with no window shown)."""
    for app in pyatspi.Registry.getDesktop(0):
        try:
            if app is not None and app.get_process_id() == pid:
                return bool(app.name)
        except GLib.GError:
            continue
    return False


def descendants(node, depth=0):
    for child in node:
        if child is None:
            continue
        yield child
        if depth < 40:
            yield from descendants(child, depth + 1)


def panel_root(app):
    return wait_for(lambda: next((w for w in app if w is not None and w.name == "Vantrel Solvane"), None),
                    "the panel in the accessibility tree")


def showing(node):
    return node.getState().contains(pyatspi.STATE_SHOWING)


class Row:
    """A meter row as assistive technology reads it: a group named by its caption, described by its tool
    tip, holding the caption, the number and the bar."""

    def __init__(self, node):
        self.node = node

    @property
    def caption(self):
        return self.node.name

    @property
    def tooltip(self):
        return self.node.description

    @property
    def value_text(self):
        labels = [c for c in self.node if c is not None and c.getRoleName() == "label"]
        return labels[1].name

    @property
    def bar(self):
        return next(c for c in self.node if c is not None and c.getRoleName() == "progress bar")

    @property
    def bar_value(self):
        return self.bar.queryValue().currentValue

    @property
    def bar_text(self):
        """What the bar says besides its number ("Nedostupné" when there is no reading)."""
        return self.bar.description


def rows(app):
    return [Row(n) for n in descendants(panel_root(app)) if n.getRoleName() == "panel"]


def row(app, caption):
    return wait_for(lambda: next((r for r in rows(app) if r.caption == caption), None), f"the row {caption}")


def row_at(app, index):
    """The rows in panel order: 0 the short-term limit, 1 the long-term limit, then the telemetry."""
    return rows(app)[index]


def labels(app):
    return [n.name for n in descendants(panel_root(app))
            if n.getRoleName() == "label" and n.parent is not None and n.parent.getRoleName() != "panel"]


def switch(app, name):
    return wait_for(lambda: next((n for n in descendants(panel_root(app))
                                  if n.getRoleName() == "check box" and n.name == name), None),
                    f"the switch {name}")


def press(node):
    node.queryAction().doAction(0)


class PopupMenu:
    """One of the program's menus, opened by a click the caller gives and read from the popup that appears:
    popup menus are not in the application's tree, but AT-SPI announces them as they show."""

    def __init__(self, desktop, click):
        self.desktop, self.click = desktop, click
        self.menu = None

    def _on_showing(self, event):
        try:
            if event.detail1 and event.source is not None and event.source.getRoleName() == "popup menu":
                self.menu = event.source
        except GLib.GError:  # news of something gone by now (a tool tip)
            pass

    def open(self):
        pyatspi.Registry.registerEventListener(self._on_showing, "object:state-changed:showing")
        try:
            # A click that lands while an earlier menu is still closing is lost: then click again.
            for _ in range(3):
                self.menu = None
                self.click()
                context = GLib.MainContext.default()
                deadline = time.monotonic() + 5
                while self.menu is None and time.monotonic() < deadline:
                    context.iteration(False)
                    time.sleep(0.01)
                if self.menu is not None:
                    return self
                self.close()
        finally:
            pyatspi.Registry.deregisterEventListener(self._on_showing, "object:state-changed:showing")
        raise AssertionError("the menu did not open")

    def process_id(self):
        """The process whose menu opened (where several programs' windows overlap)."""
        return self.menu.get_application().get_process_id()

    def entries(self):
        return [(item.getRoleName(), item.name) for item in self.menu]

    def checked(self, position):
        return self.menu[position - 1].getState().contains(pyatspi.STATE_CHECKED)

    def shortcut(self, position):
        action = self.menu[position - 1].queryAction()
        return action.getKeyBinding(0) if action.nActions else ""

    def choose(self, position):
        press(self.menu[position - 1])
        self.close()

    def choose_last(self, position):
        """Chooses an entry after which the program is gone (quitting), so there is no menu to close."""
        press(self.menu[position - 1])

    def close(self):
        # A menu still open would hold the pointer and keyboard grab.
        self.desktop.run("xdotool", "key", "Escape", check=False)
        if self.menu is not None:
            wait_for(self.closed, "the menu closed")

    def closed(self):
        try:
            return not showing(self.menu)
        except GLib.GError:  # the program is gone, and its menu with it
            return True


class TrayMenu(PopupMenu):
    """The tray item's menu, opened with a right click on the item in an XEmbed tray."""

    def __init__(self, desktop, tray_window):
        super().__init__(desktop, lambda: desktop.run("xdotool", "mousemove", "--window", str(tray_window), "11",
                                                      "11", "click", "3"))


def panel_spot(desktop, vantrel):
    """A point on the panel away from its switches: on the title, a little right of its middle."""
    x, y, width, _ = desktop.geometry(vantrel.panel_window())
    return x + width // 2, y + 24
