#!/usr/bin/env python3
"""Runs the lines of docs/backup.md unchanged, beside a running ledger in private folders.

Needs the programs in the folder that KIVO_PROGRAMS names. A stand-in for systemctl ends and starts the ledger.
"""
import os
import pathlib
import re
import signal
import stat
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BLOCKS = re.findall(r"```sh\n(.*?)```", (ROOT / "docs/backup.md").read_text(encoding="utf-8"), re.DOTALL)
BACK_UP, RESTORE, REPLACE, MOVE_AND_RESTORE, SETTINGS, COPY_STOPPED, PUT_BACK = BLOCKS
STORES = ("app.kivo.ledger/ledger", "group.app.kivo.expenses/defaults", "app.kivo.SmsWatcher/defaults",
          "app.kivo.NotificationCenter/defaults")


class TheBackupPage(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="kivo-backup-")
        self.addCleanup(folder.cleanup)
        self.home = pathlib.Path(folder.name)
        (self.home / "tools").mkdir()
        (self.home / "run").mkdir()
        self.environment = {"HOME": str(self.home), "XDG_RUNTIME_DIR": str(self.home / "run"), "LANG": "en_US.UTF-8",
                            "TZ": "UTC", "PATH": f"{self.home}/tools:{os.environ['KIVO_PROGRAMS']}:/usr/bin:/bin",
                            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.home}/no-bus"}
        manager = self.home / "tools/systemctl"
        manager.write_text('#!/bin/sh\necho "$2" >>"$HOME/asked"\n')
        manager.chmod(0o755)
        self.data = self.home / ".local/share"
        self.ledger = None
        self.addCleanup(self.end_ledger)
        self.begin_ledger()
        self.run_program("kivo-phone", "sign-in", "--local", "--currency", "EGP")
        self.run_program("kivo-phone", "watch", "add", "MyBank")
        self.record("Your card was charged EGP 150.00 at Carrefour City")
        self.run_program("kivo-ledger", "teach", "-", "--kind", "none", text="Zap news for you")
        for name in STORES[2:]:  # as its program would have made it
            (self.data / name).parent.mkdir(mode=0o700)
            (self.data / name).parent.chmod(0o700)
            subprocess.run(["sqlite3", f"{self.data / name}.sqlite3", f"CREATE TABLE one AS SELECT '{name}'"], check=True)

    def begin_ledger(self):
        self.ledger = subprocess.Popen(["kivo-ledger", "serve"], env=self.environment)
        end = time.monotonic() + 60
        while not (self.home / "run/kivo/ledger.sock").is_socket() and time.monotonic() < end:
            time.sleep(0.02)

    def end_ledger(self):
        self.ledger.send_signal(signal.SIGTERM)
        self.ledger.wait(30)

    def run_program(self, *command, text=""):
        return subprocess.run(command, env=self.environment, check=True, input=text, text=True, capture_output=True,
                              timeout=60).stdout

    def record(self, message):
        answer = self.run_program("kivo-intents", "perform", "ProcessSMSIntent", "--smsText", "-", text=message)
        self.assertIn("Tracked", answer)

    def lines(self, block):
        """What the lines print; none may fail or complain."""
        ran = subprocess.run(["sh", "-eu"], input=SETTINGS + block, env=self.environment, text=True, capture_output=True,
                             check=False, timeout=60)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))
        return ran.stdout

    def restorable(self):
        """All that a person can see of what a backup of the book holds."""
        return [self.run_program("kivo-ledger", "list", "--json"), self.run_program("kivo-ledger", "show", "1"),
                self.run_program("kivo-ledger", "ignored", "--json"), self.run_program("kivo-phone", "watch", "list"),
                (self.home / ".config/kivo/templates.toml").read_text(encoding="utf-8"),
                self.run_program("kivo-phone", "store", "get", "currency")]

    def kept(self):
        """All that a person can see of what is kept."""
        others = [subprocess.run(["sqlite3", f"{self.data / name}.sqlite3", ".dump"], check=True, capture_output=True).stdout
                  for name in STORES[2:]]
        return [*self.restorable(), self.run_program("kivo-phone", "store", "list"), *others]

    def spoil(self):
        """Changes all that is kept, so that old WALs lie beside the databases."""
        self.run_program("kivo-ledger", "delete", "1", "--yes")
        self.record("Your card was charged EGP 99.00 at Cafe")
        self.run_program("kivo-phone", "watch", "remove", "MyBank")
        self.run_program("kivo-phone", "sign-out")
        self.run_program("kivo-phone", "store", "set", "todayCount", "7")  # a sign-out leaves no WAL
        (self.home / ".config/kivo/templates.toml").unlink()
        for name in STORES[2:]:
            subprocess.run(["sqlite3", f"{self.data / name}.sqlite3", "DELETE FROM one"], check=True)

    def expect_put_back(self, before):
        self.spoil()
        self.end_ledger()
        self.assertNotEqual(self.run_program("kivo-ledger", "list", "--json"), before[0])
        self.lines(PUT_BACK)
        self.begin_ledger()
        self.assertEqual(self.kept(), before)
        for name in STORES:
            self.assertEqual(stat.S_IMODE((self.data / name).parent.stat().st_mode), 0o700)
        self.record("Your card was charged EGP 12.00 at Cafe")

    def test_backs_up_beside_a_running_ledger_and_replaces_its_book(self):
        before = self.restorable()
        self.lines(BACK_UP)
        self.assertEqual(stat.S_IMODE((self.home / "book.kivo").stat().st_mode), 0o600)
        self.assertFalse((self.home / "asked").exists())
        self.spoil()
        self.run_program("kivo-phone", "sign-in", "--local", "--currency", "USD")
        said = self.lines(REPLACE)
        self.assertEqual(self.restorable(), before)
        saved = re.search(r" are in (.*/before-restore-.*\.kivo)\n", said)[1]
        self.assertTrue(pathlib.Path(saved).exists())
        self.record("Your card was charged EGP 12.00 at Cafe")

    def test_fills_an_empty_book_on_another_machine(self):
        before = self.restorable()
        self.lines(BACK_UP)
        self.end_ledger()
        self.run_program("rm", "-r", str(self.home / ".config"), str(self.data))
        self.begin_ledger()
        self.lines(RESTORE)
        self.assertEqual(self.restorable(), before)
        self.record("Your card was charged EGP 12.00 at Cafe")

    def test_takes_the_place_of_a_damaged_book(self):
        before = self.restorable()
        self.lines(BACK_UP)
        self.end_ledger()
        file = self.data / "app.kivo.ledger/ledger.sqlite3"
        file.with_name(file.name + "-wal").unlink()
        file.write_bytes(b"no database, but longer than a page" * 200)
        self.lines(MOVE_AND_RESTORE)
        self.begin_ledger()
        self.assertEqual(self.restorable(), before)

    def test_copies_while_nothing_runs_and_puts_it_back(self):
        self.end_ledger()
        before = self.kept()
        self.lines(COPY_STOPPED)
        self.assertEqual((self.home / "asked").read_text(encoding="utf-8"), "stop\nstart\n")
        self.begin_ledger()
        self.expect_put_back(before)

    def test_copies_what_there_is(self):
        self.run_program("rm", "-r", str(self.home / ".config"), str(self.data / "app.kivo.SmsWatcher"))
        self.lines(COPY_STOPPED)


if __name__ == "__main__":
    sys.exit(unittest.main())
