#!/usr/bin/env python3
"""Installs a Debian package of Kivo in a clean Debian 12, uses it there as a person would, and removes it.

    clean_root.py PACKAGE.deb

The system is a minimal one from the mirror that this machine uses, in a temporary folder; its archive
is kept in build/clean-root/ for the next time, for a week. A backend on loopback stands in for the
real one. Needs root, and says so where it is not.
"""
import datetime
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

from loopback_backend import Backend
from modem_manager_in_root import ModemManager
from session_in_root import Session

KEPT = pathlib.Path(__file__).resolve().parents[2] / "build/clean-root/debian-12.tar"
KEPT_SECONDS = 7 * 24 * 3600
MESSAGE = "Your card was charged EGP 150.00 at Cafe"
DIALOG = "Tracked EGP\u00a0150.00 at Cafe"
RECEIVED = "Your card was charged EGP 150.00 at Bakery"
NOW = datetime.datetime.now(datetime.timezone.utc).isoformat(timespec="seconds")
MODEMS = {"0": [
    {"path": "1", "State": 3, "PduType": 1, "Number": "Friend", "Text": "See you at the bakery", "Timestamp": NOW},
    {"path": "2", "State": 3, "PduType": 1, "Number": "MyBank", "Text": RECEIVED, "Timestamp": NOW},
]}


def output(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, timeout=600, **options).stdout


def sources():
    """Debian 12 as this machine's own sources have it, in the one-line form."""
    targets = output("apt-get", "indextargets", "--format", "$(ORIGIN) $(REPO_URI) $(RELEASE) $(COMPONENT)",
                     "Created-By: Packages")
    found = [line.split()[1:] for line in targets.splitlines() if line.startswith("Debian ")]
    lines = sorted({f"deb {uri} {release} {component}" for uri, release, component in found
                    if release.startswith("bookworm")})
    if not lines:
        sys.exit("clean_root: this machine's apt has no sources of Debian 12")
    return "\n".join(lines) + "\n"


def ways_out():
    """What this machine's apt is told of proxies and certificates."""
    settings = output("apt-config", "dump", "Acquire").splitlines()
    return [line for line in settings if any(word in line for word in ("::Proxy ", "::CaInfo ", "::Verify-"))]


def archive():
    """The archive of a clean system, which is made where it is missing or old."""
    if KEPT.exists() and time.time() - KEPT.stat().st_mtime < KEPT_SECONDS:
        return KEPT
    KEPT.parent.mkdir(parents=True, exist_ok=True)
    fresh = KEPT.with_suffix(".new.tar")
    options = [word for line in ways_out() for word in ("--aptopt", line)]
    subprocess.run(["mmdebstrap", "--quiet", "--variant=minbase", "--skip=output/dev", *options, "bookworm", fresh, "-"],
                   input=sources(), text=True, check=True, timeout=900)
    fresh.rename(KEPT)
    return KEPT


def files_in(root):
    """Every path of the system but for what programs keep: caches, logs, records of packages."""
    kept = {"var/cache", "var/lib/apt", "var/lib/dpkg", "var/log", "proc", "sys", "dev", "run", "tmp", "home"}
    found = set()
    for folder, folders, files in os.walk(root):
        inside = os.path.relpath(folder, root)
        folders[:] = [name for name in folders if os.path.normpath(os.path.join(inside, name)) not in kept]
        found |= {os.path.normpath(os.path.join(inside, name)) for name in folders + files}
    return found


def check(holds, what):
    if not holds:
        sys.exit(f"clean_root: it does not hold that {what}")
    print(f"clean Debian 12: {what}", flush=True)


def try_out(session, backend):
    root = session.folder
    session.root("useradd --create-home alice")
    # What it needs, and what belongs to a person's session: no desktop, no compiler.
    session.root("apt-get update -qq")
    session.root("apt-get install -qq --no-install-recommends dbus-user-session ca-certificates")
    before = files_in(root)
    session.root("apt-get install -qq --no-install-recommends /kivo.deb")
    check(session.root("dpkg --audit; dpkg --verify kivo-intents") == "", "it installs with what it needs, whole")

    session.alice(f"kivo-phone sign-in --user-id 42 --url {backend.url} --currency EGP")
    said = session.alice("kivo-intents perform ProcessSMSIntent --smsText -", MESSAGE)
    check(said == DIALOG + "\n" and backend.texts(1) == [MESSAGE], "a message on standard input is tracked")
    check("150" in session.alice("kivo-phone widget"), "the widget has counted it")

    if session.begin():
        use_services(session)
        with ModemManager(root / "tmp/system-bus", MODEMS):
            receive_messages(session, backend)
    else:
        print("clean Debian 12: services not tried: no control groups can be mounted here")

    paths = session.root("dpkg --listfiles kivo-intents").split()
    check({"/usr/share/man/man1/kivo-intents.1.gz", "/usr/lib/systemd/user/kivo-intents.service",
           "/usr/share/dbus-1/services/app.kivo.expenses.Intents.service"} <= set(paths), "pages and services are in place")
    session.root("apt-get purge -qq kivo-intents && apt-get autoremove --purge -qq")
    check(files_in(root) - before == set(), "its removal leaves nothing")
    check((root / "home/alice/.local/share/group.app.kivo.expenses/defaults.sqlite3").exists(),
          "but the person's own data")


def use_services(session):
    """The bus has the service manager start the services, as the units confine them."""
    replied = session.alice("busctl --user --json=short call app.kivo.expenses.Intents /app/kivo/expenses/Intents"
                            f" app.kivo.Intents1 Perform 'sa{{sv}}' ProcessSMSIntent 1 smsText s '{MESSAGE}'")
    check(json.loads(replied)["data"] == [DIALOG], "a call on the bus is answered by the service")
    status = session.status_of("kivo-intents.service")
    check((status["NoNewPrivs"], status["Seccomp"]) == ("1", "2"), "the service is confined")
    session.alice("kivo-phone notifications authorized")
    status = session.status_of("kivo-notification-center.service")
    check((status["NoNewPrivs"], status["Seccomp"]) == ("0", "0"), "the notification center is not")
    data = session.folder / "home/alice/.local/share"
    check({path.name for path in data.iterdir()} == {"group.app.kivo.expenses", "app.kivo.NotificationCenter"},
          "both keep their data in alice's folder")
    failed = session.alice("systemctl --user list-units --state=failed --no-legend --plain 'kivo*'")
    check(failed == "", "no unit of Kivo has failed")


def receive_messages(session, backend):
    """The watcher is started by the first sender that is named, and knows its messages from others."""
    session.root("mkdir -p /run/dbus && ln -s /tmp/system-bus /run/dbus/system_bus_socket")
    session.alice("kivo-phone watch add MyBank")
    check(backend.texts(3) == sorted([MESSAGE, MESSAGE, RECEIVED]),
          "a message on the modem is tracked when its sender has been named, and no other")
    status = session.status_of("kivo-sms-watcher.service")
    check((status["NoNewPrivs"], status["Seccomp"]) == ("1", "2"), "the watcher is confined")


def main(package):
    if os.geteuid() != 0:
        print("clean_root: not tried in a clean Debian 12, which needs root")
        return
    kept = archive()
    with tempfile.TemporaryDirectory(prefix="kivo-clean-root-") as folder:
        root = pathlib.Path(folder) / "root"
        root.mkdir()
        subprocess.run(["tar", "--extract", "--numeric-owner", "--file", kept, "--directory", root], check=True, timeout=300)
        shutil.copy("/etc/resolv.conf", root / "etc/resolv.conf")
        (root / "etc/apt/apt.conf.d/90ways-out").write_text("\n".join(ways_out()) + "\n")
        shutil.copy(package, root / "kivo.deb")
        session, backend = Session(root), Backend()
        try:
            try_out(session, backend)
        finally:
            session.close()
            backend.close()


if __name__ == "__main__":
    main(*sys.argv[1:])
