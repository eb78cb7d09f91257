#!/usr/bin/env python3
"""Tries Debian packages of Kivo on real desktops, in a Debian 12 of their own, as an ordinary user.

    desktops_check.py INTENTS.deb WINDOW.deb [TEST]...    all without a name

Pictures and, where something failed, logs are then in build/desktops/. The system with the desktops is kept in
build/clean-root/ for a week. Needs root and mounts; exit status 77 where they are missing.
"""
import contextlib
import pathlib
import shutil
import subprocess
import sys
import time

TREE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TREE / "tests/packaging"))
from clean_root import ALICE, KEPT, CannotBeMade, CleanRoot, is_fresh  # noqa: E402

ARCHIVE = KEPT / "desktops.tar"
PACKAGES = """
    gnome-shell gjs gnome-console phosh phoc xvfb xdotool grim chatty
    at-spi2-core dbus desktop-file-utils gir1.2-webkit2-4.1 libfile-mimeinfo-perl librsvg2-common xdg-utils
    fonts-cantarell fonts-dejavu-core fonts-noto-color-emoji python3-dbus python3-gi
    python3-pyatspi
"""
TESTS = ("gnome_shell_test", "phosh_test", "chatty_test")
WINDOW_TESTS = ("gnome_shell_window_test", "phosh_window_test")  # where the window is installed, too
SECONDS = 300  # for all of them
FOUND = TREE / "build/desktops"


def archive():
    """The archive of a system with the desktops, which is made where it is missing, old or has other packages."""
    of = ARCHIVE.with_suffix(".packages")
    if is_fresh(ARCHIVE) and of.exists() and of.read_text() == PACKAGES:
        return ARCHIVE
    fresh = ARCHIVE.with_suffix(".new.tar")
    with contextlib.closing(CleanRoot()) as root:
        root.root(f"apt-get install -qq --no-install-recommends {' '.join(PACKAGES.split())}", seconds=900)
        subprocess.run(["tar", "--create", "--file", fresh, "--one-file-system", "--numeric-owner",
                        "--exclude=./dev/*", "--exclude=./var/lib/apt/lists/*", "--directory", root.folder, "."],
                       check=True, timeout=900)
    of.write_text(PACKAGES)
    fresh.rename(ARCHIVE)
    return ARCHIVE


def install(root, package):
    shutil.copy(package, root.folder / "package.deb")
    root.root("apt-get install -qq --no-install-recommends /package.deb")


def desktops(stack, package):
    """The system with Kivo and the tests, until the end of `stack`; and with its bus, without a service manager."""
    root = stack.enter_context(contextlib.closing(CleanRoot(made_of=archive())))
    install(root, package)
    shutil.copytree(TREE / "tests", root.folder / "srv/kivo/tests")
    root.root("chmod -R a+rX /srv/kivo && install -d -o alice /srv/kivo/kept"
              " && mkdir -p /run/dbus && dbus-daemon --system --fork")
    return root


def try_out(root, test, end):
    """Whether a test passes before `end`."""
    command = root.command("/usr/bin/python3", "-B", f"/srv/kivo/tests/desktops/{test}.py", user="alice")
    print(f"desktops: {test}", flush=True)
    try:
        return subprocess.run(command, env=ALICE, stdin=subprocess.DEVNULL, timeout=max(1, end - time.monotonic()),
                              check=False).returncode == 0
    except subprocess.TimeoutExpired:
        print(f"desktops: {test} was not done {SECONDS} s after the first one began")
        return False


def chosen(tests, names):
    return [test for test in tests if not names or test in names]


def failing(root, intents_alone, with_window, window):
    """The tests that fail, of those of a system with the extension alone and of those of one with the window too."""
    end = time.monotonic() + SECONDS
    failed = [test for test in intents_alone if not try_out(root, test, end)]
    if with_window:
        install(root, window)
        failed += [test for test in with_window if not try_out(root, test, end)]
    return failed


def main(intents, window, *names):
    with contextlib.ExitStack() as stack:
        begin = time.monotonic()
        try:
            root = desktops(stack, intents)
        except CannotBeMade as reason:
            print(f"desktops: not tried: {reason}")
            sys.exit(77)
        ready = time.monotonic()
        failed = failing(root, chosen(TESTS, names), chosen(WINDOW_TESTS, names), window)
        shutil.rmtree(FOUND, ignore_errors=True)
        shutil.copytree(root.folder / "srv/kivo/kept", FOUND)
    print(f"desktops: {time.monotonic() - ready:.0f} s, after {ready - begin:.0f} s for the system;"
          f" pictures and logs are in {FOUND.relative_to(TREE)}/")
    if failed:
        sys.exit(f"desktops: failed: {', '.join(failed)}")


if __name__ == "__main__":
    main(*sys.argv[1:])
