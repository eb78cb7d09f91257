#!/usr/bin/env python3
"""Installs the Debian packages of Kivo in a clean Debian 12, uses them there as a person would, and removes them.

    package_check.py KIVO-INTENTS.deb KIVO.deb KIVO-SERVER.deb

A backend on loopback stands in for the real one. Needs root and mounts, and says so where they are missing.
"""
import contextlib
import datetime
import json
import os
import re
import shutil
import socket
import sys
import textwrap

from clean_root import TREE, CannotBeMade, CleanRoot, check
from ledger_in_root import keep_a_book
from loopback_backend import Backend
from modem_manager_in_root import ModemManager
from session_in_root import Session

MESSAGE = "Your card was charged EGP 150.00 at Cafe"
DIALOG = "Tracked EGP\u00a0150.00 at Cafe"
RECEIVED = "Your card was charged EGP 150.00 at Bakery"
NOW = datetime.datetime.now(datetime.timezone.utc).isoformat(timespec="seconds")
MERCHANT = "Carrefour City"  # of the message in README.md
MODEMS = {"0": [
    {"path": "1", "State": 3, "PduType": 1, "Number": "Friend", "Text": "See you at the bakery", "Timestamp": NOW},
    {"path": "2", "State": 3, "PduType": 1, "Number": "MyBank", "Text": RECEIVED, "Timestamp": NOW},
]}


def files_in(root):
    """Every path of the system but for what programs keep: caches, logs, records of packages."""
    kept = {"var/cache", "var/lib/apt", "var/lib/dpkg", "var/log", "proc", "sys", "dev", "run", "tmp", "home"}
    found = set()
    for folder, folders, files in os.walk(root):
        inside = os.path.relpath(folder, root)
        folders[:] = [name for name in folders if os.path.normpath(os.path.join(inside, name)) not in kept]
        found |= {os.path.normpath(os.path.join(inside, name)) for name in folders + files}
    return found


def try_out(root, session, backend):
    # What it needs, and what belongs to a person's session: no desktop, no compiler.
    root.root("apt-get install -qq --no-install-recommends dbus-user-session ca-certificates desktop-file-utils")
    before = files_in(root.folder)
    root.root("apt-get install -qq --no-install-recommends /kivo.deb")
    check(root.root("dpkg --audit; dpkg --verify kivo-intents") == "", "it installs with what it needs, whole")
    handlers = (root.folder / "usr/share/applications/mimeinfo.cache").read_text()
    check("x-scheme-handler/kivo-expenses=app.kivo.expenses.desktop;" in handlers, "links of Kivo have a handler")

    session.alice(f"kivo-phone sign-in --user-id 42 --url {backend.url} --currency EGP")
    said = session.alice("kivo-intents perform ProcessSMSIntent --smsText -", MESSAGE)
    check(said == DIALOG + "\n" and backend.texts(1) == [MESSAGE], "a message on standard input is tracked")
    check("150" in session.alice("kivo-phone widget"), "the widget has counted it")

    if session.begin():
        use_services(root, session)
        # Not in /tmp, of which the watcher has its own.
        with ModemManager(root.folder / "home/system-bus", MODEMS):
            receive_messages(root, session, backend)
        spend_the_first_minutes(session)
        keep_a_book(session, backend)
    else:
        print("clean Debian 12: services not tried: no control groups can be mounted here")

    paths = root.root("dpkg --listfiles kivo-intents").split()
    check({"/usr/share/man/man1/kivo-intents.1.gz", "/usr/lib/systemd/user/kivo-intents.service",
           "/usr/share/dbus-1/services/app.kivo.expenses.Intents.service"} <= set(paths), "pages and services are in place")
    root.root("apt-get purge -qq kivo-intents && apt-get autoremove --purge -qq")
    check(files_in(root.folder) - before == set(), "its removal leaves nothing")
    check((root.folder / "home/alice/.local/share/group.app.kivo.expenses/defaults.sqlite3").exists(),
          "but the person's own data")
    try_the_server(root, session)
    try_the_window(root, session)


def try_the_server(root, session):
    """On the machine of a household: root calls it, its own user owns the books and answers."""
    before = files_in(root.folder)
    root.root("apt-get install -qq --no-install-recommends /kivo-server.deb")
    check(root.root("dpkg --audit; dpkg --verify kivo-server") == "", "the server installs with what it needs, whole")
    unit = "/usr/lib/systemd/system/kivo-server.service"
    check(root.root(f"systemd-analyze verify --man=no {unit} 2>&1") == "", "its unit is valid")
    root.root("kivo-server book add Family --currency EGP && kivo-server person add Mona --book Family")
    owners = root.root("find /var/lib/kivo-server ! -user kivo-server; find /var/lib/kivo-server -perm /077")
    check(owners == "", "its files belong to its user alone")
    with socket.socket() as free:  # the network is this machine's
        free.bind(("127.0.0.1", 0))
        address = "127.0.0.1:" + str(free.getsockname()[1])
    root.root(f"(kivo-server serve --listen {address} --public-url http://{address} >/dev/null 2>&1 &"
              " echo $! >/run/kivo-server.pid)")
    printed = root.root("for _ in 1 2 3 4 5 6 7 8 9 10; do kivo-server device add Mona --name phone && break; sleep 1;"
                        " done 2>/dev/null")
    url = re.search(r"http://127\S+/p/[0-9a-f]{32}", printed)[0]
    root.root("apt-get install -qq --no-install-recommends /kivo.deb")
    session.alice(f"kivo-phone sign-in --user-id Mona --url {url}")
    said = session.alice("kivo-intents perform ProcessSMSIntent --smsText -", MESSAGE)
    check(said == DIALOG + "\n", "a phone's message is tracked")
    check("Cafe" in root.root("kivo-server list --book Family"), "it is in the household's book")
    root.root("kill $(cat /run/kivo-server.pid); rm /run/kivo-server.pid")
    root.root("apt-get purge -qq kivo-server kivo-intents")
    left = {path for path in files_in(root.folder) - before if "kivo" in path and path.startswith(("usr/", "etc/"))}
    check(left == set(), "its removal leaves the books and their user alone")


def try_the_window(root, session):
    """It brings libraries whose caches stay after them, so only its own files are looked for in the end."""
    root.root("apt-get install -qq --no-install-recommends /kivo.deb")
    check(not list((root.folder / "usr/lib").glob("*/libgtk-4.so.1")), "who has no window has no GTK")
    root.root("apt-get install -qq --no-install-recommends /kivo-window.deb")
    check(root.root("dpkg --verify kivo") == "", "the window installs with what it needs, whole")
    check(session.alice("kivo --version").startswith("kivo "), "the window's program starts")
    root.root("apt-get purge -qq kivo kivo-intents")
    left = {path for path in files_in(root.folder) if "kivo" in path and path.startswith(("usr/", "etc/"))}
    check(left == set(), "its removal leaves none of its files")


def use_services(root, session):
    """The bus has the service manager start the services, as the units confine them."""
    replied = session.alice("busctl --user --json=short call app.kivo.expenses.Intents /app/kivo/expenses/Intents"
                            f" app.kivo.Intents1 Perform 'sa{{sv}}' ProcessSMSIntent 1 smsText s '{MESSAGE}'")
    check(json.loads(replied)["data"] == [DIALOG], "a call on the bus is answered by the service")
    status = session.status_of("kivo-intents.service")
    check((status["NoNewPrivs"], status["Seccomp"]) == ("1", "2"), "the service is confined")
    session.alice("kivo-phone notifications authorized")
    status = session.status_of("kivo-notification-center.service")
    check((status["NoNewPrivs"], status["Seccomp"]) == ("1", "2"), "the notification center is confined")
    data = root.folder / "home/alice/.local/share"
    check({path.name for path in data.iterdir()} == {"group.app.kivo.expenses", "app.kivo.NotificationCenter"},
          "both keep their data in alice's folder")
    failed = session.alice("systemctl --user list-units --state=failed --no-legend --plain 'kivo*'")
    check(failed == "", "no unit of Kivo has failed")


def receive_messages(root, session, backend):
    """The watcher is started by the first sender that is named, and knows its messages from others."""
    root.root("mkdir -p /run/dbus && ln -s /home/system-bus /run/dbus/system_bus_socket")
    session.alice("kivo-phone watch add MyBank")
    check(backend.texts(3) == sorted([MESSAGE, MESSAGE, RECEIVED]),
          "a message on the modem is tracked when its sender has been named, and no other")
    status = session.status_of("kivo-sms-watcher.service")
    check((status["NoNewPrivs"], status["Seccomp"]) == ("1", "2"), "the watcher is confined")
    check(int(status["CapBnd"], 16) == 0, "the watcher has no capabilities")


def first_minutes():
    """The lines of README.md that follow the installation, as a script."""
    section = (TREE / "README.md").read_text().split("\n## Install it\n")[1].split("\n## ")[0]
    installing, trying, *_ = re.findall(r"(?:^    .*\n)+", section, re.MULTILINE)
    check("apt install" in installing, "README.md begins with the installation")
    return textwrap.dedent(trying).rstrip("\n")


def spend_the_first_minutes(session):
    """The ledger takes the place of the backend, in a session that has not heard of its socket."""
    session.alice("systemctl --user stop kivo-ledger.socket")
    script = first_minutes()
    check(script.endswith("\nkivo-ledger report"), "README.md ends with the report")
    said = session.alice(f"{script} --no-open").splitlines()
    check("The backend answers." in said, "sign-in starts the ledger's socket")
    page = session.alice(f"cat '{said[-1]}'")
    check(MERCHANT in page and page.startswith("<!DOCTYPE html>"), "the lines of README.md end with a report")
    check(MERCHANT in session.alice("kivo-ledger list"), "the message is in the book")
    check("This month     EGP" in session.alice("kivo-phone status"), "the status knows the month")


def main(package, window, server):
    with contextlib.ExitStack() as stack:
        try:
            root = stack.enter_context(contextlib.closing(CleanRoot()))
        except CannotBeMade as reason:
            print(f"package: not tried in a clean Debian 12: {reason}")
            return
        shutil.copy(package, root.folder / "kivo.deb")
        shutil.copy(window, root.folder / "kivo-window.deb")
        shutil.copy(server, root.folder / "kivo-server.deb")
        backend = stack.enter_context(contextlib.closing(Backend()))
        session = stack.enter_context(contextlib.closing(Session(root)))
        try_out(root, session, backend)


if __name__ == "__main__":
    main(*sys.argv[1:])
