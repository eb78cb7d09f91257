"""Checks the state of a store after a power cut against the rule of docs/reliability.md."""
import json
import pathlib
import re
import shutil
import sqlite3

SECRET = re.compile(rb"SECRET\d+")
LOCK = "smsQueueDrainLock"
NOTE = "-unerased"


class Broken(Exception):
    """The rule does not hold."""


def write_state(state, folder):
    """Replaces `folder` with the files of `state`."""
    folder = pathlib.Path(folder)
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(mode=0o700, parents=True)
    for path, content in state.items():
        file = folder / path
        file.parent.mkdir(mode=0o700, parents=True, exist_ok=True)
        file.write_bytes(content)
        file.chmod(0o600)


def values(file):
    """The values of a store, or the rows of another database, with SQLite's own recovery; none when it
    does not exist yet."""
    if not pathlib.Path(file).exists():
        return {}
    connection = sqlite3.connect(file, isolation_level=None)
    try:
        connection.execute("PRAGMA synchronous = OFF")
        whole = connection.execute("PRAGMA integrity_check").fetchall()
        if whole != [("ok",)]:
            raise Broken(f"integrity_check says {whole[:3]}")
        if connection.execute("SELECT count(*) FROM sqlite_schema").fetchone() == (0,):
            return {}
        tables = [name for name, in connection.execute("SELECT name FROM sqlite_schema WHERE type = 'table'")]
        if tables == ["defaults"]:
            return dict(connection.execute("SELECT key, value FROM defaults"))
        return {f"{table} {row[:2]}": repr(row) for table in tables
                for row in connection.execute(f"SELECT * FROM {table}")}
    except sqlite3.Error as error:
        raise Broken(f"the store cannot be read: {error}") from error
    finally:
        connection.close()


def check_agreement(found):
    try:
        queue = json.loads(found.get("pendingSmsQueue", "[]"))
    except ValueError as error:
        raise Broken("the queue cannot be decoded") from error
    count = found.get("pendingSmsQueueCount", "0")
    if str(len(queue)) != count:
        raise Broken(f"{len(queue)} texts in the queue, counted as {count}")
    totals = [key in found for key in ("todayDateKey", "todayTotal", "todayCount", "monthlyTotal")]
    if any(totals) != all(totals):
        raise Broken("some of the four totals without the others")


def secrets(found):
    return {secret for value in found.values() if isinstance(value, str)
            for secret in SECRET.findall(value.encode())}


class Judge:
    """Knows each commit of a recording, and from which event on it may not be lost."""

    def __init__(self, recording, disk, store, scratch, several=False):
        self.store = store
        self.scratch = pathlib.Path(scratch)
        self.commits = []  # (event, values)
        self.floors = [(-1, 0)]  # (event, index of the commit that must be there from then on)
        self._number = 0
        self._learn(recording, disk, several)

    def read(self, state):
        self._number += 1
        folder = self.scratch / str(self._number % 8)
        write_state(state, folder)
        return values(folder / self.store)

    def _learn(self, recording, disk, several):
        wal = self.store + "-wal"
        self.commits.append((-1, self.read(disk.now())))
        committing = False
        for index, event in enumerate(recording.events):
            disk.apply(index, event)
            if event[0] == "write" and event[1] == wal:
                if committing:
                    self._learn_commit(index, self.read(disk.now()))
                # The header of a frame that ends a commit holds the size of the database.
                committing = len(event[3]) == 24 and event[3][4:8] != bytes(4)
            if event[0] == "sync" and event[1] == wal:
                self._must_keep(index, self._commit_before(event[2]))
            if event[0] == "said" and not several:
                self._must_keep(index, self._last_but_lock(event[2]))

    def _learn_commit(self, index, found):
        if found != self.commits[-1][1]:
            self.commits.append((index, found))

    def _commit_before(self, event):
        return max(number for number, commit in enumerate(self.commits) if commit[0] < event)

    def _last_but_lock(self, began):
        """The last commit since the event `began` that changed more than the drain lock, which is
        not synced; the first commit when there is none."""
        def rest(number):
            return {key: value for key, value in self.commits[number][1].items() if key != LOCK}
        number = len(self.commits) - 1
        while number > 0 and rest(number) == rest(number - 1):
            number -= 1
        return number if self.commits[number][0] >= began else 0

    def _must_keep(self, index, number):
        self.floors.append((index, max(number, self.floors[-1][1])))

    def check(self, state, cut):
        """Raises Broken unless `state` may be what a cut before the event `cut` leaves."""
        raw = b"".join(content for path, content in state.items() if path.startswith(self.store))
        found = self.read(state)
        check_agreement(found)
        floor = max(number for event, number in self.floors if event < cut)
        allowed = [number for number, commit in enumerate(self.commits)
                   if number >= floor and commit[0] < cut]
        same = [number for number in allowed if self.commits[number][1] == found]
        if not same:
            raise Broken("acknowledged values are gone" if found in
                         [commit[1] for commit in self.commits[:floor]] else
                         "the values are those of no commit")
        if self.store + NOTE in state:
            return
        earlier = set().union(*(secrets(commit[1]) for commit in self.commits[:same[0] + 1]))
        left = (earlier - secrets(found)) & set(SECRET.findall(raw))
        if left:
            raise Broken(f"{len(left)} erased texts are in the files, and no note says so")
