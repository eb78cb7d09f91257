"""A session in which a desktop runs, with the installed Kivo: private folders, a bus, programs and their logs. Runs in
the system that desktops_check.py makes, as an ordinary user."""
import contextlib
import datetime
import json
import os
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

from gi.repository import Gio

HERE = pathlib.Path(__file__).resolve().parent
KEPT = pathlib.Path("/srv/kivo/kept")
SECONDS = 30
MESSAGE = "Your card ending 4821 was charged EGP 150.00 at Carrefour City."
REPORT = f"Kivo: {datetime.date.today():%B %Y}"  # the title of its page
BROWSER_ENTRY = f"""[Desktop Entry]
Type=Application
Name=Browser
Exec=/usr/bin/python3 -B {HERE}/browser_window.py %u
MimeType=text/html;
NoDisplay=true
"""


def wait_for(condition, what, seconds=SECONDS):
    """What `condition` yields, as soon as that is true."""
    end = time.monotonic() + seconds
    while not (found := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"after {seconds} s it still does not hold that {what}")
        time.sleep(0.05)
    return found


def run(*command, text=""):
    """The standard output of a program that has to succeed."""
    result = subprocess.run(command, input=text, capture_output=True, text=True, timeout=60, check=False)
    if result.returncode != 0:
        raise AssertionError(f"{shlex.join(command)}: exit status {result.returncode}\n{result.stdout}{result.stderr}")
    return result.stdout


class Session:
    """Until it is closed, this process is in the session as well."""

    def __init__(self, **variables):
        self._end = contextlib.ExitStack()
        folder = tempfile.TemporaryDirectory(prefix="kivo-session-", ignore_cleanup_errors=True)
        self.home = pathlib.Path(self._end.enter_context(folder))
        self.logs = self.home / "logs"
        self.logs.mkdir()
        self.runtime = self.home / "runtime"
        self.runtime.mkdir(mode=0o700)
        before = dict(os.environ)
        self._end.callback(lambda: (os.environ.clear(), os.environ.update(before)))
        os.environ |= {
            "HOME": str(self.home), "XDG_RUNTIME_DIR": str(self.runtime), "XDG_SESSION_TYPE": "wayland",
            "WAYLAND_DISPLAY": "wayland-0", "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.runtime}/bus",
            "LIBGL_ALWAYS_SOFTWARE": "1", "GSK_RENDERER": "cairo", "WEBKIT_DISABLE_COMPOSITING_MODE": "1", **variables,
        }
        self.start("dbus-daemon", "--session", "--nofork", f"--address={os.environ['DBUS_SESSION_BUS_ADDRESS']}")
        wait_for((self.runtime / "bus").exists, "the session bus listens")

    def start(self, *command, **options):
        """Runs a program until the end of the session. Its output is the log of its name."""
        name = pathlib.Path(command[0]).name
        with open(self.logs / f"{name}.log", "a", encoding="utf-8") as log:
            program = subprocess.Popen(command, cwd=self.home, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                       **options)
        self._end.callback(end_of, program)
        return program

    def start_screen(self):
        """The display of a new virtual screen."""
        file = self.home / "display"
        with open(file, "wb") as written:
            self.start("Xvfb", "-displayfd", str(written.fileno()), "-screen", "0", "800x900x24", "-nolisten", "tcp",
                       pass_fds=[written.fileno()])
        wait_for(lambda: file.read_text().endswith("\n"), "the virtual screen is there")
        return f":{file.read_text().strip()}"

    def bus(self):
        """A connection of this process's own, which a second session would not share."""
        kind = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        return Gio.DBusConnection.new_for_address_sync(os.environ["DBUS_SESSION_BUS_ADDRESS"], kind, None, None)

    def log(self, name):
        return (self.logs / f"{name}.log").read_text(errors="replace")

    def close(self):
        self._end.close()


def end_of(program):
    program.terminate()
    try:
        program.wait(10)
    except subprocess.TimeoutExpired:
        program.kill()
        program.wait()


class Kivo:
    """The installed programs, signed in to the ledger on this machine."""

    def __init__(self, session):
        session.start("kivo-ledger", "serve")
        wait_for((session.runtime / "kivo/ledger.sock").exists, "the ledger listens")
        run("kivo-phone", "sign-in", "--local", "--currency", "EGP")
        run("kivo-phone", "notifications", "authorized")
        entries = session.home / ".local/share/applications"
        entries.mkdir(parents=True)
        (entries / "browser.desktop").write_text(BROWSER_ENTRY, encoding="utf-8")
        run("update-desktop-database", str(entries))

    def receive(self, text):
        """What the bank writes, as an automation hands it over."""
        return run("kivo-intents", "perform", "ProcessSMSIntent", "--smsText", "-", text=text)

    def booked(self):
        """Amount and description of each entry."""
        return [(entry["amount"], entry["description"]) for entry in self.entries("list")]

    def entries(self, command):
        """Those that a command of the ledger lists."""
        return json.loads(run("kivo-ledger", command, "--json"))


class DesktopTest(unittest.TestCase):
    """Has a `session`, and `photograph` of its desktop. A test that fails leaves its last picture and its logs in the
    folder of its name."""

    def picture(self, name):
        """A new picture of the screen."""
        file = self.folder() / f"{name}.png"
        self.photograph(file)
        return file

    def folder(self):
        folder = KEPT / self._testMethodName.removeprefix("test_")
        folder.mkdir(exist_ok=True)
        return folder

    def keep(self):
        shutil.copytree(self.session.logs, self.folder(), dirs_exist_ok=True)
        with contextlib.suppress(Exception):  # the desktop may have ended, and the test says more
            self.picture("failed")


class _KeepingResult(unittest.TextTestResult):
    def addFailure(self, test, error):
        test.keep()
        super().addFailure(test, error)

    def addError(self, test, error):
        test.keep()
        super().addError(test, error)


def main():
    unittest.main(module=sys.modules["__main__"],
                  testRunner=unittest.TextTestRunner(resultclass=_KeepingResult, verbosity=2))
