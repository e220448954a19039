"""What all desktops have in common, and how they are reached."""
import os
import re
import shutil
import subprocess
from types import SimpleNamespace

from gi.repository import Gio, GLib

from session import Forbidden, Session, wait_for

SIZE = (1280, 800)


def window(**facts):
    """A window as its desktop shows it. `entry`, `name` and `icon` are those of the menu entry that the
    desktop found for it; None where it found none."""
    return SimpleNamespace(**{"id": None, "title": "", "app_id": None, "instance": None, "focused": False,
                              "entry": None, "name": None, "icon": None, **facts})


class Desktop:
    """A running desktop. Its class says by which name it is called, and whether it matches windows to
    entries itself."""
    name = ""
    needs = ()
    matches_entries = True
    wayland = True
    needs_click = False  # whether only a click permits a program to bring another's window to the front

    def __init__(self):
        self.session = None
        self.connection = None

    @classmethod
    def missing(cls):
        return [program for program in cls.needs if not shutil.which(program)]

    def start(self, prepare=lambda session: None, tries=2):
        """Brings the desktop up. Starts again if that fails, since desktops hang once in a while."""
        while True:
            tries -= 1
            self.session = Session()
            try:
                self.configure()
                prepare(self.session)
                self.session.open()
                self.boot()
                return
            except Forbidden:
                self.stop()
                raise
            except Exception:
                self.stop()
                if tries == 0:
                    raise

    def stop(self):
        if self.connection:
            self.connection.close_sync(None)
            self.connection = None
        if self.session:
            self.session.close()
            self.session = None

    def configure(self):
        """Writes settings before anything runs."""

    def boot(self):
        raise NotImplementedError

    def windows(self):
        raise NotImplementedError

    def knows(self, entry):
        """Whether the desktop has read a menu entry, as far as it can be asked."""
        return True

    def badges(self):
        """The numbers that the desktop shows with menu entries, also when their windows are gone; None where it
        shows no numbers."""
        return None

    def screenshot(self, path):
        raise NotImplementedError

    def has_color(self, entry, color):
        """Whether the icon that the desktop draws for an entry has this color somewhere. True where the
        desktop draws none by itself: the icon's name has to do there."""
        if not hasattr(self, "picture_of_icon"):
            return True
        return bool(wait_for(lambda: self.count_in_icon(entry, color) > 10, 5))  # it may be loaded late

    def count_in_icon(self, entry, color):
        picture = self.session.base + "/out/own-icon.png"
        self.picture_of_icon(entry, picture)
        count = subprocess.run(["convert", picture, "-fuzz", "12%", "-fill", "black", "+opaque", color,
                                "-fill", "white", "-opaque", color, "-format", "%[fx:mean*w*h]", "info:"],
                               check=True, capture_output=True, text=True).stdout
        return float(count)

    def call(self, name, path, interface, method, arguments=None):
        if self.connection is None:
            self.connection = Gio.DBusConnection.new_for_address_sync(
                self.session.environment["DBUS_SESSION_BUS_ADDRESS"],
                Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
            self.connection.set_exit_on_close(False)
        reply = self.connection.call_sync(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                                          30000, None)
        return reply.unpack()

    def is_on_bus(self, name):
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
                         GLib.Variant("(s)", (name,)))[0]

    def read_displays(self, told):
        """Waits for the file that a compositor has its first program write: its environment."""
        if not wait_for(lambda: os.path.exists(told), 60):
            raise RuntimeError("the compositor does not come up: " + self.session.log_text("compositor")[-2000:])
        with open(told) as lines:
            for line in lines:
                name, _, value = line.rstrip("\n").partition("=")
                if name in ("DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "SWAYSOCK"):
                    self.session.environment[name] = value

    def tell_bus(self):
        """Services that the bus starts find the display."""
        variables = {name: value for name, value in self.session.environment.items() if "BUS_ADDRESS" not in name}
        self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                  "UpdateActivationEnvironment", GLib.Variant("(a{ss})", (variables,)))

    def start_x_server(self):
        self.session.start(["Xvfb", ":7", "-screen", "0", f"{SIZE[0]}x{SIZE[1]}x24", "-nolisten", "tcp", "-noreset", "-ac"],
                           log="xserver")
        self.session.environment["DISPLAY"] = ":7"
        if not wait_for(lambda: self.session.run(["xprop", "-root"]).returncode == 0, 30):
            raise RuntimeError("no X server: " + self.session.log_text("xserver"))

    def x_windows(self):
        """The windows of the X server's window manager, which says nothing about menu entries."""
        root = self.session.output_of(["xprop", "-root", "_NET_CLIENT_LIST", "_NET_ACTIVE_WINDOW"])
        listed, _, active = root.partition("_NET_ACTIVE_WINDOW")
        found = []
        for number in re.findall(r"0x[0-9a-f]+", listed):
            facts = self.session.run(["xprop", "-id", number, "WM_CLASS", "_NET_WM_NAME", "WM_NAME",
                                      "_NET_WM_WINDOW_TYPE"]).stdout
            if re.search("_TYPE_(DOCK|DESKTOP|SPLASH)", facts):
                continue
            classes = re.search(r'WM_CLASS\(STRING\) = "(.*)", "(.*)"', facts)
            title = re.search(r'_?WM_NAME\(.*\) = "(.*)"', facts)
            found.append(window(id=number, title=title[1] if title else "", app_id=classes[2] if classes else None,
                                instance=classes[1] if classes else None,
                                focused=bool(re.search(rf"\b{number}\b", active))))
        return found


class OnXServer:
    """What desktops on an X server of their own do in the same way. Comes before the desktop's other class."""
    wayland = False

    def screenshot(self, path):
        inside = self.session.base + "/out/picture.png"
        self.session.output_of(["import", "-window", "root", inside])
        shutil.move(inside, path)
