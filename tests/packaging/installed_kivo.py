"""The installed Kivo in $KIVO_INSTALLED, with a private home and a sign-in at a loopback backend.
Does not use the home, bus or network of the user."""
import contextlib
import os
import pathlib
import re
import subprocess
import tempfile

from loopback_backend import Backend

PREFIX = pathlib.Path(os.environ["KIVO_INSTALLED"])
UNPACKED = pathlib.Path(os.environ["KIVO_SOURCE"]) / "build/unpacked"  # packages that scripts/setup unpacks


def with_unpacked(environment):
    """`environment` in which the programs of unpacked packages are found, with their libraries."""
    folders = (UNPACKED / "usr/lib", *UNPACKED.glob("usr/lib/*-linux-gnu*"), *UNPACKED.glob("lib/*-linux-gnu*"))
    return environment | {"PATH": f"{environment['PATH']}:{UNPACKED}/usr/sbin:{UNPACKED}/usr/bin",
                          "LD_LIBRARY_PATH": ":".join(str(folder) for folder in folders)}


def listed_commands(printed):
    """The commands that a text of --help lists, under whichever headings."""
    parts = re.split(r"(?m)^(?=\w[\w ]*:)", printed)
    lists = [part for part in parts if not part.startswith(("Usage:", "Positionals:", "Options:"))]
    return [name for part in lists for name in re.findall(r"(?m)^  (\w[\w-]*)  ", part)]


class InstalledKivo:
    """`environment` finds its programs first, and keeps data in folders of its own, signed in to a backend
    of its own; no bus."""

    def __init__(self):
        self._end = contextlib.ExitStack()
        self.folder = pathlib.Path(self._end.enter_context(tempfile.TemporaryDirectory(prefix="kivo-home-")))
        self.backend = Backend()
        self._end.callback(self.backend.close)
        home = self.folder / "home"
        home.mkdir()
        self.environment = {
            "PATH": f"{PREFIX}/bin:/usr/sbin:/usr/bin:/sbin:/bin", "HOME": str(home), "LC_ALL": "C.UTF-8",
            "XDG_RUNTIME_DIR": str(home), "TERM": "dumb",
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={home}/no-bus",
        }
        self.run("kivo-phone", "sign-in", "--user-id", "u", "--url", self.backend.url, "--currency", "EGP")

    def run(self, *command, **options):
        """The standard output of a program that has to succeed."""
        return subprocess.run(command, env=self.environment, check=True, stdout=subprocess.PIPE, text=True,
                              timeout=60, **options).stdout

    def close(self):
        self._end.close()


@contextlib.contextmanager
def running(*command, **options):
    """A daemon that is ended, by its number, with the block."""
    process = subprocess.Popen(command, **options)
    try:
        yield process
    finally:
        process.terminate()
        try:
            process.wait(30)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
