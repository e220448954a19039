"""KDE Plasma, on an X server and on Wayland without a screen."""
import glob
import json
import os
import re
import shutil
import subprocess
import time

from gi.repository import Gio, GLib

from desktop import SIZE, Desktop, OnXServer, wait_for, window

HERE = os.path.dirname(os.path.abspath(__file__))


def entry_in(launcher):
    """The identifier of the entry that the taskbar found, which it says by its path or its identifier."""
    return re.split("[/:]", launcher)[-1] or None


class Plasma(Desktop):
    name = "plasma"
    title = "Plasma, Wayland"
    needs = ("kwin_wayland", "plasmashell", "Xwayland")

    def configure(self):
        self.session.environment.update(
            XDG_SESSION_TYPE="wayland" if self.wayland else "x11", XDG_CURRENT_DESKTOP="KDE", KDE_FULL_SESSION="true",
            KDE_SESSION_VERSION="5", XDG_MENU_PREFIX="plasma-", XDG_CONFIG_DIRS="/etc/xdg",
            KWIN_SCREENSHOT_NO_PERMISSION_CHECKS="1", KWIN_WAYLAND_NO_PERMISSION_CHECKS="1", KDE_NO_DRKONQI="1")
        for file, text in (("kdeglobals", "[KDE]\nAnimationDurationFactor=0\n[Icons]\nTheme=breeze\n"),
                           ("ksplashrc", "[KSplash]\nEngine=none\n"), ("kwalletrc", "[Wallet]\nEnabled=false\n"),
                           ("kscreenlockerrc", "[Daemon]\nAutolock=false\n"),
                           ("baloofilerc", "[Basic Settings]\nIndexing-Enabled=false\n")):
            self.session.write(".config/" + file, text)

    def boot(self):
        self.start_compositor()
        self.tell_bus()
        self.session.start(["kded5"])
        for daemon in glob.glob("/usr/lib/*/libexec/kactivitymanagerd"):
            self.session.start([daemon])
        self.await_name("org.kde.kded5")
        self.session.start(["plasmashell", "--no-respawn"])
        self.await_name("org.kde.plasmashell")
        self.start_reader()
        time.sleep(2)  # the panel is drawn piece by piece

    def await_name(self, name):
        if not wait_for(lambda: self.is_on_bus(name), 60):
            raise RuntimeError(name + " does not come up")

    def start_compositor(self):
        # The system's own file has a capability that containers may not give.
        program = self.session.base + "/out/kwin_wayland"
        shutil.copy("/usr/bin/kwin_wayland", program)
        told = self.session.base + "/out/displays"
        script = self.session.base + "/out/tell"
        with open(script, "w") as file:
            file.write(f"#!/bin/sh\nenv >{told}.new && mv {told}.new {told}\n")
        os.chmod(script, 0o755)
        self.session.start([program, "--virtual", "--width", str(SIZE[0]), "--height", str(SIZE[1]), "--xwayland",
                            "--no-lockscreen", "--no-kactivities", "--socket", "wayland-0", script], log="compositor")
        self.read_displays(told)
        self.await_name("org.kde.KWin")

    def start_reader(self):
        for file in ("plasma_tasks.py", "plasma_tasks.qml"):
            shutil.copy(f"{HERE}/{file}", self.session.base + "/out")
        self.reader = self.session.start(
            ["/usr/bin/python3", self.session.base + "/out/plasma_tasks.py"], {"QT_QUICK_BACKEND": "software"},
            log="reader", stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        if self.reader.stdout.readline() != "ready\n":
            raise RuntimeError("Plasma's windows can't be read: " + self.session.log_text("reader"))

    def stop(self):
        reader = self.__dict__.pop("reader", None)
        super().stop()
        if reader:
            reader.stdin.close()
            reader.stdout.close()

    def state(self):
        self.reader.stdin.write("\n")
        self.reader.stdin.flush()
        return json.loads(self.reader.stdout.readline())

    def windows(self):
        found = []
        for task in self.state()["windows"]:
            icon = re.search(r'QIcon\("([^"]*)"', task["icon"])
            entry = entry_in(task["launcher"])
            found.append(window(id=task["id"], title=task["title"], app_id=task["appId"], focused=task["active"],
                                entry=entry, name=task["name"], icon=icon[1] if icon else None))
        return found

    def badges(self):
        return {entry_in(launcher): count for launcher, count in self.state()["badges"].items()}

    def knows(self, entry):
        time.sleep(3)  # Plasma says nothing about what it has read
        return True

    def screenshot(self, path):
        readable, writable = os.pipe()
        files = Gio.UnixFDList.new_from_array([writable])  # which owns it from here on
        reply, _ = self.connection.call_with_unix_fd_list_sync(
            "org.kde.KWin", "/org/kde/KWin/ScreenShot2", "org.kde.KWin.ScreenShot2", "CaptureArea",
            GLib.Variant("(iiuua{sv}h)", (0, 0, *SIZE, {}, 0)), None, Gio.DBusCallFlags.NONE, 30000, files, None)
        facts = reply.unpack()[0]
        del files
        with os.fdopen(readable, "rb") as pixels:
            data = pixels.read(facts["stride"] * facts["height"])
        subprocess.run(["convert", "-size", f"{facts['width']}x{facts['height']}", "-depth", "8", "bgra:-", "-alpha", "off",
                        path], input=data, check=True)


class PlasmaX11(OnXServer, Plasma):
    name = "plasma-x11"
    title = "Plasma, X11"
    needs = ("kwin_x11", "plasmashell", "Xvfb")

    def start_compositor(self):
        self.start_x_server()
        self.session.start(["kwin_x11", "--replace"], log="compositor")
        self.await_name("org.kde.KWin")

    def place(self, one, x, y, width, height):
        self.session.output_of(["xdotool", "windowsize", "--sync", one.id, str(width), str(height),
                                "windowmove", one.id, str(x), str(y)])
