"""A program's StatusNotifierItem as a tray host sees it over D-Bus (KDE Plasma's, waybar's tray, GNOME's
AppIndicator extension): found through the session's org.kde.StatusNotifierWatcher, its menu read and
clicked through com.canonical.dbusmenu, as the host does when the user opens it."""

from gi.repository import GLib

from compositors import dbus_call
from vantrel_desktop import wait_for

WATCHER = ("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher")
MENU = "com.canonical.dbusmenu"


def property_of(service, path, interface, name):
    return dbus_call(service, path, "org.freedesktop.DBus.Properties", "Get", GLib.Variant("(ss)", (interface, name)),
                     "(v)")[0]


def registered_items():
    """(bus name, object path) of each item: watchers write "NAME/PATH", the AppIndicator extension
    "NAME@/PATH"."""
    items = property_of(*WATCHER, "org.kde.StatusNotifierWatcher", "RegisteredStatusNotifierItems")
    return [(item.split("@", 1) if "@/" in item else (item.split("/", 1)[0], "/" + item.split("/", 1)[1]))
            for item in items]


def process_of(service):
    return dbus_call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                     "GetConnectionUnixProcessID", GLib.Variant("(s)", (service,)), "(u)")[0]


class TrayItem:
    def __init__(self, pid):
        def find():
            for service, path in registered_items():
                try:
                    if process_of(service) == pid:
                        return service, path
                except GLib.Error:  # an item whose program has ended, not yet forgotten
                    continue
            return None

        self.service, self.path = wait_for(find, f"the tray item of process {pid}")
        self.menu = property_of(self.service, self.path, "org.kde.StatusNotifierItem", "Menu")

    def _entries(self):
        dbus_call(self.service, self.menu, MENU, "AboutToShow", GLib.Variant("(i)", (0,)), "(b)")
        _, (_, _, children) = dbus_call(self.service, self.menu, MENU, "GetLayout",
                                        GLib.Variant("(iias)", (0, -1, [])), "(u(ia{sv}av))")
        return [(identifier, properties) for identifier, properties, _ in children]

    def entries(self):
        """(kind, label) in order, as accessibility.TrayMenu reads them from the X11 tray's popup."""
        return [("separator", "") if p.get("type") == "separator" else ("menu item", p["label"])
                for _, p in self._entries()]

    def checked(self, position):
        return self._entries()[position - 1][1].get("toggle-state") == 1

    def choose(self, position):
        identifier = self._entries()[position - 1][0]
        dbus_call(self.service, self.menu, MENU, "Event",
                  GLib.Variant("(isvu)", (identifier, "clicked", GLib.Variant("i", 0), 0)))
