"""A stand-in for Vantrel's GNOME Shell extension that misbehaves on purpose: it owns io.github.vantrel.Focus
on the session bus and answers GetFocusedWindow as told, and on each line of its standard input emits a
FocusedWindowChanged or gives up the name.

    fake_focus_extension.py silent|garbage|window [JSON]

silent: never answers; garbage: answers with a string where a dictionary belongs (its interface says so, or
GDBus would not send it); window: answers with the dictionary that JSON describes (numbers as "u", strings
as "s"). Input lines: `signal JSON` (a dictionary as above), `garbage` (a signal of the wrong type),
`release` (the name given up). It prints "ready" once it owns the name, and "done" after each input line
(or why it could not do it).
"""

import json
import sys
import threading

from gi.repository import Gio, GLib

BUS_NAME, PATH, INTERFACE = "io.github.vantrel.Focus", "/io/github/vantrel/Focus", "io.github.vantrel.Focus1"
INTROSPECTION = """
<node>
  <interface name="{interface}">
    <method name="GetFocusedWindow"><arg type="{answer}" direction="out"/></method>
  </interface>
</node>"""


def description(text):
    values = json.loads(text)
    return {key: GLib.Variant("u" if isinstance(value, int) else "s", value) for key, value in values.items()}


class FakeExtension:
    def __init__(self, behaviour, window):
        self.behaviour, self.window = behaviour, window
        self.unanswered = []  # kept, so the calls are never answered
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        answer = "s" if behaviour == "garbage" else "a{sv}"
        interface = Gio.DBusNodeInfo.new_for_xml(INTROSPECTION.format(interface=INTERFACE, answer=answer)).interfaces[0]
        self.bus.register_object(PATH, interface, self.on_call, None, None)
        self.loop = GLib.MainLoop()
        self.owner = Gio.bus_own_name_on_connection(self.bus, BUS_NAME, Gio.BusNameOwnerFlags.NONE,
                                                    self.on_acquired, None)

    def on_acquired(self, *_):
        print("ready", flush=True)

    def on_call(self, _connection, _sender, _path, _interface, _method, _parameters, invocation):
        if self.behaviour == "silent":
            self.unanswered.append(invocation)
        elif self.behaviour == "garbage":
            invocation.return_value(GLib.Variant("(s)", ("garbage",)))
        else:
            invocation.return_value(GLib.Variant("(a{sv})", (description(self.window),)))

    def command(self, line):
        verb, _, argument = line.strip().partition(" ")
        try:
            if verb == "signal":
                self.emit(GLib.Variant("(a{sv})", (description(argument),)))
            elif verb == "garbage":
                self.emit(GLib.Variant("(as)", (["garbage"],)))
            elif verb == "release":
                Gio.bus_unown_name(self.owner)
            self.bus.flush_sync(None)
            print("done", flush=True)
        except Exception as error:  # the test reads the reason instead of waiting for "done"
            print(f"failed: {error}", flush=True)

    def emit(self, parameters):
        self.bus.emit_signal(None, PATH, INTERFACE, "FocusedWindowChanged", parameters)


def main():
    fake = FakeExtension(sys.argv[1], sys.argv[2] if len(sys.argv) > 2 else "{}")

    def read_commands():
        for line in sys.stdin:
            GLib.idle_add(lambda text=line: fake.command(text) and False)
        GLib.idle_add(fake.loop.quit)

    threading.Thread(target=read_commands, daemon=True).start()
    fake.loop.run()


if __name__ == "__main__":
    main()
