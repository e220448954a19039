#!/usr/bin/python3
"""Takes the pictures of real desktops that the documents show.
Usage: pictures.py BUILD FOLDER [grid] [gnome] [plasma] [web]"""
import json
import os
import signal
import subprocess
import sys
import threading
import time

from gi.repository import Gio, GLib

sys.dont_write_bytecode = True
from desktop import Desktop, OnXServer  # noqa: E402
from gnome import Gnome, GnomeX11  # noqa: E402
from plasma import PlasmaX11  # noqa: E402
from session import wait_for  # noqa: E402
from trial import end, install, new_window, start_original  # noqa: E402

SETTINGS = """<node><interface name="org.freedesktop.portal.Settings">
<method name="Read"><arg direction="in" type="s"/><arg direction="in" type="s"/><arg direction="out" type="v"/></method>
</interface></node>"""
APP = ("org.xfce.mousepad", "Mousepad")
NOTES = {"Work": "Signed in as anna@office.example\n\nMeeting at ten\n",
         "Home": "Signed in as anna@family.example\n\nBread, milk, apples\n",
         None: "The original, as it always was\n"}


def announce_dark(desktop):
    """Answers, as a portal does, that the user prefers dark windows."""
    desktop.is_on_bus("org.freedesktop.portal.Desktop")  # which connects

    def answer(connection, sender, path, interface, method, arguments, invocation):
        invocation.return_value(GLib.Variant("(v)", (GLib.Variant("v", GLib.Variant("u", 1)),)))
    interface = Gio.DBusNodeInfo.new_for_xml(SETTINGS).interfaces[0]
    desktop.connection.register_object("/org/freedesktop/portal/desktop", interface, answer, None, None)
    desktop.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                 GLib.Variant("(su)", ("org.freedesktop.portal.Desktop", 0)))
    threading.Thread(target=GLib.MainLoop().run, daemon=True).start()


def create(desktop, name, label, color, *options):
    record = json.loads(desktop.session.output_of(["quorvelctl", "create", "--name", name, "--label", label,
                                                   "--label-color", color, "--json", *options]))
    return record["bundleURL"]


def save(desktop, path, area=None):
    desktop.screenshot(path)
    if area:
        x, y, width, height = area
        subprocess.run(["convert", path, "-crop", f"{width}x{height}+{x}+{y}", "+repage", path], check=True)
    subprocess.run(["pngquant", "--force", "--skip-if-larger", "--output", path, path], check=False)
    subprocess.run(["optipng", "-quiet", path], check=True)
    print(path, os.path.getsize(path), flush=True)


def take_grid(build, path, dark):
    """Quorvel's own window with the applications that are installed."""
    desktop = GnomeX11()
    try:
        desktop.start(lambda session: install(build, session))
        if dark:
            announce_dark(desktop)
        create(desktop, "Firefox (Work)", "WORK", "#F5C211", "--target", "firefox-esr.desktop")
        create(desktop, "Firefox (Home)", "HOME", "#57E389", "--target", "firefox-esr.desktop")
        create(desktop, "Text Editor (Work)", "WORK", "#F5C211", "--target", "org.gnome.TextEditor.desktop")
        before = desktop.windows()
        desktop.session.start(["quorvel"])
        quorvel = new_window(desktop, before)
        desktop.session.output_of(["xdotool", "key", "ctrl+n"])
        time.sleep(8)  # until all icons are drawn
        x, y, width, height = desktop.frame(quorvel)
        save(desktop, path, (x, y, width, height))
    finally:
        desktop.stop()


def open_three(desktop, entry, name):
    """Two clones and the application itself, each with a note in its own home."""
    windows = []
    for word, text in NOTES.items():
        clone = f"{name} {word}"
        home = f"{desktop.session.home}/QuorvelInstances/{clone}" if word else desktop.session.home
        note = f"{home}/{(word or 'Original').lower()}.txt"
        if word:
            create(desktop, clone, word.upper(), "#F5C211" if word == "Work" else "#57E389",
                   "--target", entry + ".desktop", "--extra-arg", note)
            time.sleep(6)  # until the desktop has read the entry
        desktop.session.write(note, text)
        desktop.session.give_to_user()
        before = desktop.windows()
        if word:
            desktop.session.output_of(["quorvelctl", "open", clone])
        else:
            start_original(desktop, entry, note)
        windows.append(new_window(desktop, before))
    return windows


def take_gnome(build, path, dark):
    desktop = Gnome()
    try:
        desktop.start(lambda session: install(build, session))
        if dark:
            desktop.session.environment["GTK_THEME"] = "Adwaita:dark"
        for index, one in enumerate(open_three(desktop, *APP)):
            desktop.place(one, 10 + index * 425, 50, 410, 270)
        time.sleep(2)
        desktop.clear_notices()
        time.sleep(1)
        desktop.hold_switcher()  # which shows each with its name
        time.sleep(2)
        save(desktop, path)
    finally:
        desktop.stop()


def take_plasma(build, path):
    desktop = PlasmaX11()
    try:
        desktop.start(lambda session: install(build, session))
        for index, one in enumerate(open_three(desktop, *APP)):
            desktop.place(one, 10 + index * 425, 40, 410, 400)
        time.sleep(3)
        save(desktop, path)
    finally:
        desktop.stop()


class WindowManager(OnXServer, Desktop):
    """No desktop, so that nothing is beside the window."""
    def boot(self):
        self.start_x_server()
        self.session.start(["openbox", "--sm-disable"])

    def windows(self):
        return self.x_windows()


def take_web(build, path, dark):
    """The window of a web clone, with a page that lies beside this program."""
    folder = os.path.dirname(os.path.abspath(__file__))
    desktop = WindowManager()
    try:
        desktop.start()
        session = desktop.session
        session.environment.update(PATH=f"{build}/bin:" + session.environment["PATH"],
                                   QUORVEL_WEB_HOST=f"{build}/bin/quorvel-web-host.so")
        session.start(["python3", "-m", "http.server", "8123", "-d", folder], log="site")
        session.output_of(["quorvelctl", "create", "--kind", "web", "--name", "Meadow Mail",
                           "--url", "http://localhost:8123/mail.html"])
        data = "QuorvelInstances/Meadow Mail/.local/share/quorvel/web"
        session.write(f"{data}/settings.json", json.dumps({"colors": "dark" if dark else "light"}))
        session.give_to_user()
        session.output_of(["quorvelctl", "open", "Meadow Mail"])
        found = wait_for(lambda: [one for one in desktop.windows() if "Inbox" in one.title], 60)
        if not found:
            raise RuntimeError("no window: " + session.log_text("site"))
        session.output_of(["xdotool", "windowsize", "--sync", found[0].id, "900", "480",
                           "windowmove", "--sync", found[0].id, "0", "0"])
        time.sleep(3)  # until the page is drawn again
        save(desktop, path, (0, 0, 900, 480))
    finally:
        desktop.stop()


def main(build, folder, *names):
    signal.signal(signal.SIGTERM, end)
    os.makedirs(folder, exist_ok=True)
    for name in names or ("grid", "gnome", "plasma", "web"):
        if name == "plasma":
            take_plasma(build, f"{folder}/plasma.png")
            continue
        take, file = {"grid": (take_grid, "grid"), "gnome": (take_gnome, "side-by-side"),
                      "web": (take_web, "web-clone")}[name]
        for look in ("light", "dark"):
            take(build, f"{folder}/{file}-{look}.png", look == "dark")


if __name__ == "__main__":
    main(*sys.argv[1:])
