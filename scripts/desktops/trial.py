#!/usr/bin/python3
"""Clones installed applications in a desktop's session, and prints what the desktop makes of them, one line of
JSON for each. table.py makes a table of such lines.
Usage: trial.py BUILD DESKTOP [APPLICATION...] [--without-focus]"""
import json
import os
import shlex
import signal
import subprocess
import sys
import time

from gi.repository import Gio

sys.dont_write_bytecode = True

from desktop import Forbidden, wait_for
from gnome import Gnome, GnomeX11
from others import Sway, Xfce
from plasma import Plasma, PlasmaX11

DESKTOPS = {desktop.name: desktop for desktop in (Gnome, GnomeX11, Plasma, PlasmaX11, Xfce, Sway)}
NO_BUS = "DBUS_SESSION_BUS_ADDRESS=disabled:"
# Name, desktop entry, what is configured beside what `quorvelctl create` chooses.
APPS = {
    "gedit": ("gedit (GTK 3)", "org.gnome.gedit", []),
    "mousepad": ("Mousepad (GTK 3)", "org.xfce.mousepad", []),
    "text-editor": ("Text Editor (GTK 4)", "org.gnome.TextEditor", []),
    "calculator": ("Calculator (GTK 4, with the bus)", "org.gnome.Calculator", []),
    "calculator-no-bus": ("Calculator, `" + NO_BUS + "`", "org.gnome.Calculator", ["--env", NO_BUS]),
    "featherpad": ("FeatherPad (Qt)", "featherpad", []),
    "kcalc": ("KCalc (KDE)", "org.kde.kcalc", []),
    "kcalc-x11": ("KCalc, `QT_QPA_PLATFORM=xcb`", "org.kde.kcalc", ["--env", "QT_QPA_PLATFORM=xcb"]),
    "firefox": ("Firefox", "firefox-esr", []),
    "chromium": ("Chromium", "chromium", []),
    "web": ("a web clone", None, ["--kind", "web"]),
}
COUNTS = {"Work": 3, "Home": 5}  # of what is unread in a web clone
LONGEST_START = 60
JUST_STARTED = 11  # seconds in which "open" reports success for a clone, since its window is coming


class Clone:
    def __init__(self, session, name, color, record):
        self.name = name
        self.color = color
        self.bundle = record["bundleURL"]
        folder = session.home + "/.local/share/applications/"
        for file in os.listdir(folder):
            with open(folder + file) as text:
                own = text.read().split("\n[")[0]  # without its actions
            facts = dict(line.split("=", 1) for line in own.splitlines() if "=" in line)
            if facts.get("X-Quorvel-Clone") == self.bundle:
                self.entry, self.word, self.icon = file, facts["StartupWMClass"], facts["Icon"]


def install(build, session):
    """Quorvel, where such a build is installed if no other prefix is chosen."""
    subprocess.run(["cmake", "--install", build, "--prefix", session.base + "/quorvel"], check=True,
                   stdout=subprocess.DEVNULL)


def picture_of(session, color):
    """An icon for clones whose targets have none."""
    picture = f"{session.base}/out/{color[1:]}.png"
    subprocess.run(["convert", "-size", "64x64", "xc:" + color, picture], check=True)
    return picture


def serve_pages(session):
    """A page for each web clone that says in its title how much is unread."""
    folder = session.base + "/out/site"
    os.mkdir(folder)
    for word, count in COUNTS.items():
        with open(f"{folder}/{word}.html", "w") as page:
            page.write(f"<!doctype html><title>({count}) Mail</title><p>Mail of {word}")
    session.start(["python3", "-m", "http.server", "8123", "-d", folder], log="site")


def create(desktop, app):
    _, entry, options = APPS[app]
    if entry is None:
        serve_pages(desktop.session)
    clones = []
    for word, color in (("Work", "#FF00FF"), ("Home", "#00FF00")):
        name = f"{app} {word}"  # unique, since desktops reread entries only now and then
        looks = ["--target", entry + ".desktop", "--label", word[0], "--label-color", color] if entry else \
            ["--icon", picture_of(desktop.session, color), "--url", f"http://127.0.0.1:8123/{word}.html"]
        command = ["quorvelctl", "create", "--name", name, *looks, "--replace", "--json", *options]
        record = json.loads(desktop.session.output_of(command))
        if entry == "chromium" and desktop.session.run(["unshare", "--user", "true"]).returncode != 0:
            arguments = [*record["config"]["extraArgs"], "--no-sandbox"]  # containers may forbid it
            record = json.loads(desktop.session.output_of(command + ["--extra-arg=" + one for one in arguments]))
        clones.append(Clone(desktop.session, name, color, record))
    if not wait_for(lambda: all(desktop.knows(clone.entry) for clone in clones), 60):
        raise RuntimeError(f"{desktop.title} does not know the entries of the clones")
    return clones


def new_window(desktop, before):
    """The window that came last, when no more are coming."""
    known = {one.id for one in before}

    def found():
        return [one for one in desktop.windows() if one.id not in known]
    if not wait_for(found, LONGEST_START, 0.3):
        return None
    time.sleep(2)
    return (found() or [None])[-1]


def start_original(desktop, entry, *documents):
    """Starts the application itself as a menu would."""
    info = Gio.DesktopAppInfo.new_from_filename(f"/usr/share/applications/{entry}.desktop")
    command = [word for word in shlex.split(info.get_commandline()) if not word.startswith("%")]
    desktop.session.start([*command, *documents], log="original")


def open_all(desktop, clones, entry):
    """The windows of the clones, and that of the application itself, which comes last."""
    windows = []
    for clone in clones:
        before = desktop.windows()
        desktop.session.output_of(["quorvelctl", "open", clone.name])
        windows.append(new_window(desktop, before))
    before = desktop.windows()
    if entry:
        start_original(desktop, entry)
    windows.append(new_window(desktop, before) if entry else None)
    return windows


def refreshed(desktop, windows):
    """A desktop may change its mind when more windows come."""
    now = {one.id: one for one in desktop.windows()}
    return [one and now.get(one.id) for one in windows]


def is_taken_for(desktop, clone, window):
    """Whether the desktop shows the window under the clone's entry, or would if it looked for entries."""
    if not desktop.matches_entries:
        names = (clone.word, clone.entry.removesuffix(".desktop"))
        return window.app_id in names or window.instance in names
    return window.entry == clone.entry


def is_nobodys_clone(desktop, clones, window):
    """Whether there is such a window, and none of the clones has taken it over."""
    return window is not None and not any(is_taken_for(desktop, clone, window) for clone in clones)


def match(desktop, clone, window):
    """How the desktop sees a clone's window: facts that are true, false, or None if it has none."""
    if window is None:
        return {"window": False}
    entry = is_taken_for(desktop, clone, window)
    if not desktop.matches_entries:
        return {"window": True, "entry": entry, "name": None, "icon": None}
    return {"window": True, "entry": entry, "name": window.name == clone.name,
            "icon": window.icon == clone.icon and desktop.has_color(clone.entry, clone.color)}


def badges(desktop, clones):
    """Whether each clone's own number is shown, and gone when the clone has ended; None where none is shown."""
    if desktop.badges() is None:
        return None

    def shown():
        return [desktop.badges().get(clone.entry) for clone in clones]
    own = bool(wait_for(lambda: shown() == list(COUNTS.values()), 20))
    for clone in clones:
        desktop.session.output_of(["quorvelctl", "stop", clone.name])
    return {"shown": own, "withdrawn": bool(wait_for(lambda: not any(shown()), 20))}


def focus(desktop, clone, window):
    """Whether opening a running clone brings its window to the front, and whether that is what is reported."""
    if window is None:
        return None
    answer = desktop.session.run(["quorvelctl", "open", clone.name])
    done = bool(wait_for(lambda: any(one.focused and one.id == window.id for one in desktop.windows()), 5))
    text = (answer.stderr or answer.stdout).strip()
    return {"done": done, "reported": answer.returncode == 0 and not text, "text": text}


def focus_by_button(desktop, clones):
    """As a user does it, since some desktops permit it only for a click. Whether it brings a clone's window to the
    front: "done", "new" if that is another window than before, or None."""
    before = desktop.windows()
    desktop.session.start(["quorvel"])
    own = new_window(desktop, before)
    left, top, *_ = desktop.frame(own)
    found = {}
    for row, clone in enumerate(sorted(clones, key=lambda one: one.name)):
        desktop.click(left + 100, top + 149 + 38 * row)  # its row in the list
        time.sleep(1)
        desktop.click(left + 354, top + 220)  # the button
        front = wait_for(lambda: [one for one in desktop.windows() if one.focused and one.entry == clone.entry], 8)
        found[clone.name] = front and ("done" if front[0].id in [one.id for one in before] else "new")
        desktop.press("Escape")  # what it says if it can't
        desktop.on_window(own, "one.activate(global.get_current_time())")
        time.sleep(1)
    return [found[clone.name] for clone in clones]


def end_all(desktop, others):
    for number in desktop.session.processes():
        if number not in others:
            try:
                os.kill(number, signal.SIGKILL)
            except ProcessLookupError:
                pass


def try_app(desktop, app, with_focus=True):
    others = desktop.session.processes()
    clones = create(desktop, app)
    windows = refreshed(desktop, open_all(desktop, clones, APPS[app][1]))
    original = windows[-1]
    report = {"desktop": desktop.title, "application": APPS[app][0],
              "clones": [match(desktop, clone, one) for clone, one in zip(clones, windows)],
              "original": APPS[app][1] is None or is_nobodys_clone(desktop, clones, original),
              "windows": [vars(one) if one else None for one in windows]}
    if with_focus:
        time.sleep(JUST_STARTED if desktop.wayland else 2)
        report["focus"] = [focus(desktop, clone, one) for clone, one in zip(clones, windows)]
        if desktop.needs_click:
            for facts, result in zip(report["focus"], focus_by_button(desktop, clones)):
                if facts and result:
                    facts.update(done=True, button=True, new=result == "new")
    if APPS[app][1] is None:
        report["badge"] = badges(desktop, clones)
    for clone in clones:
        desktop.session.run(["quorvelctl", "delete", clone.name, "--including-data", "--yes"])
    end_all(desktop, others)
    wait_for(lambda: not {one.id for one in windows if one} & {one.id for one in desktop.windows()}, 10)
    return report


class Own:
    """What Quorvel's own menu entry says."""
    name, entry, icon, word, color = "Quorvel", "app.quorvel.Quorvel.desktop", "app.quorvel.Quorvel", "quorvel", "#FFFFFF"


def try_quorvel(desktop):
    """Quorvel's own window."""
    others = desktop.session.processes()
    wait_for(lambda: desktop.knows(Own.entry), 30)
    before = desktop.windows()
    desktop.session.start(["quorvel"])
    shown = new_window(desktop, before)
    report = {"desktop": desktop.title, "application": "Quorvel itself", "clones": [match(desktop, Own, shown)],
              "original": True, "windows": [vars(shown) if shown else None]}
    end_all(desktop, others)
    wait_for(lambda: len(desktop.windows()) <= len(before), 10)
    return report


def end(*_):
    signal.signal(signal.SIGTERM, signal.SIG_IGN)  # nothing may interrupt the end
    sys.exit(1)


def main(arguments):
    options = [one for one in arguments if one.startswith("--")]
    build, name, *apps = [one for one in arguments if not one.startswith("--")]
    signal.signal(signal.SIGTERM, end)
    desktop = DESKTOPS[name]()
    missing = desktop.missing()
    if missing:
        print(f"{desktop.title}: {', '.join(missing)} not installed", file=sys.stderr)
        return 77
    try:
        desktop.start(lambda session: install(build, session))
        for app in apps or ["quorvel", *APPS]:
            if app == "quorvel":
                print(json.dumps(try_quorvel(desktop)), flush=True)
                continue
            if APPS[app][1] and not os.path.exists(f"/usr/share/applications/{APPS[app][1]}.desktop"):
                print(f"{APPS[app][1]} is not installed", file=sys.stderr)
                continue
            print(json.dumps(try_app(desktop, app, "--without-focus" not in options)), flush=True)
    except Forbidden as reason:
        print(f"no namespaces: {reason}", file=sys.stderr)
        return 77
    finally:
        desktop.stop()
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
