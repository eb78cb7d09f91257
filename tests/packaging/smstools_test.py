#!/usr/bin/env python3
"""Runs the real smsd of the SMS Server Tools on a modem behind a pseudo terminal, whose messages
Kivo's handler hands over; and the handler on the forms of file that this daemon does not write."""
import pathlib
import subprocess
import tempfile
import unittest

from installed_kivo import PREFIX, InstalledKivo, running, with_unpacked
from sms_modem import SmsModem, delivered

HANDLER = "share/kivo/smsd-event"
LATIN = "Your card was charged € 150.00 at @Café, $(id) [ok]"
ARABIC = "بنك نيلو: تم إيداع راتب بمبلغ ١٨٬٥٠٠٫٠٠ ج.م من شركة الأفق"


class Smsd(unittest.TestCase):
    def setUp(self):
        self.kivo = InstalledKivo()
        self.addCleanup(self.kivo.close)
        folder = tempfile.TemporaryDirectory(prefix="kivo-smsd-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def daemon(self, *settings):
        """The daemon on the modem, with the two lines that the handler's head shows."""
        for name in ("outgoing", "checked", "incoming", "failed"):
            (self.folder / name).mkdir()
        handler = self.folder / "handler"
        handler.write_text(f"#!/bin/sh\nexec {PREFIX / HANDLER} MyBank 'Bank of *' -- \"$@\"\n")
        handler.chmod(0o755)
        folders = "\n".join(f"{name} = {self.folder}/{name}" for name in ("outgoing", "checked", "incoming", "failed"))
        (self.folder / "smsd.conf").write_text(f"""devices = GSM1
{folders}
logfile = {self.folder}/log
loglevel = 5
infofile = {self.folder}/info
pidfile = {self.folder}/pid
delaytime = 1
eventhandler = {handler}
{chr(10).join(settings)}
[GSM1]
device = {self.folder}/modem
init = AT
incoming = yes
""")
        return running("smsd", "-t", f"-c{self.folder}/smsd.conf", env=with_unpacked(self.kivo.environment),
                       cwd=self.folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def modem(self, *messages):
        modem = SmsModem(self.folder / "modem", messages)
        self.addCleanup(modem.close)

    def hand(self, event, headers, body):
        """The handler called as the daemon calls it, for MyBank alone."""
        file = self.folder / "GSM1.abcdef"
        file.write_bytes("".join(f"{name}: {value}\n" for name, value in headers.items()).encode() + b"\n" + body)
        return subprocess.run([PREFIX / HANDLER, "MyBank", "--", event, file], env=self.kivo.environment,
                              capture_output=True, timeout=60)

    def test_hands_over_received_messages(self):
        emoji = "paid 💳 ".encode("utf-16-be") * 3
        cut = emoji.index(b"\xdc\xb3")
        long_text = "A" * 150 + "\n\nsecond part"
        self.modem(delivered("MyBank", LATIN), delivered("MyBank", ARABIC.encode("utf-16-be")),
                   delivered("Mother", "Call me"),
                   delivered("MyBank", emoji[cut:], (7, 2, 2)), delivered("MyBank", emoji[:cut], (7, 2, 1)),
                   delivered("Bank of Ni", long_text[:150], (9, 2, 1)), delivered("Bank of Ni", long_text[150:], (9, 2, 2)))
        with self.daemon():
            self.assertEqual(self.kivo.backend.texts(4), sorted([LATIN, ARABIC, "paid 💳 " * 3, long_text]))

    def test_hands_over_messages_that_the_daemon_writes_as_utf8(self):
        self.modem(delivered("MyBank", LATIN), delivered("MyBank", ARABIC.encode("utf-16-be")))
        with self.daemon("incoming_utf8 = yes"):
            self.assertEqual(self.kivo.backend.texts(2), sorted([LATIN, ARABIC]))

    def test_ignores_header_lines_in_the_text(self):
        result = self.hand("RECEIVED", {"From": "Mother", "Alphabet": "ISO"}, b"From: MyBank\n\nFrom: MyBank\n")
        self.assertEqual((result.returncode, self.kivo.backend.requests), (0, []))

    def test_ignores_a_sender_whose_name_contains_headers(self):
        self.modem(*[delivered(name, f"attack {name!r}") for name in
                     ("\nFrom: MyBank", "MyBank\nx", "MyBank\nFrom: MyBank", "MyBank\n\n", "x\nAlphabet: ISO")],
                   delivered("MyBank", "after it"))
        with self.daemon():
            self.assertEqual(self.kivo.backend.texts(1), ["after it"])

    def test_uses_the_first_of_duplicate_headers(self):
        for head in ["From: Mother\nFrom: MyBank\nAlphabet: ISO\n", "From: MyBank\nAlphabet: binary\nAlphabet: ISO\n",
                     "From: \nFrom: MyBank\nFrom_TOA: D0 alphanumeric, unknown\nAlphabet: ISO\n"]:
            with self.subTest(head):
                file = self.folder / "GSM1.abcdef"
                file.write_text(head + "\nattack")
                result = subprocess.run([PREFIX / HANDLER, "MyBank", "--", "RECEIVED", file],
                                        env=self.kivo.environment, capture_output=True, timeout=60)
                self.assertEqual((result.returncode, self.kivo.backend.requests), (0, []))

    def test_ignores_other_events_than_received_texts(self):
        head = {"From": "MyBank", "Alphabet": "ISO"}
        for event, headers in [("SENT", head), ("REPORT", head), ("RECEIVED", head | {"Alphabet": "binary"})]:
            with self.subTest(event=event, headers=headers):
                result = self.hand(event, headers, b"text")
                self.assertEqual((result.returncode, self.kivo.backend.requests), (0, []))
        self.assertEqual(self.hand("RECEIVED", head, b"text").returncode, 0)
        self.assertEqual(self.kivo.backend.texts(1), ["text"])

    def test_hands_over_the_valid_part_of_a_broken_text(self):
        result = self.hand("RECEIVED", {"From": "MyBank", "Alphabet": "UCS2"}, b"\0a\xd8\x3d\0b\0")
        self.assertEqual((result.returncode, self.kivo.backend.texts(1)), (0, ["ab"]))

    def test_prints_its_usage(self):
        result = subprocess.run([PREFIX / HANDLER, "RECEIVED", "file"], capture_output=True, text=True, timeout=60)
        self.assertEqual((result.returncode, result.stdout), (64, ""))
        self.assertIn("usage: smsd-event SENDER... -- EVENT FILE", result.stderr)


if __name__ == "__main__":
    unittest.main()
