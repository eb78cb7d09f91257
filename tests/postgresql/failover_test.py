#!/usr/bin/env python3
"""Sixteen devices send messages through a proxy and two servers to PostgreSQL with a synchronous standby. The primary is
killed with SIGKILL and the standby takes its place, and so are the servers at random moments: what was acknowledged is
there once, with the same answer, and what was not is sent again under its key. One more device is a phone with the
extension, which keeps in its queue what it could not send.

Takes $KIVO_FAILOVER_SECONDS, 12 when it is not set."""
import contextlib
import glob
import http.client
import json
import os
import pathlib
import random
import re
import shutil
import signal
import socket
import subprocess
import tempfile
import threading
import time
import unittest

SOURCE = pathlib.Path(os.environ["KIVO_SOURCE"])
PROGRAMS = pathlib.Path(os.environ["KIVO_BIN"])
SECONDS = float(os.environ.get("KIVO_FAILOVER_SECONDS", "12"))
UNPACKED = SOURCE / "build/unpacked"
DEVICES = 16
MESSAGE = "Your card ending 4821 was charged EGP {}.{:02} at Carrefour City."
# Only the proxy's way of choosing a server is of interest here; proxies_test.py has the package's configuration.
PROXY = """
global
    maxconn 200
defaults
    mode http
    timeout connect 2s
    timeout client 20s
    timeout server 15s
    retries 0
frontend kivo
    bind 127.0.0.1:{port}
    default_backend kivo
backend kivo
    balance roundrobin
    server first 127.0.0.1:{first}
    server second 127.0.0.1:{second}
"""


def program(name):
    """An installed or unpacked program."""
    for place in (*glob.glob(str(UNPACKED / "usr/lib/postgresql/15/bin" / name)),
                  f"/usr/lib/postgresql/15/bin/{name}"):
        if os.path.exists(place):
            return place
    return name


def environment():
    libraries = glob.glob(str(UNPACKED / "usr/lib/*-linux-gnu*"))
    return {"PATH": f"/usr/sbin:/usr/bin:/bin:{UNPACKED}/usr/sbin:{UNPACKED}/usr/bin", "LC_ALL": "C.UTF-8",
            "LD_LIBRARY_PATH": ":".join(libraries)}


def as_nobody(*command):
    """PostgreSQL refuses to run as root: in a name space of its own, root is nobody."""
    wrapper = ["unshare", "--user", "--map-user=65534", "--map-group=65534"] if os.geteuid() == 0 else []
    return [*wrapper, *map(str, command)]


def free_port():
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


def wait_until(condition, what, seconds=30):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            raise TimeoutError(what)
        time.sleep(0.05)


def listens(port):
    with socket.socket() as one:
        return one.connect_ex(("127.0.0.1", port)) == 0


class Cluster:
    """One server of PostgreSQL, whose socket is in its folder."""

    def __init__(self, folder):
        self.folder = folder
        self.data = folder / "data"
        self.process = None

    def start(self, *settings):
        options = [part for setting in settings for part in ("-c", setting)]
        with open(self.folder / "log", "ab") as log:
            self.process = subprocess.Popen(
                as_nobody(program("postgres"), "-D", self.data, "-k", self.folder, "-c", "listen_addresses=", "-c",
                          "jit=off", *options), stdout=log, stderr=log, env=environment())
        wait_until(lambda: self.ask("SELECT 1") == "1", "PostgreSQL does not answer")

    def ask(self, sql):
        return subprocess.run([program("psql"), "-h", self.folder, "-U", "kivo", "-Atc", sql, "postgres"], text=True,
                              capture_output=True, env=environment(), timeout=30).stdout.strip()

    def signal_all(self, number):
        """Signals every process of the cluster; each has a session of its own."""
        children = pathlib.Path(f"/proc/{self.process.pid}/task/{self.process.pid}/children").read_text().split()
        for process in (self.process.pid, *map(int, children)):
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, number)

    def kill(self):
        """As a power cut does: no process of the cluster writes another byte."""
        self.signal_all(signal.SIGKILL)
        self.process.wait(30)

    def end(self):
        if self.process and self.process.poll() is None:
            self.process.send_signal(signal.SIGQUIT)
            self.process.wait(30)


class Device(threading.Thread):
    """Sends messages one after the other, each under its key until it is answered, as the extension's queue does."""

    def __init__(self, port, path, number, until):
        super().__init__()
        self.port, self.path, self.number, self.until = port, path, number, until
        self.answers = {}
        self.failures = 0
        self.longest = 0.0

    def run(self):
        count = 0
        while time.monotonic() < self.until:
            count += 1
            key = f"{self.number}-{count}"
            while key not in self.answers and time.monotonic() < self.until + 60:
                self.send(key, count)

    def send(self, key, count):
        text = MESSAGE.format(self.number * 1000 + count // 100, count % 100)
        body = json.dumps({"sms_text": text, "user_id": f"P{self.number}", "expense_date": "2026-11-21",
                           "idempotency_key": key})
        begin = time.monotonic()
        try:
            connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=15)
            with contextlib.closing(connection):
                connection.request("POST", self.path, body)
                answer = connection.getresponse()
                text = answer.read()
        except OSError:
            text, answer = b"", None
        self.longest = max(self.longest, time.monotonic() - begin)
        if answer is not None and answer.status == 200:
            self.answers.setdefault(key, text)
        else:
            self.failures += 1
            time.sleep(0.2)


class Phone(threading.Thread):
    """Has the extension process messages, one after the other, with files of its own."""

    def __init__(self, folder, url, until):
        super().__init__()
        self.until = until
        self.environment = environment() | {"HOME": str(folder), "XDG_RUNTIME_DIR": str(folder)}
        self.dialogs = []
        self.call("kivo-phone", "sign-in", "--user-id", "Phone", "--url", url)

    def call(self, name, *arguments, text=""):
        return subprocess.run([PROGRAMS / name, *arguments], input=text, env=self.environment, text=True,
                              capture_output=True, timeout=60, check=True).stdout

    def process(self, text):
        return self.call("kivo-intents", "perform", "ProcessSMSIntent", "--smsText", "-", text=text)

    def run(self):
        while time.monotonic() < self.until:
            self.dialogs.append(self.process(MESSAGE.format(900_000 + len(self.dialogs), 0)))
            time.sleep(0.5)  # ten failures in a row drop a message

    def waiting(self):
        return len(json.loads(self.call("kivo-phone", "queue", "export")))

    def send_the_rest(self):
        end = time.monotonic() + 60
        while self.waiting() and time.monotonic() < end:
            self.call("kivo-phone", "queue", "send")


class ServerKills(threading.Thread):
    """Kills one of the servers at a time with SIGKILL and starts it again, until it is told to stop."""

    def __init__(self, starts):
        super().__init__()
        self.starts = starts
        self.servers = [start() for start in starts]
        self.kills = 0
        self.stopped = threading.Event()

    def run(self):
        while not self.stopped.wait(random.uniform(0.2, 1.5)):
            chosen = random.randrange(len(self.servers))
            self.servers[chosen].kill()
            self.servers[chosen].wait(20)
            self.kills += 1
            time.sleep(random.uniform(0, 0.3))
            self.servers[chosen] = self.starts[chosen]()

    def stop(self):
        self.stopped.set()
        if self.is_alive():
            self.join(30)
        for number, server in enumerate(self.servers):
            if server.poll() is not None:  # it found no database when it was started
                self.servers[number] = self.starts[number]()


class Failover(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kivo-failover-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.addCleanup(self.show_output)
        for name in ("primary", "standby", "home"):
            (self.folder / name).mkdir()
        self.primary, self.standby = Cluster(self.folder / "primary"), Cluster(self.folder / "standby")
        self.addCleanup(self.standby.end)
        self.addCleanup(self.primary.end)
        subprocess.run(as_nobody(program("initdb"), "-D", self.primary.data, "-U", "kivo", "-A", "trust",
                                 "--encoding=UTF8", "--no-locale", "--no-sync"),
                       check=True, capture_output=True, env=environment())
        self.primary.start()
        subprocess.run(as_nobody(program("pg_basebackup"), "-h", self.primary.folder, "-U", "kivo", "-D",
                                 self.standby.data, "-R", "-c", "fast", "--no-sync"),
                       check=True, capture_output=True, env=environment())
        self.standby.start()
        self.primary.ask("ALTER SYSTEM SET synchronous_standby_names = '*'")
        self.primary.ask("SELECT pg_reload_conf()")
        wait_until(lambda: self.primary.ask("SELECT sync_state FROM pg_stat_replication") == "sync",
                   "the standby does not follow")
        self.environment = environment() | {
            "HOME": str(self.folder / "home"), "XDG_DATA_HOME": str(self.folder / "home"),
            "KIVO_DATABASE": f"postgresql:///postgres?user=kivo&host={self.primary.folder},{self.standby.folder}"
                             "&target_session_attrs=read-write"}

    def show_output(self):
        """What the programs complained about, if something failed."""
        output = self.folder / "output"
        if any(error for _, error in self._outcome.result.errors + self._outcome.result.failures) and output.exists():
            print(output.read_text())

    def kivo(self, *arguments):
        result = subprocess.run([PROGRAMS / "kivo-server", *arguments], env=self.environment, text=True,
                                capture_output=True, timeout=60)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout

    def start(self, *command):
        with open(self.folder / "output", "ab") as output:
            started = subprocess.Popen(list(map(str, command)), env=self.environment, stdout=output, stderr=output)
        self.addCleanup(started.wait, 20)
        self.addCleanup(started.terminate)
        return started

    def start_server(self, port):
        return self.start(PROGRAMS / "kivo-server", "serve", "--listen", f"127.0.0.1:{port}", "--public-url",
                          f"http://127.0.0.1:{self.port}")

    def test_a_killed_primary_loses_no_acknowledged_message(self):
        self.port, first, second = free_port(), free_port(), free_port()
        servers = ServerKills([lambda port=port: self.start_server(port) for port in (first, second)])
        for port in (first, second):
            wait_until(lambda port=port: listens(port), "a server does not listen")
        (self.folder / "haproxy.cfg").write_text(PROXY.format(port=self.port, first=first, second=second))
        self.start("haproxy", "-db", "-f", self.folder / "haproxy.cfg")
        wait_until(lambda: listens(self.port), "the proxy does not listen")
        self.kivo("book", "add", "Family", "--currency", "EGP")
        until = time.monotonic() + SECONDS
        devices = []
        for number in range(DEVICES):
            self.kivo("person", "add", f"P{number}", "--book", "Family")
            printed = self.kivo("device", "add", f"P{number}", "--name", "phone")
            path = re.search(r"(/p/[0-9a-f]{32})\n", printed)[1]
            devices.append(Device(self.port, path + "/functions/v1/sms-extraction", number, until))
        (self.folder / "phone").mkdir()
        self.kivo("person", "add", "Phone", "--book", "Family")
        printed = self.kivo("device", "add", "Phone", "--name", "phone")
        phone = Phone(self.folder / "phone", re.search(r"http://\S+/p/[0-9a-f]{32}", printed)[0], until)
        for device in (*devices, phone):
            device.until = time.monotonic() + SECONDS
            device.start()
        servers.start()
        self.addCleanup(servers.stop)
        time.sleep(SECONDS * random.uniform(0.3, 0.5))
        # The standby falls behind, so that what only the primary has is lost.
        self.standby.kill()
        time.sleep(0.3)
        self.primary.kill()
        self.standby.start()
        time.sleep(1)
        subprocess.run(as_nobody(program("pg_ctl"), "promote", "-D", self.standby.data), check=True,
                       capture_output=True, env=environment())
        # It waits for no standby of its own now.
        self.standby.ask("ALTER SYSTEM RESET synchronous_standby_names")
        self.standby.ask("SELECT pg_reload_conf()")
        for device in (*devices, phone):
            device.join(SECONDS + 120)
        servers.stop()
        self.check_phone(phone)
        acknowledged = {(device.number, key): text for device in devices for key, text in device.answers.items()}
        self.assertGreater(len(acknowledged), DEVICES)
        self.assertGreater(sum(device.failures for device in devices), 0, "nothing failed: the kill came too late")
        booked = json.loads(self.kivo("list", "--book", "Family", "--json"))
        keys = [entry["key"] for entry in booked if entry["person"] != "Phone"]
        self.assertEqual(len(keys), len(set(keys)), "an entry is there twice")
        self.assertEqual(set(keys), {key for _, key in acknowledged}, "an acknowledged message is missing")
        for device in devices:  # the same answer again
            kept = dict(device.answers)
            for key in random.sample(sorted(kept), min(5, len(kept))):
                device.answers.pop(key)
                device.send(key, 1)  # with another text
                self.assertEqual(device.answers.get(key), kept[key])
        print(f"{servers.kills} servers killed, {len(phone.dialogs)} messages of the phone")
        print(f"{len(acknowledged)} messages acknowledged, {sum(device.failures for device in devices)} attempts failed,"
              f" the longest took {max(device.longest for device in devices):.1f} s")

    def check_phone(self, phone):
        """What it said was tracked or saved offline is in the book, once."""
        offline = sum("Saved offline" in dialog for dialog in phone.dialogs)
        self.assertGreater(offline, 0, f"the phone missed nothing: {phone.dialogs}")
        self.assertEqual(offline + sum(dialog.startswith("Tracked") for dialog in phone.dialogs), len(phone.dialogs))
        phone.send_the_rest()
        self.assertEqual(phone.waiting(), 0)
        booked = json.loads(self.kivo("list", "--book", "Family", "--json"))
        amounts = [entry["amount"] for entry in booked if entry["person"] == "Phone"]
        self.assertEqual(sorted(amounts), [f"{900_000 + number}.00" for number in range(len(phone.dialogs))])


if __name__ == "__main__":
    unittest.main()
