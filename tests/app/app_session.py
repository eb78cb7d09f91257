"""A screen, a session bus and the window on them, driven as assistive technology drives it."""
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time

PROGRAMS = pathlib.Path(os.environ["KIVO_PROGRAMS"])
PATIENCE = 20


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


class Window:
    """The running app, found by what a screen reader finds."""

    def __init__(self, home, *arguments):
        self.errors = (home.path / "errors").open("w+")
        self.process = subprocess.Popen([PROGRAMS / "kivo", *arguments], env=home.environment,
                                        stdout=self.errors, stderr=self.errors)
        self.application = self.wait(self._application, "the application")

    def _application(self):
        import pyatspi
        for application in pyatspi.Registry.getDesktop(0):
            if application is not None and application.get_process_id() == self.process.pid:
                return application if application.childCount > 0 else None
        return None

    def forget(self):
        """Has the library ask again for what it knows of the window."""
        application = getattr(self, "application", None)
        if application is not None:
            application.clear_cache()

    def wait(self, condition, what):
        """What `condition` returns as soon as that is true."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            try:
                self.forget()
                found = condition()
            except Exception:  # pylint: disable=broad-except  # an object that has gone meanwhile
                found = None
            if found:
                return found
            time.sleep(0.05)
        raise AssertionError(f"waited in vain for {what}; on the screen: {self.texts()}")

    def walk(self, node=None):
        """All objects, also those that are not shown."""
        if node is None:
            node = self.application
        yield node
        for child in node:
            if child is not None:
                yield from self.walk(child)

    def shown(self):
        """The objects of the window, also those of its other pages, without those that are hidden."""
        import pyatspi

        def below(node):
            states = node.getState()
            if node.getRole() != pyatspi.ROLE_APPLICATION and not states.contains(pyatspi.STATE_VISIBLE):
                return
            yield node
            for child in node:
                if child is not None:
                    yield from below(child)
        return below(self.application)

    def nodes(self):
        """These objects with their names, in which a blank that does not break is a blank."""
        return [(node, (node.name or "").replace("\u00a0", " ")) for node in self.shown()]

    def texts(self):
        try:
            return [name for _, name in self.nodes() if name and not name.startswith(("Adw", "Gtk"))]
        except Exception as why:  # pylint: disable=broad-except
            return [f"nothing readable: {why}"]

    def find(self, role, name):
        """The object of a role that is called `name`, else whose name holds it; waits for it."""
        def found():
            nodes = [(node, text) for node, text in self.nodes() if node.getRoleName() == role]
            exact = [node for node, text in nodes if text == name]
            return (exact or [node for node, text in nodes if name in text] or [None])[0]
        return self.wait(found, f"the {role} “{name}”")

    def shows(self, text):
        """Waits for a text."""
        return self.wait(lambda: any(text in name for _, name in self.nodes()), f"“{text}”")

    def lacks(self, text):
        """Waits until a text has gone."""
        return self.wait(lambda: not any(text in name for _, name in self.nodes()), f"“{text}” to go")

    def click(self, name, role="push button"):
        self.find(role, name).queryAction().doAction(0)

    def is_selected(self, page):
        """Whether the tab of a page is the chosen one."""
        import pyatspi
        return any(node.getRoleName() == "page tab" and text == page
                   and node.getState().contains(pyatspi.STATE_SELECTED) for node, text in self.nodes())

    def go(self, page):
        self.click(page, "page tab")

    def field(self, name):
        """The text field of a row called `name`."""
        def found():
            for node, text in self.nodes():
                if text == name and node.getRoleName() in ("text", "entry"):
                    return node
            return None
        return self.wait(found, f"the field “{name}”")

    def type_into(self, name, text):
        self.field(name).queryEditableText().setTextContents(text)

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
