"""The real programs in private folders; records every run."""
import contextlib
import datetime
import json
import os
import pathlib
import signal
import socket
import sqlite3
import subprocess
import time

from judge import write_state
from recording import Recording

PROGRAMS = pathlib.Path(os.environ["KIVO_PROGRAMS"])
GROUP = "data/group.app.kivo.expenses/defaults.sqlite3"
CENTER = "data/app.kivo.NotificationCenter/defaults.sqlite3"
LEDGER = "data/app.kivo.ledger/ledger.sqlite3"
SENDERS = "config/kivo/sms-watcher.toml"


class Phone:
    """A home in `folder`, which need not be empty."""

    def __init__(self, folder):
        self.home = pathlib.Path(folder)
        self.home.mkdir(parents=True, exist_ok=True)
        self.number = 0
        kept = {name: value for name, value in os.environ.items()
                if not name.startswith(("XDG_", "DBUS_"))}
        self.environment = kept | {"HOME": str(self.home), "LANG": "C.UTF-8", "LC_ALL": "C.UTF-8",
                                   "XDG_DATA_HOME": str(self.home / "data"),
                                   "XDG_CONFIG_HOME": str(self.home / "config")}
        self.recording = None

    @classmethod
    def after_cut(cls, folder, state):
        write_state(state, folder)
        return cls(folder)

    def set_up(self, *arguments):
        """kivo-phone, not recorded."""
        subprocess.run([PROGRAMS / "kivo-phone", *arguments], env=self.environment, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def sign_in(self, url="http://127.0.0.1:1"):
        self.set_up("sign-in", "--user-id", "u", "--url", url)

    def fill_queue(self, count):
        """Queues `count` texts at once, in the form of one that a run has queued."""
        self.perform_unrecorded(self.text())
        store = [PROGRAMS / "kivo-phone", "store", "get", "pendingSmsQueue"]
        item = json.loads(subprocess.run(store, env=self.environment, check=True,
                                         stdout=subprocess.PIPE).stdout)[0]
        items = [item | {"id": f"{number:08}-0000-4000-8000-000000000000", "smsText": self.text()}
                 for number in range(count)]
        queue = json.dumps(items, separators=(",", ":"))
        self.set_up("store", "set", "pendingSmsQueue", queue)
        self.set_up("store", "set", "pendingSmsQueueCount", str(count))

    def make_first_book(self, count):
        """A book of version 1 with transactions in two spellings of one category."""
        header = (pathlib.Path(__file__).parents[2] / "testkit/first_book.h").read_text()
        file = self.home / LEDGER
        file.parent.mkdir(mode=0o700, parents=True)
        with contextlib.closing(sqlite3.connect(file, isolation_level=None)) as book:
            book.executescript(header.partition('R"(')[2].partition(')" + sql')[0])
            for number in range(count):
                book.execute("INSERT INTO transactions VALUES (?, 'u', ?, '2026-01-31', 'expense', 1000, 'EGP',"
                             "'Café', ?, 'CAFÉ', '', '', 'booked', NULL, ?)",
                             (number + 1, f"KEY-{number}", ("groceries", "Groceries")[number % 2], self.text()))

    def text(self):
        self.number += 1
        return f"Paid {self.number} SECRET{os.getpid()}{self.number:06} at Cafe"

    def perform_unrecorded(self, text):
        return subprocess.run(self._intent(), input=text, env=self.environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True).stdout

    @staticmethod
    def _intent():
        return [PROGRAMS / "kivo-intents", "perform", "ProcessSMSIntent", "--smsText", "-"]

    def record(self):
        """From here on runs are recorded; what there is counts as synced."""
        self.recording = Recording(self.home)
        return self.recording

    def perform(self, kill=None):
        return self.recording.run(self._intent(), self.text(), kill, env=self.environment)

    def perform_together(self, count):
        started = []
        for _ in range(count):
            command = ["sh", "-c", 'printf %s "$0" | exec "$@"', self.text(), *self._intent()]
            started.append(command)
        script = "\n".join(_quoted(command) + " >/dev/null &" for command in started) + "\nwait"
        self.recording.run(["sh", "-c", script], env=self.environment)

    def phone(self, *arguments):
        return self.recording.run([PROGRAMS / "kivo-phone", *arguments], env=self.environment)

    @contextlib.contextmanager
    def notification_center(self):
        """Runs the recorded center on a private bus; yields a call that adds a request."""
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"],
                               stdout=subprocess.PIPE, env=self.environment, text=True)
        address = bus.stdout.readline().strip()
        environment = self.environment | {"DBUS_SESSION_BUS_ADDRESS": address}
        process, log = self.recording.start([PROGRAMS / "kivo-notification-center"],
                                            env=environment)

        def call(member, *arguments):
            return subprocess.run(
                ["gdbus", "call", "--session", "--dest", "app.kivo.NotificationCenter",
                 "--object-path", "/app/kivo/NotificationCenter", "--method",
                 f"app.kivo.NotificationCenter1.{member}", "app.kivo.expenses.intents", *arguments],
                env=environment, check=True, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        try:
            subprocess.run(["gdbus", "wait", "--session", "--timeout", "20",
                            "app.kivo.NotificationCenter"], env=environment, check=True)
            yield call
        finally:
            bus.terminate()  # the center ends with it
            bus.communicate(timeout=20)
            process.communicate(timeout=20)
            self.recording.finish(log)


    @contextlib.contextmanager
    def ledger(self):
        """Runs the recorded ledger; yields a call that sends it a message and returns the response."""
        path = self.home / "ledger.sock"
        process, log = self.recording.start([PROGRAMS / "kivo-ledger", "serve", "--socket", path],
                                            env=self.environment)

        def send(text, key):
            today = datetime.date.today().isoformat()  # an ignored message of long ago is not kept
            body = json.dumps({"sms_text": text, "user_id": "u", "expense_date": today,
                               "idempotency_key": key}).encode()
            with socket.socket(socket.AF_UNIX) as connection:
                connection.connect(str(path))
                connection.sendall(b"POST /functions/v1/sms-extraction HTTP/1.1\r\nHost: localhost\r\n"
                                   b"Content-Length: %d\r\n\r\n%s" % (len(body), body))
                answer = connection.makefile("rb").read()
            assert answer.startswith(b"HTTP/1.1 200 "), answer
            return json.loads(answer.partition(b"\r\n\r\n")[2])
        try:
            for _ in range(500):
                with contextlib.suppress(OSError), socket.socket(socket.AF_UNIX) as connection:
                    connection.connect(str(path))
                    break
                time.sleep(0.02)
            yield send
        finally:
            children = pathlib.Path(f"/proc/{process.pid}/task/{process.pid}/children").read_text()
            os.kill(int(children), signal.SIGTERM)
            process.communicate(timeout=20)
            self.recording.finish(log)


def _quoted(command):
    return " ".join("'" + str(word).replace("'", "'\\''") + "'" for word in command)
