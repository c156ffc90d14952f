// Tells Vantrel which window has the focus: GNOME Shell offers ordinary clients no way to learn it on a
// Wayland session. Only the identity and the process are told, never a title.
const FocusInterface = `
<node>
  <interface name="io.github.vantrel.Focus1">
    <method name="GetFocusedWindow">
      <arg type="a{sv}" direction="out" name="window"/>
    </method>
    <signal name="FocusedWindowChanged">
      <arg type="a{sv}" name="window"/>
    </signal>
  </interface>
</node>`;

const FocusBusName = 'io.github.vantrel.Focus';
const FocusObjectPath = '/io/github/vantrel/Focus';

// "wm-class" is the app_id of a Wayland window and the WM_CLASS class of an X11 one; "pid" is left out
// when the shell does not know it. No focused window is an empty dictionary.
function describeWindow(window) {
    const description = {};
    if (!window)
        return description;
    const wmClass = window.get_wm_class();
    if (wmClass)
        description['wm-class'] = new GLib.Variant('s', wmClass);
    const instance = window.get_wm_class_instance();
    if (instance)
        description['wm-class-instance'] = new GLib.Variant('s', instance);
    const pid = window.get_pid();
    if (pid > 0)
        description['pid'] = new GLib.Variant('u', pid);
    const x11 = window.get_client_type() === Meta.WindowClientType.X11;
    description['client-type'] = new GLib.Variant('s', x11 ? 'x11' : 'wayland');
    return description;
}

class FocusService {
    enable() {
        this._window = null;
        this._windowClassId = 0;
        this._exported = Gio.DBusExportedObject.wrapJSObject(FocusInterface, this);
        this._exported.export(Gio.DBus.session, FocusObjectPath);
        this._nameId = Gio.bus_own_name_on_connection(Gio.DBus.session, FocusBusName,
            Gio.BusNameOwnerFlags.NONE, null, null);
        this._focusId = global.display.connect('notify::focus-window', () => this._focusChanged());
        this._focusChanged();
    }

    disable() {
        global.display.disconnect(this._focusId);
        this._watchClass(null);
        Gio.bus_unown_name(this._nameId);
        this._exported.unexport();
        this._exported = null;
    }

    GetFocusedWindow() {
        return describeWindow(global.display.focus_window);
    }

    _focusChanged() {
        this._watchClass(global.display.focus_window);
        this._announce();
    }

    // A window may be focused before its client has set its app_id or class: tell again once it has.
    _watchClass(window) {
        if (this._window && this._windowClassId)
            this._window.disconnect(this._windowClassId);
        this._window = window;
        this._windowClassId = window ? window.connect('notify::wm-class', () => this._announce()) : 0;
    }

    _announce() {
        const description = describeWindow(global.display.focus_window);
        this._exported.emit_signal('FocusedWindowChanged', new GLib.Variant('(a{sv})', [description]));
    }
}
