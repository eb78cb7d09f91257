"""A real GNOME Shell on a screen in memory, with a pointer and a keyboard of the test's."""
import json

from desktop_session import DesktopTest, Kivo, Session, end_of, run, wait_for
from gi.repository import Gio, GLib

WIDTH, HEIGHT = 1024, 768
# What the shell keeps for the calls that follow.
BEGIN = """
const {Clutter} = imports.gi;
const seat = Clutter.get_default_backend().get_default_seat();
global.kivo = {
    pointer: seat.create_virtual_device(Clutter.InputDeviceType.POINTER_DEVICE),
    keyboard: seat.create_virtual_device(Clutter.InputDeviceType.KEYBOARD_DEVICE),
    // The visible texts of an actor and of those in it.
    texts: actor => !actor.visible ? [] : [
        ...(actor.text ? [actor.text] : []), ...actor.get_children().flatMap(global.kivo.texts)],
    place: actor => [...actor.get_transformed_position(), ...actor.get_transformed_size()].map(Math.round),
};
"""
CLICK = """
const {{Clutter}} = imports.gi;
const time = () => global.get_current_time() * 1000;
global.kivo.pointer.notify_absolute_motion(time(), {x}, {y});
global.kivo.pointer.notify_button(time(), Clutter.BUTTON_PRIMARY, Clutter.ButtonState.PRESSED);
global.kivo.pointer.notify_button(time(), Clutter.BUTTON_PRIMARY, Clutter.ButtonState.RELEASED);
"""
TYPE = """
const {{Clutter}} = imports.gi;
for (const key of {keys})
    for (const state of [Clutter.KeyState.PRESSED, Clutter.KeyState.RELEASED])
        global.kivo.keyboard.notify_keyval(global.get_current_time() * 1000, key, state);
"""
ENTER = 0xFF0D


def start(session):
    """On a busy machine about one start in a hundred hangs for ever, in the shell itself: then it starts again."""
    for last in (False, False, True):
        shell = session.start("gnome-shell", "--headless", "--virtual-monitor", f"{WIDTH}x{HEIGHT}", "--no-x11",
                              "--unsafe-mode")
        try:
            return wait_for(lambda: "GNOME Shell started" in session.log("gnome-shell"), "GNOME Shell has started", 60)
        except AssertionError:
            end_of(shell)
            if last:
                raise


class GnomeShell:
    def __init__(self, session):
        run("gsettings", "set", "org.gnome.desktop.interface", "enable-animations", "false")
        start(session)
        self._bus = session.bus()
        self.evaluate(BEGIN)
        # It begins with its overview, and with a notification that nothing locks the screen.
        wait_for(lambda: self.evaluate("Main.messageTray.getSources().length"), "GNOME Shell has settled")
        self.evaluate("Main.messageTray.getSources().forEach(source => source.destroy()); Main.overview.hide()")
        wait_for(lambda: not self.banner() and not self.evaluate("Main.overview.visible"), "the desktop is shown")

    def _call(self, path, interface, method, arguments):
        return self._bus.call_sync("org.gnome.Shell", path, interface, method, arguments, None,
                                   Gio.DBusCallFlags.NONE, 30_000, None).unpack()

    def evaluate(self, script):
        """The value of the last expression of a script that runs in the shell."""
        done, value = self._call("/org/gnome/Shell", "org.gnome.Shell", "Eval", GLib.Variant("(s)", (script,)))
        if not done:
            raise AssertionError(f"the shell cannot do this: {value}\n{script}")
        return json.loads(value) if value else None

    def photograph(self, file):
        done, _ = self._call("/org/gnome/Shell/Screenshot", "org.gnome.Shell.Screenshot", "Screenshot",
                             GLib.Variant("(bbs)", (False, False, str(file))))
        assert done, f"no picture of the screen in {file}"

    def click(self, place):
        """At the middle of a place: left, top, width, height."""
        left, top, width, height = place
        self.evaluate(CLICK.format(x=left + width / 2, y=top + height / 2))

    def type(self, text):
        """A line feed is the Enter key."""
        self.evaluate(TYPE.format(keys=[ENTER if one == "\n" else ord(one) for one in text]))

    def banner(self):
        """The notification that is shown: its texts, and the places of itself and its icon; None without one."""
        return self.evaluate("""
            const {_banner: banner, _notificationState: state} = Main.messageTray;
            banner && state === imports.ui.messageTray.State.SHOWN ? ({
                texts: global.kivo.texts(banner), place: global.kivo.place(banner),
                icon: global.kivo.place(banner._iconBin.child || banner._iconBin)}) : null""")

    def open_overview(self):
        self.evaluate("Main.overview.show()")
        wait_for(lambda: self.evaluate("Main.overview.visible"), "the overview is open")

    def first_result(self):
        """The texts of what Enter would choose in the overview's search."""
        return self.evaluate("""
            const result = Main.overview._overview.controls._searchController._searchResults._defaultResult;
            result ? global.kivo.texts(result) : []""")

    def windows(self):
        """The titles of the windows."""
        return self.evaluate("global.display.list_all_windows().map(window => window.title)")

    def types_into_a_window(self):
        return self.evaluate("Boolean(global.display.focus_window)")

    def window_place(self):
        """Of the window that has the keyboard, without its shadow."""
        return self.evaluate("(({x, y, width, height}) => [x, y, width, height])"
                             "(global.display.focus_window.get_frame_rect())")

    def resize_window(self, width, height):
        self.evaluate(f"global.display.focus_window.move_resize_frame(true, 100, 100, {width}, {height})")

    def close_window(self):
        self.evaluate("global.display.focus_window.delete(global.get_current_time())")
        wait_for(lambda: not self.windows(), "the window is closed")


class GnomeShellTest(DesktopTest):
    def setUp(self):
        self.session = Session(XDG_CURRENT_DESKTOP="GNOME")
        self.addCleanup(self.session.close)
        self.kivo = Kivo(self.session)
        self.shell = GnomeShell(self.session)
        self.photograph = self.shell.photograph
