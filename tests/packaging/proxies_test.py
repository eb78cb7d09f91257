#!/usr/bin/env python3
"""Runs the real nginx and HAProxy with the configurations of the package, between a phone and kivo-server."""
import os
import pathlib
import re
import shutil
import socket
import ssl
import subprocess
import tempfile
import time
import unittest
import urllib.error
import urllib.request

from installed_kivo import with_unpacked

SOURCE = pathlib.Path(os.environ["KIVO_SOURCE"])
PROGRAMS = pathlib.Path(os.environ["KIVO_BIN"])
MESSAGE = "Your card ending 4821 was charged EGP 150.00 at Carrefour City."
# nginx needs more around a site than the package's file has; its other logs are to be seen.
NGINX = """
daemon off;
pid {folder}/nginx.pid;
error_log {folder}/nginx-error.log info;
events {{}}
http {{
    access_log {folder}/nginx-access.log;
    client_body_temp_path {folder}/body;
    proxy_temp_path {folder}/proxy;
    fastcgi_temp_path {folder}/fastcgi;
    scgi_temp_path {folder}/scgi;
    uwsgi_temp_path {folder}/uwsgi;
    include {folder}/site.conf;
}}
"""


def free_port():
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


def wait_for(port):
    end = time.monotonic() + 20
    while time.monotonic() < end:
        with socket.socket() as one:
            if one.connect_ex(("127.0.0.1", port)) == 0:
                return
        time.sleep(0.05)
    raise TimeoutError(f"nothing listens on {port}")


class Proxies(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kivo-proxy-"))
        self.addCleanup(shutil.rmtree, self.folder)
        (self.folder / "certificates").mkdir()
        certificate = self.folder / "certificates/fullchain.pem"
        key = self.folder / "certificates/privkey.pem"
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
                        "-days", "2", "-subj", "/CN=localhost", "-addext", "subjectAltName=DNS:localhost",
                        "-keyout", key, "-out", certificate], check=True, capture_output=True)
        (self.folder / "certificates/kivo.pem").write_text(certificate.read_text() + key.read_text())
        self.port, self.inner = free_port(), free_port()
        self.public = f"https://localhost:{self.port}"
        data = self.folder / "data"
        data.mkdir()
        self.environment = {"PATH": f"{PROGRAMS}:/usr/sbin:/usr/bin:/bin", "HOME": str(self.folder), "LC_ALL": "C.UTF-8",
                            "XDG_DATA_HOME": str(data), "XDG_RUNTIME_DIR": str(data),
                            "SSL_CERT_FILE": str(certificate)}
        self.start_server()
        self.kivo("kivo-server", "book", "add", "Family", "--currency", "EGP")
        self.kivo("kivo-server", "person", "add", "Mona", "--book", "Family")
        printed = self.kivo("kivo-server", "device", "add", "Mona", "--name", "phone")
        self.address = re.search(r"https://\S+/p/[0-9a-f]{32}", printed)[0]
        self.secret = self.address.rpartition("/")[2]

    def start(self, *command, **options):
        """Starts a program that ends with the test."""
        with open(self.folder / "output", "ab") as output:
            program = subprocess.Popen(command, stdout=output, stderr=output, **options)
        self.addCleanup(program.wait, 20)
        self.addCleanup(program.terminate)
        return program

    def start_server(self):
        self.server = self.start(PROGRAMS / "kivo-server", "serve", "--listen", f"127.0.0.1:{self.inner}",
                                 "--public-url", self.public, env=self.environment)
        wait_for(self.inner)

    def kivo(self, *command, **options):
        return subprocess.run(command, env=self.environment, check=True, capture_output=True, text=True, timeout=60,
                              **options).stdout

    def configuration(self, name):
        """The package's file, with the ports and certificates of this test."""
        text = (SOURCE / "packaging/server" / name).read_text()
        for installed, here in (("/etc/ssl/kivo", str(self.folder / "certificates")), ("8787", str(self.inner))):
            self.assertIn(installed, text)
            text = text.replace(installed, here)
        return re.sub(r"(listen |\[::\]:|bind :)443\b", rf"\g<1>{self.port}", text)

    def start_nginx(self):
        (self.folder / "site.conf").write_text(self.configuration("nginx.conf"))
        (self.folder / "nginx.conf").write_text(NGINX.format(folder=self.folder))
        self.start("nginx", "-p", str(self.folder), "-e", str(self.folder / "nginx-error.log"),
                   "-c", str(self.folder / "nginx.conf"), env=with_unpacked(self.environment))
        wait_for(self.port)

    def start_haproxy(self):
        (self.folder / "haproxy.cfg").write_text(self.configuration("haproxy.cfg"))
        self.start("haproxy", "-db", "-f", str(self.folder / "haproxy.cfg"), env=with_unpacked(self.environment))
        wait_for(self.port)
        end = time.monotonic() + 20  # its first check of the server
        while self.status("/p/x") not in (404,) and time.monotonic() < end:
            time.sleep(0.1)

    def status(self, path):
        trusting = ssl.create_default_context(cafile=self.environment["SSL_CERT_FILE"])
        try:
            with urllib.request.urlopen(self.public + path, context=trusting, timeout=20) as answer:
                return answer.status
        except urllib.error.HTTPError as refusal:
            return refusal.code

    def process(self):
        return self.kivo("kivo-intents", "perform", "ProcessSMSIntent", "--smsText", "-", input=MESSAGE)

    def check(self):
        said = self.kivo("kivo-phone", "sign-in", "--user-id", "Mona", "--url", "-", input=self.address + "\n")
        self.assertIn("The backend answers.\nIts certificate is trusted.\n", said)
        self.assertEqual(self.process(), "Tracked EGP\u00a0150.00 at Carrefour City\n")
        self.assertEqual(self.status(f"/p/{self.secret}/report"), 200)
        self.assertEqual(self.status("/p/0123/report"), 404)
        self.assertEqual([self.status(path) for path in ("/metrics", "/healthz", "/")], [404, 404, 404])
        # An error of the proxy would name the path too.
        self.server.terminate()
        self.server.wait(20)
        self.assertIn("Saved offline", self.process())
        self.start_server()
        end = time.monotonic() + 20
        while self.status(f"/p/{self.secret}/report") != 200 and time.monotonic() < end:
            time.sleep(0.1)
        self.kivo("kivo-phone", "queue", "send")
        listed = self.kivo("kivo-server", "list", "--book", "Family", "--json")
        self.assertEqual(listed.count('"amount":"150.00"'), 2)
        for file in self.folder.rglob("*"):
            if file.is_file() and "defaults.sqlite3" not in file.name:  # the phone's own store
                self.assertNotIn(self.secret.encode(), file.read_bytes(), file)

    def test_nginx_carries_messages_and_logs_no_secret(self):
        self.start_nginx()
        self.check()

    def test_haproxy_carries_messages_and_logs_no_secret(self):
        self.start_haproxy()
        self.check()


if __name__ == "__main__":
    unittest.main()
