"""A screen, a session bus and the window on them, driven as assistive technology drives it."""
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile

from accessible_window import AccessibleWindow

PROGRAMS = pathlib.Path(os.environ["KIVO_PROGRAMS"])


class Screen:
    """An X server without a screen and a session bus, for all windows of a run."""

    def __init__(self):
        reading, writing = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1400x1000x24", "-nolisten", "tcp"],
            pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as number:
            os.environ["DISPLAY"] = ":" + number.readline().strip()
        self.bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"],
                                    stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = self.bus.stdout.readline().strip()
        os.environ.update(GDK_BACKEND="x11", GSK_RENDERER="cairo", NO_AT_BRIDGE="0", GTK_A11Y="atspi",
                          GSETTINGS_BACKEND="memory", LC_ALL="C.UTF-8", LIBGL_ALWAYS_SOFTWARE="1")

    def close(self):
        for process in (self.bus, self.server):
            process.terminate()
            process.wait()


class Home:
    """The folders of one person, and the programs of Kivo in them."""

    def __init__(self):
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="kivo-app-"))
        self.environment = dict(os.environ, HOME=str(self.path / "home"))
        for name, folder in (("XDG_DATA_HOME", "data"), ("XDG_CONFIG_HOME", "config"),
                             ("XDG_RUNTIME_DIR", "run"), ("XDG_CACHE_HOME", "cache"), ("HOME", "home")):
            (self.path / folder).mkdir(mode=0o700)
            self.environment[name] = str(self.path / folder)
        self.book = self.path / "data/app.kivo.ledger/ledger.sqlite3"

    def run(self, program, *arguments, text=""):
        """Standard output of a program that must succeed."""
        done = subprocess.run([PROGRAMS / program, *arguments], input=text, text=True, capture_output=True,
                              env=self.environment, timeout=120, check=False)
        if done.returncode != 0:
            raise AssertionError(f"{program} {' '.join(arguments)}: {done.stderr}")
        return done.stdout

    def ledger(self, *arguments, text=""):
        return self.run("kivo-ledger", *arguments, text=text)

    def serve(self, program):
        """Starts the service of a program; returns what ends it."""
        service = subprocess.Popen([PROGRAMS / program, "serve"], env=self.environment, stderr=subprocess.DEVNULL)

        def end():
            service.terminate()
            service.wait()
        return end

    def import_rows(self, rows):
        """Books messages of the sender BANK, pairs of a day or a moment and a text."""
        file = self.path / "messages.csv"
        lines = ["date,sender,text"]
        for moment, text in rows:
            lines.append(f'{moment},BANK,"{text}"')
        file.write_text("\n".join(lines) + "\n", encoding="utf-8")
        self.ledger("import", str(file), "--sender", "BANK")

    def remove(self):
        shutil.rmtree(self.path)


class Window(AccessibleWindow):
    """The app, started here."""

    def __init__(self, home, *arguments):
        self.errors = (home.path / "errors").open("w+")
        self.process = subprocess.Popen([PROGRAMS / "kivo", *arguments], env=home.environment,
                                        stdout=self.errors, stderr=self.errors)
        super().__init__(lambda application: application.get_process_id() == self.process.pid)

    def press(self, key):
        """Presses a key on the window that has the focus."""
        subprocess.run(["xdotool", "key", key], check=True)

    def picture(self, path):
        subprocess.run(["import", "-window", "root", str(path)], check=True)

    def resize(self, width, height):
        number = subprocess.run(["xdotool", "search", "--sync", "--pid", str(self.process.pid), "--name", "Kivo"],
                                capture_output=True, text=True, check=True).stdout.split()[-1]
        subprocess.run(["xdotool", "windowsize", "--sync", number, str(width), str(height)], check=True)

    def complaints(self):
        self.errors.flush()
        return pathlib.Path(self.errors.name).read_text(encoding="utf-8")

    def kill(self):
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()

    def close(self):
        if self.process.poll() is None:
            self.process.terminate()
            self.process.wait()
        self.errors.close()
