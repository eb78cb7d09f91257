"""A desktop on a virtual screen: session bus, notification server and terminal are real, the folders are
its own. Ends what it started, and nothing else."""
import os
import pathlib
import re
import shutil
import signal
import subprocess
import time

from installed_kivo import PREFIX, with_unpacked

BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path={bus}</listen><servicedir>{services}</servicedir>
<auth>EXTERNAL</auth><policy context="default"><allow send_destination="*" eavesdrop="true"/>
<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>
"""
# A click does what the notification offers, as it does on a desktop.
DUNST = """[global]
origin = top-right
offset = 20x20
width = 400
timeout = 0
idle_threshold = 0
mouse_left_click = do_action, close_current
"""
# The real one, which keeps besides what it shows and which processes are its own.
TERMINAL = """#!/bin/sh
echo $$ >>'{home}/terminals'
exec /usr/bin/xterm -l -lf '{home}/shown' "$@" 2>/dev/null
"""
# Keeps the page that it is to show, and runs on as a browser does that was not running before.
RECORDING_BROWSER = """#!/bin/sh
echo $$ >>'{home}/browsers'
cp "$1" '{home}/page.new' && mv '{home}/page.new' '{home}/page'
exec sleep 600
"""
BROWSER_ENTRY = """[Desktop Entry]
Type=Application
Name=Browser
Exec=the-browser %f
MimeType=text/html;
"""
SECONDS = 60


def wait_for(condition, what):
    """What `condition` yields, as soon as that is true."""
    end = time.monotonic() + SECONDS
    while not (found := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"after {SECONDS} s still not: {what}")
        time.sleep(0.05)
    return found


def has_ended(process):
    """Also when its parent has not asked for its status."""
    try:
        return pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] == "Z"
    except (FileNotFoundError, ProcessLookupError):
        return True


class VirtualDesktop:
    """`kivo.environment` is that of its programs as well from now on. `entry` is Kivo's desktop file, and the only
    one."""

    def __init__(self, kivo, stack):
        self.kivo = kivo
        self.home = pathlib.Path(kivo.environment["HOME"])
        self._stack = stack
        self.programs = self.home / "programs"
        self.programs.mkdir()
        self.install("x-terminal-emulator", TERMINAL)
        self.entry = self._install_entry()
        (self.home / "bus.conf").write_text(BUS.format(bus=self.home / "bus", services=PREFIX / "share/dbus-1/services"))
        (self.home / "dunstrc").write_text(DUNST)
        kivo.environment |= {
            "DISPLAY": self._screen(), "PATH": f"{self.programs}:{kivo.environment['PATH']}",
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.home}/bus",
            "XDG_DATA_DIRS": str(self.home / "share"), "XDG_CONFIG_DIRS": str(self.home / "none"),
        }
        self.start("dbus-daemon", f"--config-file={self.home}/bus.conf", "--nofork")
        wait_for((self.home / "bus").exists, "the bus listens")
        self.start("dunst", "-config", self.home / "dunstrc", env=with_unpacked(kivo.environment))
        wait_for(self._has_notification_server, "the notification server is on the bus")
        stack.callback(self._close_windows)

    def install(self, name, script):
        """A program that comes before others of its name."""
        program = self.programs / name
        program.write_text(script.format(home=self.home))
        program.chmod(0o755)

    def install_browser(self, script=RECORDING_BROWSER):
        """The program for pages. The recording one keeps the page in the file `page`."""
        self.install("the-browser", script)
        (self.entry.parent / "browser.desktop").write_text(BROWSER_ENTRY)
        subprocess.run(["update-desktop-database", self.entry.parent], check=True, timeout=SECONDS)

    def _install_entry(self):
        """The installed desktop file, where no other is, made known as the package manager does that."""
        folder = self.home / "share/applications"
        folder.mkdir(parents=True)
        shutil.copy(PREFIX / "share/applications/app.kivo.expenses.desktop", folder)
        subprocess.run(["update-desktop-database", folder], check=True, timeout=SECONDS)
        return folder / "app.kivo.expenses.desktop"

    def _screen(self):
        reading, writing = os.pipe()
        self.start("Xvfb", "-displayfd", str(writing), "-screen", "0", "1000x600x24", "-nolisten", "tcp",
                    "-noreset", pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as numbers:
            return ":" + numbers.readline().strip()

    def start(self, *command, **options):
        """Starts a program that runs until the desktop ends."""
        options = {"env": self.kivo.environment} | options
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL, **options)
        self._stack.callback(process.wait, SECONDS)
        self._stack.callback(process.terminate)

    def _has_notification_server(self):
        return subprocess.run(["gdbus", "call", "--session", "--dest", "org.freedesktop.Notifications", "--object-path",
                               "/org/freedesktop/Notifications", "--method",
                               "org.freedesktop.Notifications.GetServerInformation"],
                              env=self.kivo.environment, capture_output=True, timeout=SECONDS).returncode == 0

    def _close_windows(self):
        for process in self.terminals() + self.browsers():
            try:
                os.kill(process, signal.SIGTERM)
            except ProcessLookupError:
                pass
            wait_for(lambda: has_ended(process), "the window's program has ended")  # and leaves the folders alone

    def terminals(self):
        """The processes of the terminals that were opened, also of those that have ended."""
        return self._processes("terminals")

    def browsers(self):
        """As `terminals`."""
        return self._processes("browsers")

    def _processes(self, kind):
        file = self.home / kind
        return [int(line) for line in file.read_text().split()] if file.exists() else []

    def windows(self, kind):
        """The visible windows of a class of programs."""
        return subprocess.run(["xdotool", "search", "--onlyvisible", "--class", kind], env=self.kivo.environment,
                              capture_output=True, text=True, timeout=SECONDS).stdout.split()

    def click(self, window):
        """Moves the pointer onto the window, and presses and releases the left button."""
        self.kivo.run("xdotool", "mousemove", "--window", window, "60", "20", "click", "1")

    def press(self, keys, window):
        """Moves the pointer onto the window, which has the keyboard then, and presses the keys."""
        self.kivo.run("xdotool", "mousemove", "--window", window, "60", "20", "key", keys)

    def launch(self, *command):
        """Runs a program that has to succeed, and whose windows outlive it."""
        subprocess.run(command, env=self.kivo.environment, check=True, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, timeout=SECONDS)

    def shown(self):
        """What the terminals have shown, without the escape sequences."""
        file = self.home / "shown"
        text = file.read_text(errors="replace") if file.exists() else ""
        return re.sub(r"\x1b\[[0-9;?]*[A-Za-z]", "", text)
