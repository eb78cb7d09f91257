"""The installed Kivo in $KIVO_INSTALLED, with a home of its own and a backend on loopback that it is
signed in to. Uses nobody's home, bus or network."""
import contextlib
import http.server
import json
import os
import pathlib
import subprocess
import tempfile
import threading

PREFIX = pathlib.Path(os.environ["KIVO_INSTALLED"])
ANSWER = {
    "saved": True, "transaction_type": "expense",
    "expense": {"id": "e1", "description": "Cafe", "amount": 150.0, "category": "Food", "expense_date": "2026-11-21"},
}


class Backend:
    """Saves every text that it is sent as an expense of 150, and remembers the requests."""

    def __init__(self):
        self.requests = []
        self._news = threading.Condition()
        outer = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_POST(self):
                body = json.loads(self.rfile.read(int(self.headers["Content-Length"])))
                with outer._news:
                    outer.requests.append(body)
                    outer._news.notify_all()
                answer = json.dumps(ANSWER).encode()
                self.send_response(200)
                self.send_header("Content-Length", str(len(answer)))
                self.end_headers()
                self.wfile.write(answer)

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.url = f"http://127.0.0.1:{self._server.server_port}"
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def texts(self, count, seconds=60):
        """The texts it was sent, sorted, once there are `count` or the time is over."""
        with self._news:
            self._news.wait_for(lambda: len(self.requests) >= count, seconds)
            return sorted(request["sms_text"] for request in self.requests)

    def close(self):
        self._server.shutdown()
        self._server.server_close()


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
