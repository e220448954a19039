"""Xfce and sway, which show windows without asking for their menu entries."""
import json
import os
import shutil

from desktop import SIZE, Desktop, OnXServer, wait_for, window


class Xfce(OnXServer, Desktop):
    name = "xfce"
    title = "Xfce, X11"
    needs = ("xfwm4", "xfce4-panel", "xfsettingsd", "Xvfb")
    matches_entries = False

    def configure(self):
        self.session.environment.update(XDG_SESSION_TYPE="x11", XDG_CURRENT_DESKTOP="XFCE", XDG_MENU_PREFIX="xfce-",
                                        XDG_CONFIG_DIRS="/etc/xdg")
        default_panel = "/etc/xdg/xfce4/panel/default.xml"  # without it, the panel asks what to be like
        if os.path.exists(default_panel):
            with open(default_panel) as file:
                self.session.write(".config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", file.read())

    def boot(self):
        self.start_x_server()
        self.tell_bus()
        for program in ("xfsettingsd", "xfwm4", "xfce4-panel"):
            self.session.start([program])
        if not wait_for(lambda: "_NET_ACTIVE_WINDOW" in self.session.output_of(["xprop", "-root"]), 60):
            raise RuntimeError("xfwm4 does not come up: " + self.session.log_text("xfwm4"))

    def windows(self):
        return self.x_windows()


class Sway(Desktop):
    name = "sway"
    title = "sway"
    needs = ("sway", "swaymsg", "Xwayland")
    matches_entries = False

    def configure(self):
        self.session.environment.update(XDG_SESSION_TYPE="wayland", XDG_CURRENT_DESKTOP="sway", WLR_BACKENDS="headless",
                                        WLR_RENDERER="pixman", WLR_LIBINPUT_NO_DEVICES="1")

    def boot(self):
        script = self.session.base + "/out/configuration"
        told = self.session.base + "/out/displays"
        with open(script, "w") as file:
            file.write(f"output HEADLESS-1 resolution {SIZE[0]}x{SIZE[1]}\nxwayland force\nseat * fallback true\n"
                       f"exec env >{told}.new && mv {told}.new {told}\n")
        self.session.start(["sway", "-c", script], log="compositor")
        self.read_displays(told)
        self.tell_bus()

    def windows(self):
        found = []
        folders = [json.loads(self.session.output_of(["swaymsg", "-t", "get_tree"]))]
        while folders:
            node = folders.pop()
            folders += node.get("nodes", []) + node.get("floating_nodes", [])
            if node.get("pid") and node.get("type") in ("con", "floating_con"):
                x11 = node.get("window_properties") or {}
                found.append(window(id=node["id"], title=node["name"] or "", app_id=node.get("app_id") or x11.get("class"),
                                    instance=x11.get("instance"), focused=node["focused"]))
        return found

    def screenshot(self, path):
        inside = self.session.base + "/out/picture.png"
        self.session.output_of(["grim", inside])
        shutil.move(inside, path)
