#!/usr/bin/env python3
"""Cuts the power of recorded runs at any moment, and checks each state that the disk may then have.

Needs the programs in the folder that KIVO_PROGRAMS names, and tests/packaging in PYTHONPATH; ./test
faults sets both. KIVO_LONG=1 judges 30,000 states.
"""
import copy
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import unittest

from disk import Disk
from judge import Broken, Judge
from loopback_backend import Backend
from phone import CENTER, GROUP, LEDGER, PROGRAMS, SENDERS, Phone

LONG = os.environ.get("KIVO_LONG") == "1"
STATES = 5600 if LONG else 60  # of each recording
MODELS = ("writes", "pages", "ordered")
MEMORY = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None


def states(recording, count, seed=1, ignores_sync=lambda path: False, moments=None):
    """About `count` different states, as (event before which the power goes, state): spread over
    all moments or those given, fewer where a moment has no more."""
    choose = random.Random(seed)
    disk = Disk(recording, ignores_sync)
    moments = moments or range(len(recording.events) + 1)
    seen = set()
    place = 0
    for index in range(moments[-1] + 1):
        wanted = 0
        if index == moments[place]:
            wanted = count * (place + 1) // len(moments) - count * place // len(moments)
            place += 1
        for _ in range(wanted * 4):
            density = choose.choice((0, 0.1, 0.5, 0.5, 0.9, 0.9, 1))
            state = disk.after_cut(choose.choice(MODELS), choose, density, index)
            digest = hash((index, frozenset(state.items())))
            if digest not in seen and wanted > 0:
                seen.add(digest)
                wanted -= 1
                yield index, state
        if index < len(recording.events):
            disk.apply(index, recording.events[index])


def without_wal_syncs_after(recording, is_before):
    """`recording` as if the WAL was not synced after the events for which `is_before` holds, and
    the moments soon after those."""
    changed = copy.copy(recording)
    wal = GROUP + "-wal"
    on_wal = [index for index, event in enumerate(recording.events) if event[1] == wal]
    left_out = {after for before, after in zip(on_wal, on_wal[1:])
                if recording.events[after][0] == "sync" and is_before(recording.events[before])}
    changed.events = [("left out", wal) if index in left_out else event
                      for index, event in enumerate(recording.events)]
    return changed, sorted({index + later for index in left_out for later in range(10)
                            if index + later < len(changed.events)})


def setUpModule():
    if subprocess.run(["strace", "-o", "/dev/null", "true"], check=False).returncode != 0:
        raise unittest.SkipTest("strace cannot trace here")


class APowerCut(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.judged = 0
        cls.recordings = {}

    @classmethod
    def tearDownClass(cls):
        print(f"{cls.judged} states of sound disks judged", file=sys.stderr)

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kivo-cut-", dir=MEMORY))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        backend = Backend()
        self.addCleanup(backend.close)
        self.url = backend.url
        self.phone = Phone(self.folder / "home")
        self.checked = 0

    def violations(self, recording, count=None, store=GROUP, several=False,
                   ignores_sync=lambda path: False, moments=None):
        judge = Judge(recording, Disk(recording), store, self.folder / "judged", several)
        self.assertGreater(len(judge.commits), 2, "too little was recorded")
        found = []
        for cut, state in states(recording, count or STATES, ignores_sync=ignores_sync,
                                 moments=moments):
            try:
                judge.check(state, cut)
            except Broken as broken:
                found.append(f"before event {cut} of {len(recording.events)}: {broken}")
            self.checked += 1
        return found

    def expect_kept(self, recording, **options):
        before = self.checked
        found = self.violations(recording, **options)
        type(self).judged += self.checked - before
        self.assertEqual(len(found), 0, f"{len(found)} states, such as\n" + "\n".join(found[:10]))

    def performs(self, count, words):
        for _ in range(count):
            self.assertIn(words, self.phone.perform())

    def recorded(self, story):
        """The recording of `story`, made once for all tests."""
        if story not in self.recordings:
            self.recordings[story] = getattr(self, story)()
        return self.recordings[story]

    def long_wal(self):
        self.phone.sign_in(self.url)
        self.phone.perform_unrecorded(self.phone.text())
        recording = self.phone.record()
        self.performs(60, "Tracked")
        return recording

    def full_queue(self):
        self.phone.sign_in()
        self.phone.fill_queue(200)
        recording = self.phone.record()
        self.performs(3, "Saved offline")
        return recording

    def first_run(self):
        recording = self.phone.record()
        self.phone.phone("sign-in", "--user-id", "u", "--url", "http://127.0.0.1:1")
        self.performs(2, "Saved offline")
        return recording

    def test_loses_nothing_of_the_first_runs(self):
        self.expect_kept(self.recorded("first_run"))

    def test_loses_no_text_that_was_queued_offline(self):
        self.phone.sign_in()
        recording = self.phone.record()
        self.performs(6, "Saved offline")
        self.expect_kept(recording)

    def test_loses_no_text_of_a_full_queue_and_restores_no_dropped_one(self):
        self.expect_kept(self.recorded("full_queue"))

    def test_loses_no_totals_while_the_wal_is_checkpointed_and_truncated(self):
        self.expect_kept(self.recorded("long_wal"))

    def test_loses_no_text_that_a_drain_has_not_sent(self):
        self.phone.sign_in()
        self.phone.fill_queue(7)
        self.phone.sign_in(self.url)
        recording = self.phone.record()
        self.performs(4, "Tracked")
        self.expect_kept(recording)

    def test_restores_no_text_that_the_user_removed(self):
        self.phone.sign_in()
        self.phone.fill_queue(4)
        recording = self.phone.record()
        for _ in range(3):
            self.phone.phone("queue", "drop", "--yes", "2")
        self.expect_kept(recording)

    def test_keeps_the_order_of_the_commits_of_parallel_runs(self):
        self.phone.sign_in()
        self.phone.fill_queue(199)
        recording = self.phone.record()
        for _ in range(3):
            self.phone.perform_together(3)
        self.expect_kept(recording, several=True)

    def test_loses_nothing_after_a_run_that_was_killed_at_an_fsync(self):
        recording = self.phone.record()
        for kill in range(1, 14):
            self.phone.perform(kill)
        self.phone.phone("sign-in", "--user-id", "u", "--url", "http://127.0.0.1:1")
        for kill in range(1, 4):
            self.phone.perform(kill)
            self.performs(1, "Saved offline")
        self.expect_kept(recording)

    def test_loses_nothing_after_a_kill_at_an_fsync_with_a_full_queue(self):
        self.phone.sign_in()
        self.phone.fill_queue(200)
        recording = self.phone.record()
        for kill in range(1, 9):
            self.phone.perform(kill)
        self.performs(1, "Saved offline")
        self.expect_kept(recording)

    def test_loses_nothing_after_another_power_cut(self):
        first = self.recorded("full_queue")
        chosen = list(states(first, 600, seed=2))[::60 if LONG else 200]
        for number, (_, state) in enumerate(chosen):
            self.phone = Phone.after_cut(self.folder / f"again-{number}", state)
            self.phone.number = 1000 * (number + 1)
            recording = self.phone.record()
            self.performs(2, "Saved offline")
            self.expect_kept(recording, count=STATES // len(chosen))

    def test_loses_no_notification_that_the_center_accepted(self):
        recording = self.phone.record()
        with self.phone.notification_center() as call:
            call("SetAuthorizationStatus", "2")
            for number in range(4):
                content = f"{{'title': <'SECRET{number}'>, 'body': <'{'x' * 300}'>, 'sound': <'default'>}}"
                call("Add", f"n{number}", content, "1000", "false")
        self.expect_kept(recording, store=CENTER)

    def ledger_session(self):
        """Enough messages for a checkpoint of the WAL, and a person's hand."""
        self.phone.sign_in()  # the shared store, which tells the currency
        recording = self.phone.record()
        with self.phone.ledger() as send:
            for number in range(20):
                text = f"Your card was charged EGP {number + 10}.00 at Cafe. SECRET{os.getpid()}{number:06}"
                self.assertTrue(send(text, f"KEY-{number}")["saved"])
                self.assertTrue(send(text, f"KEY-{number}")["saved"])
            for number in range(20, 25):  # no transaction, but with a sum
                text = f"EGP {number}.00 will be debited. SECRET{os.getpid()}{number:06}"
                self.assertFalse(send(text, f"KEY-{number}")["saved"])
        return recording

    def test_loses_no_transaction_that_the_ledger_has_acknowledged(self):
        self.expect_kept(self.recorded("ledger_session"), store=LEDGER)

    def test_brings_back_no_text_that_the_ledger_has_forgotten(self):
        self.ledger_session()
        recording = self.phone.record()
        ledger = [PROGRAMS / "kivo-ledger"]
        recording.run(ledger + ["delete", "--yes", "3"], env=self.phone.environment)
        recording.run(ledger + ["book", "1", "--kind", "expense"], env=self.phone.environment)
        recording.run(ledger + ["forget-texts", "--yes"], env=self.phone.environment)
        recording.run(ledger + ["edit", "5", "--category", "Food"], env=self.phone.environment)
        self.expect_kept(recording, store=LEDGER)
        # The test can see that: without the last syncs, a text comes back and no note says so.
        self.assertTrue(self.violations(recording, count=400, store=LEDGER,
                                        ignores_sync=lambda path: path.endswith("-wal")))

    def test_loses_nothing_while_a_book_of_the_first_version_is_upgraded(self):
        self.phone.sign_in()
        self.phone.make_first_book(60)
        recording = self.phone.record()
        ledger = [PROGRAMS / "kivo-ledger"]
        recording.run(ledger + ["list"], env=self.phone.environment)
        recording.run(ledger + ["edit", "5", "--category", "Food"], env=self.phone.environment)
        recording.run(ledger + ["edit", "6", "--amount", "5"], env=self.phone.environment)
        self.expect_kept(recording, store=LEDGER)

    def test_is_seen_to_lose_what_the_ledger_booked_on_a_disk_that_ignores_syncs_of_the_wal(self):
        self.assertTrue(self.violations(self.recorded("ledger_session"), count=400, store=LEDGER,
                                        ignores_sync=lambda path: path.endswith("-wal")))

    def expect_old_or_new(self, recording, path):
        """The file has each content whole, and none from before what was said."""
        disk = Disk(recording)
        versions, floors = [disk.now().get(path)], [0]
        for index, event in enumerate(recording.events):
            disk.apply(index, event)
            now = disk.now().get(path)
            if now != versions[-1]:
                versions.append(now)
            floors.append(len(versions) - 1 if event[0] == "said" else floors[-1])
        self.assertGreater(len(versions), 1)
        for cut, state in states(recording, STATES):
            type(self).judged += 1
            self.assertIn(state.get(path), versions[floors[cut]:], f"before event {cut}")

    def test_leaves_the_old_or_the_new_senders_of_the_watcher(self):
        recording = self.phone.record()
        for sender in ("Bank", "Card", "Shop"):
            self.phone.phone("watch", "add", sender)
        self.expect_old_or_new(recording, SENDERS)

    def ledger(self, *arguments):
        """kivo-ledger, recorded."""
        return self.phone.recording.run([PROGRAMS / "kivo-ledger", *arguments], env=self.phone.environment)

    def test_leaves_the_old_or_the_new_backup(self):
        self.ledger_session()
        recording = self.phone.record()
        file = self.phone.home / "book.kivo"
        self.assertIn("Backed up 20 payments", self.ledger("backup", file))
        self.ledger("add", "--amount", "7", "--payee", "Kiosk")
        self.assertIn("Backed up 21 payments", self.ledger("backup", file))
        self.expect_old_or_new(recording, "book.kivo")

    def test_leaves_the_book_before_or_after_an_import_and_an_undo(self):
        file = self.phone.home / "sms.csv"
        lines = [f"2026-01-{day:02},Bank,Your card ending 4821 was charged EGP {day}.50 at Kiosk" for day in range(1, 29)]
        file.write_text("\n".join(["date,sender,text", *lines, ""]), encoding="utf-8")
        self.ledger_session()
        recording = self.phone.record()
        for _ in range(2):
            self.assertIn('"booked":28', self.ledger("import", file, "--sender", "Bank", "--json"))
            self.assertIn("28 transactions", self.ledger("undo"))
        self.expect_kept(recording, store=LEDGER)

    def test_leaves_the_old_or_the_restored_book(self):
        self.phone.record()
        self.ledger("add", "--amount", "7", "--payee", "Kiosk")
        self.ledger("backup", self.phone.home / "book.kivo")
        self.ledger_session()
        recording = self.phone.record()
        self.ledger("rate", "USD", "48.5")
        self.assertIn("Restored 1 payment", self.ledger("restore", "--replace", self.phone.home / "book.kivo"))
        self.ledger("rate", "USD", "49")
        self.expect_kept(recording, store=LEDGER)

    def test_leaves_a_store_that_the_next_run_can_use(self):
        recording = self.recorded("full_queue")
        judge = Judge(recording, Disk(recording), GROUP, self.folder / "judged")
        for number, (cut, state) in enumerate(states(recording, 40 if LONG else 6, seed=3)):
            type(self).judged += 1
            home = Phone.after_cut(self.folder / "again", state)
            home.number = 5000 + number
            text = home.text()
            judge.check(state, cut)
            self.assertIn("Saved offline", home.perform_unrecorded(text))
            found = judge.read({path: (home.home / path).read_bytes()
                                 for path in (GROUP, GROUP + "-wal")})
            self.assertIn(text, found["pendingSmsQueue"])
            self.assertEqual(found["pendingSmsQueueCount"], "200")

    # Checks of the test itself: each fsync is needed, and a disk that ignores it breaks the rule.

    def test_loses_totals_without_an_fsync_of_the_wal_header(self):
        recording, moments = without_wal_syncs_after(
            self.recorded("long_wal"), lambda event: event[0] == "write" and event[2] == 0)
        self.assertTrue(self.violations(recording, count=1500, moments=moments))

    def test_restores_texts_without_an_fsync_of_the_truncated_wal(self):
        recording, moments = without_wal_syncs_after(
            self.recorded("full_queue"), lambda event: event[0] == "truncate")
        self.assertTrue(self.violations(recording, count=500, moments=moments))

    def test_loses_texts_when_the_disk_ignores_fsyncs_of_the_wal(self):
        self.assertTrue(self.violations(self.recorded("long_wal"), count=400,
                                        ignores_sync=lambda path: path.endswith("-wal")))

    def test_loses_texts_when_the_disk_ignores_fsyncs_of_the_database(self):
        self.assertTrue(self.violations(self.recorded("long_wal"), count=400,
                                        ignores_sync=lambda path: path.endswith("sqlite3")))

    def test_loses_texts_when_the_disk_ignores_fsyncs_of_parent_folders(self):
        self.assertTrue(self.violations(self.recorded("first_run"), count=200,
                                        ignores_sync=lambda path: path in ("data", ".")))

    def test_loses_texts_when_the_disk_ignores_fsyncs_of_the_folder(self):
        folder = os.path.dirname(GROUP)
        self.assertTrue(self.violations(self.recorded("first_run"), count=200,
                                        ignores_sync=lambda path: path == folder))


if __name__ == "__main__":
    if os.geteuid() != 0:
        # The programs cannot be looked into by their own user (PR_SET_DUMPABLE 0).
        print("not tried: only root's strace sees which bytes the programs write to which file")
        sys.exit(77)
    unittest.main(verbosity=2)
