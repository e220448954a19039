"""GNOME Shell, on Wayland without a screen and on an X server."""
import glob
import json
import shutil
import time

from gi.repository import GLib

from desktop import SIZE, Desktop, OnXServer, wait_for, window

# Evaluated in the shell: its windows, with the application that it found for each.
WINDOWS = """
(() => {
  const {Meta, Shell} = imports.gi;
  const tracker = Shell.WindowTracker.get_default();
  return global.get_window_actors().map(actor => actor.meta_window)
    .filter(one => [Meta.WindowType.NORMAL, Meta.WindowType.DIALOG].includes(one.window_type))
    .map(one => {
      const app = tracker.get_window_app(one);
      const known = app && !app.is_window_backed();
      return {id: one.get_stable_sequence(), title: one.get_title() || '', app_id: one.get_wm_class(),
              instance: one.get_wm_class_instance(), focused: one.has_focus(),
              entry: known ? app.get_id() : null, name: known ? app.get_name() : null,
              icon: known && app.get_icon() ? app.get_icon().to_string() : null};
    });
})()
"""

# Made once, at the start: programs get no keys of a keyboard that they have not been told of.
DEVICES = """
(() => {
  const {Clutter} = imports.gi;
  const seat = Clutter.get_default_backend().get_default_seat();
  global.quorvelKeys = seat.create_virtual_device(Clutter.InputDeviceType.KEYBOARD_DEVICE);
  global.quorvelPointer = seat.create_virtual_device(Clutter.InputDeviceType.POINTER_DEVICE);
})()
"""

DASH_TO_DOCK = "dash-to-dock@micxgx.gmail.com"

SETTINGS = f"""[org/gnome/shell]
welcome-dialog-last-shown-version='99'
enabled-extensions=['{DASH_TO_DOCK}']
favorite-apps=@as []
[org/gnome/desktop/interface]
enable-animations=false
[org/gnome/desktop/screensaver]
lock-enabled=false
[org/gnome/desktop/session]
idle-delay=uint32 0
[org/gnome/shell/extensions/dash-to-dock]
dock-fixed=true
disable-overview-on-startup=true
show-trash=false
show-mounts=false
multi-monitor=false
"""


class Gnome(Desktop):
    name = "gnome"
    title = "GNOME, Wayland"
    needs = ("gnome-shell", "Xwayland")
    needs_click = True
    # Unsafe only in that it lets programs of this session ask what the shell shows.
    command = ["gnome-shell", "--headless", "--wayland", "--virtual-monitor", "%dx%d" % SIZE, "--unsafe-mode",
               "--sm-disable", "--mode=user"]

    def configure(self):
        kind = "wayland" if self.wayland else "x11"
        self.session.environment.update(XDG_SESSION_TYPE=kind, XDG_CURRENT_DESKTOP="GNOME", XDG_SESSION_DESKTOP="gnome")
        self.session.write(".config/glib-2.0/settings/keyfile", SETTINGS)

    def boot(self):
        if not self.wayland:
            self.start_x_server()
        shell = self.session.start(self.command, {"GSETTINGS_BACKEND": "keyfile"}, log="shell")
        ready = "imports.ui.main.layoutManager._startingUp === false"
        if not wait_for(lambda: shell.poll() is not None or self.evaluate(ready), 60) or shell.poll() is not None:
            raise RuntimeError("GNOME Shell does not come up: " + self.session.log_text("shell")[-2000:])
        if self.wayland:
            self.session.environment["WAYLAND_DISPLAY"] = self.evaluate("imports.gi.GLib.getenv('WAYLAND_DISPLAY')") or "wayland-0"
            self.session.environment["DISPLAY"] = self.evaluate("imports.gi.GLib.getenv('DISPLAY')")
            for authority in glob.glob(self.session.runtime + "/.mutter-Xwaylandauth.*"):
                self.session.environment["XAUTHORITY"] = authority
        self.tell_bus()
        self.evaluate("imports.ui.main.overview.hide()")
        self.evaluate(DEVICES)

    def evaluate(self, script):
        done, answer = self.call("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell", "Eval",
                                 GLib.Variant("(s)", (script,)))
        if not done:
            raise RuntimeError("GNOME Shell: " + answer)
        return json.loads(answer) if answer else None

    def windows(self):
        return [window(**facts) for facts in self.evaluate(WINDOWS)]

    def knows(self, entry):
        return self.evaluate(f"!!imports.gi.Shell.AppSystem.get_default().lookup_app({json.dumps(entry)})")

    def screenshot(self, path):
        inside = self.session.base + "/out/picture.png"
        _, used = self.call("org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot",
                            "org.gnome.Shell.Screenshot", "Screenshot", GLib.Variant("(bbs)", (False, False, inside)))
        shutil.move(used, path)

    def picture_of_icon(self, entry, path):
        """The icon as the shell draws it for an application."""
        name = json.dumps(entry)
        self.evaluate("""(() => {
          const icon = imports.gi.Shell.AppSystem.get_default().lookup_app(%s).create_icon_texture(96);
          global.quorvelIcon = icon;
          imports.ui.main.layoutManager.uiGroup.add_child(icon);
          icon.set_position(64, 64); })()""" % name)
        time.sleep(0.5)
        inside = self.session.base + "/out/icon.png"
        self.call("org.gnome.Shell.Screenshot", "/org/gnome/Shell/Screenshot", "org.gnome.Shell.Screenshot",
                  "ScreenshotArea", GLib.Variant("(iiiibs)", (64, 64, 96, 96, False, inside)))
        self.evaluate("global.quorvelIcon.destroy()")
        shutil.move(inside, path)

    def on_window(self, one, action):
        """Evaluates an expression about a window, which it calls `one`."""
        return self.evaluate("""(() => { for (const actor of global.get_window_actors()) { const one = actor.meta_window;
          if (one.get_stable_sequence() === %s) return %s; } })()""" % (one.id, action))

    def place(self, one, x, y, width, height):
        self.on_window(one, f"one.move_resize_frame(true, {x}, {y}, {width}, {height})")

    def frame(self, one):
        return self.on_window(one, "(r => [r.x, r.y, r.width, r.height])(one.get_frame_rect())")

    def clear_notices(self):
        """Takes away what the shell says about the machine that it runs on."""
        self.evaluate("imports.ui.main.messageTray.getSources().forEach(source => source.destroy())")

    def use(self, device, action):
        self.evaluate("(() => { const {Clutter, GLib} = imports.gi; global.quorvel%s.notify_%s; })()" %
                      (device, action % "GLib.get_monotonic_time()"))
        time.sleep(0.1)

    def key(self, name, state):
        self.use("Keys", f"keyval(%s, Clutter.KEY_{name}, Clutter.KeyState.{state})")

    def press(self, *names):
        """Presses keys together."""
        for name in names:
            self.key(name, "PRESSED")
        for name in reversed(names):
            self.key(name, "RELEASED")

    def click(self, x, y):
        self.use("Pointer", f"absolute_motion(%s, {x}, {y})")
        for state in ("PRESSED", "RELEASED"):
            self.use("Pointer", f"button(%s, Clutter.BUTTON_PRIMARY, Clutter.ButtonState.{state})")

    def hold_switcher(self):
        """Presses the keys that show the open applications, and doesn't release the first."""
        self.key("Alt_L", "PRESSED")
        self.press("Tab")


class GnomeX11(OnXServer, Gnome):
    name = "gnome-x11"
    title = "GNOME, X11"
    needs = ("gnome-shell", "Xvfb")
    needs_click = False
    command = ["gnome-shell", "--x11", "--unsafe-mode", "--sm-disable", "--mode=user"]
