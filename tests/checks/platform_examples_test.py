#!/usr/bin/env python3
"""Runs the examples of docs/platform.md unchanged, and compares their output.

Needs the programs in the folder that KIVO_PROGRAMS names and the bus's service files in the one that
KIVO_SERVICES names. All of it happens in a folder, on a bus and beside a backend of its own.
"""
import contextlib
import http.server
import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOCUMENT = (ROOT / "docs/platform.md").read_text(encoding="utf-8")
BACKEND_IN_DOCUMENT = "https://backend.example"

# An example, what is said of it in a comment before it, and what it prints, if that is shown.
EXAMPLE = re.compile(
    r"(?:<!-- (?P<remark>[^\n]*) -->\n)?^```(?P<language>sh|python)\n(?P<text>.*?)^```\n"
    r"(?:```text\n(?P<output>.*?)^```\n)?", re.MULTILINE | re.DOTALL)

SAVED = {"saved": True, "transaction_type": "expense", "reason": None,
         "expense": {"id": "1", "description": "Carrefour City", "amount": 150.0, "currency": "EGP",
                     "category": "Groceries", "expense_date": "2026-01-31"}}

CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path={home}/bus</listen><servicedir>{services}</servicedir>
<auth>EXTERNAL</auth><policy context="default"><allow send_destination="*" eavesdrop="true"/>
<allow eavesdrop="true"/><allow own="*"/></policy></busconfig>
"""


class Backend(http.server.BaseHTTPRequestHandler):
    """Saves whatever it is sent."""

    saved = 0

    def do_POST(self):
        Backend.saved += 1
        self.rfile.read(int(self.headers["Content-Length"]))
        body = json.dumps(SAVED).encode()
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


def as_seen(text):
    """The text as it looks: the document says where a blank is a special one."""
    return text.replace("\u00a0", " ")


def eventually(condition):
    end = time.monotonic() + 60
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.02)
    return True


class ThePlatformDocument(unittest.TestCase):
    def setUp(self):
        stack = contextlib.ExitStack()
        self.addCleanup(stack.close)
        self.home = pathlib.Path(stack.enter_context(tempfile.TemporaryDirectory()))
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Backend)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        stack.callback(server.server_close)
        stack.callback(server.shutdown)
        self.backend = f"http://127.0.0.1:{server.server_port}"
        self.environment = {
            "HOME": str(self.home), "LANG": "en_US.UTF-8", "TZ": "UTC",
            "PATH": f"{os.environ['KIVO_PROGRAMS']}:/usr/bin:/bin",
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.home}/bus",
        }
        (self.home / "bus.conf").write_text(CONFIGURATION.format(
            home=self.home, services=os.environ["KIVO_SERVICES"]), encoding="utf-8")
        bus = subprocess.Popen(["dbus-daemon", f"--config-file={self.home}/bus.conf", "--nofork", "--nopidfile"],
                               env=self.environment)
        stack.callback(bus.wait, 10)
        stack.callback(bus.terminate)
        self.assertTrue(eventually((self.home / "bus").is_socket))
        self.goingOn = []
        stack.callback(lambda: [program.kill() for program, _, _ in self.goingOn])

    def command(self, example):
        text = example["text"].replace(BACKEND_IN_DOCUMENT, self.backend)
        return ["/usr/bin/python3", "-c", text] if example["language"] == "python" else ["bash", "-euc", text]

    def run_example(self, example):
        result = subprocess.run(self.command(example), env=self.environment, cwd=self.home, timeout=100,
                                capture_output=True, text=True, stdin=subprocess.DEVNULL)
        self.assertEqual((result.stderr, result.returncode), ("", 0), example["text"])
        self.assertEqual(as_seen(result.stdout), example["output"] or "", example["text"])
        # Each saved transaction is heard of before the next one, however slow the machine.
        for _, output, _ in self.goingOn:
            self.assertTrue(eventually(lambda: output.read_bytes().count(b"\n") > Backend.saved))

    def start_example(self, example):
        """Starts an example that goes on, and waits for its first line."""
        output = self.home / f"output-{len(self.goingOn)}"
        with output.open("wb") as file:
            program = subprocess.Popen(self.command(example), env=self.environment, cwd=self.home, stdout=file)
        self.goingOn.append((program, output, example["output"]))
        self.assertTrue(eventually(lambda: output.stat().st_size > 0))

    def test_has_examples_with_the_documented_output(self):
        last = None
        count = 0
        for example in EXAMPLE.finditer(DOCUMENT):
            count += 1
            remark = example["remark"] or ""
            with self.subTest(example=example["text"][:60]):
                if remark.startswith("save as "):
                    (self.home / remark.removeprefix("save as ")).write_text(example["text"], encoding="utf-8")
                elif remark.startswith("goes on"):
                    self.start_example(example)
                elif remark.startswith("run this last"):
                    last = example
                else:
                    self.assertEqual(remark, "")
                    self.run_example(example)
        self.assertGreater(count, 10)
        self.run_example(last)
        for program, output, expected in self.goingOn:
            self.assertTrue(eventually(lambda: as_seen(output.read_text(encoding="utf-8")) == expected),
                            output.read_text(encoding="utf-8"))
            program.send_signal(signal.SIGTERM)
            program.wait(10)

    def test_has_every_example_run(self):
        fenced = re.findall(r"^```(\w+)$", DOCUMENT, re.MULTILINE)
        found = [example["language"] for example in EXAMPLE.finditer(DOCUMENT)]
        self.assertEqual([language for language in fenced if language != "text"], found)
        shown = sum(example["output"] is not None for example in EXAMPLE.finditer(DOCUMENT))
        self.assertEqual(fenced.count("text"), shown)


if __name__ == "__main__":
    sys.exit(unittest.main())
