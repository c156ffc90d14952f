// For Vantrel's tests only: what a test needs from GNOME Shell and the shell offers no outside client.
// Leaves the overview the shell starts in (new windows get no focus under it), brings a process's window
// to the front, reports the focused window and takes screenshots.
const {Gio, Shell} = imports.gi;
const Main = imports.ui.main;

const HelperInterface = `
<node>
  <interface name="io.github.vantrel.TestHelper">
    <method name="Ready">
      <arg type="b" direction="out"/>
    </method>
    <method name="Activate">
      <arg type="u" direction="in" name="pid"/>
      <arg type="b" direction="out"/>
    </method>
    <method name="GetFocus">
      <arg type="s" direction="out"/>
    </method>
    <method name="Screenshot">
      <arg type="s" direction="in" name="path"/>
    </method>
  </interface>
</node>`;

class TestHelper {
    enable() {
        this._exported = Gio.DBusExportedObject.wrapJSObject(HelperInterface, this);
        this._exported.export(Gio.DBus.session, '/io/github/vantrel/TestHelper');
        this._nameId = Gio.bus_own_name_on_connection(Gio.DBus.session, 'io.github.vantrel.TestHelper',
            Gio.BusNameOwnerFlags.NONE, null, null);
        this._startupId = 0;
        if (Main.layoutManager._startingUp)
            this._startupId = Main.layoutManager.connect('startup-complete', () => Main.overview.hide());
        else
            Main.overview.hide();
    }

    disable() {
        if (this._startupId)
            Main.layoutManager.disconnect(this._startupId);
        Gio.bus_unown_name(this._nameId);
        this._exported.unexport();
    }

    Ready() {
        return !Main.layoutManager._startingUp && !Main.overview.visible;
    }

    Activate(pid) {
        const actor = global.get_window_actors().find(a => a.meta_window.get_pid() === pid);
        if (!actor)
            return false;
        Main.activateWindow(actor.meta_window);
        return true;
    }

    GetFocus() {
        const window = global.display.focus_window;
        return JSON.stringify(window ? {app_id: window.get_wm_class(), pid: window.get_pid()} : null);
    }

    ScreenshotAsync([path], invocation) {
        const stream = Gio.File.new_for_path(path).replace(null, false, Gio.FileCreateFlags.NONE, null);
        new Shell.Screenshot().screenshot(false, stream, (shooter, result) => {
            try {
                shooter.screenshot_finish(result);
                stream.close(null);
                invocation.return_value(null);
            } catch (e) {
                invocation.return_error_literal(Gio.DBusError, Gio.DBusError.FAILED, e.message);
            }
        });
    }
}

function init() {
    return new TestHelper();
}
