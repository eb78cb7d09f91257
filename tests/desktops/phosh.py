"""A real Phosh on a virtual screen of a phone's size, and what a finger does there."""
import json
import os

from desktop_session import HERE, DesktopTest, Kivo, Session, run, wait_for

WIDTH, HEIGHT = 360, 720
TOP_BAR = 32  # the places of controls begin below it
PHOC = f"""[core]
xwayland=false
[output:X11-1]
mode = {WIDTH}x{HEIGHT}
scale = 1
"""


class Phosh:
    def __init__(self, session):
        for key, value in (("toolkit-accessibility", "true"), ("enable-animations", "false")):
            run("gsettings", "set", "org.gnome.desktop.interface", key, value)
        self._screen = session.start_screen()
        settings = session.home / "phoc.ini"
        settings.write_text(PHOC, encoding="utf-8")
        # Its own back end for phones needs a seat, and its renderer a GPU.
        session.start("env", f"DISPLAY={self._screen}", "WLR_BACKENDS=x11", "WLR_RENDERER=pixman",
                      "phoc", "-C", settings)
        wait_for((session.runtime / os.environ["WAYLAND_DISPLAY"]).exists, "the compositor listens")
        session.start("/usr/libexec/phosh", "--unlocked")
        wait_for(lambda: self.controls(name="Search"), "Phosh shows its list of apps", 60)

    def controls(self, **about):
        """The controls that are shown, of which shown_controls.py says all of `about`."""
        lines = run("/usr/bin/python3", "-B", str(HERE / "shown_controls.py")).splitlines()
        return [control for control in map(json.loads, lines) if about.items() <= control.items()]

    def on_screen(self, control):
        left, top, width, height = control["place"]
        return left, top + TOP_BAR, width, height

    def photograph(self, file):
        run("grim", str(file))

    def tap(self, control):
        """At its middle."""
        left, top, width, height = self.on_screen(control)
        run("env", f"DISPLAY={self._screen}", "xdotool", "mousemove", str(left + width // 2), str(top + height // 2),
            "click", "1")


class PhoshTest(DesktopTest):
    def setUp(self):
        self.session = Session(XDG_CURRENT_DESKTOP="Phosh:GNOME")
        self.addCleanup(self.session.close)
        self.kivo = Kivo(self.session)
        self.phone = Phosh(self.session)
        self.photograph = self.phone.photograph

    def notified(self, message, words):
        """The controls of the notification with these words, which a message brings."""
        before = {control["window"] for control in self.phone.controls(program="phosh")}
        self.kivo.receive(message)

        def banner():
            new = [one for one in self.phone.controls(program="phosh") if one["window"] not in before]
            [window] = {one["window"] for one in new if one["name"] == words} or [None]
            return [one for one in new if one["window"] == window]

        return wait_for(banner, "the notification is shown")
