"""An org.kde.StatusNotifierWatcher that tells nothing useful: asked whether a host is registered, it answers
a string (`garbage`) or never answers (`silent`). Prints "ready" once it owns its name.

    faulty_tray_watcher.py garbage|silent
"""

import sys

from gi.repository import Gio, GLib

INTERFACE = """<node><interface name="org.kde.StatusNotifierWatcher">
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
</interface></node>"""

unanswered = []  # kept, so that the calls are never answered, not even with an error


def called(_connection, _sender, _path, _interface, _method, _parameters, invocation):
    if sys.argv[1] == "garbage":
        invocation.return_value(GLib.Variant("(v)", (GLib.Variant("s", "yes"),)))
    else:
        unanswered.append(invocation)


def owned(_connection, _name):
    print("ready", flush=True)


bus = Gio.bus_get_sync(Gio.BusType.SESSION)
# Without a getter, property reads come to `called`, where they can go unanswered.
bus.register_object("/StatusNotifierWatcher", Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], called, None,
                    None)
Gio.bus_own_name_on_connection(bus, "org.kde.StatusNotifierWatcher", Gio.BusNameOwnerFlags.NONE, owned, None)
GLib.MainLoop().run()
