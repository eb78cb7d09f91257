#!/usr/bin/env python3
"""Runs the real gammu-smsd on its dummy phone, whose messages Kivo's handler hands over."""
import pathlib
import random
import subprocess
import tempfile
import unittest

from installed_kivo import PREFIX, InstalledKivo, running, with_unpacked

ARABIC = "بنك نيلو: تم إيداع راتب بمبلغ ١٨٬٥٠٠٫٠٠ ج.م من شركة الأفق في حسابك. "
HANDLER = "share/kivo/gammu-smsd-receive"


def units(text):
    """UTF-16 as the phone has it, in pieces of one unit."""
    raw = text.encode("utf-16-be", "surrogatepass")
    return [raw[at:at + 2] for at in range(0, len(raw), 2)]


def message(sender, text_units, part=None, coding="Unicode_No_Compression"):
    """A received message as a file of the dummy phone; `part` is (reference, how many, which)."""
    lines = ["[SMSBackup000]", "PDU = Deliver", "DateTime = 20261121T070457Z", "State = UnRead",
             f'Number = "{sender.encode("ascii", "replace").decode()}"',
             f"NumberUnicode = {sender.encode('utf-16-be').hex().upper()}"]
    if part:
        lines.append("UDH = 050003{:02X}{:02X}{:02X}".format(*part))
    for number, at in enumerate(range(0, len(text_units), 50)):
        lines.append(f"Text{number:02} = {b''.join(text_units[at:at + 50]).hex().upper()}")
    return "\n".join(lines + [f"Coding = {coding}", "Folder = 1", f"Length = {len(text_units)}", "Class = -1", ""])


def parts(sender, text, reference, size=67):
    """A long text in as many messages as it takes, which the network may deliver in any order."""
    whole = units(text)
    pieces = [whole[at:at + size] for at in range(0, len(whole), size)]
    return [message(sender, piece, (reference, len(pieces), which))
            for which, piece in enumerate(pieces, start=1)]


class GammuSmsd(unittest.TestCase):
    def setUp(self):
        self.kivo = InstalledKivo()
        self.addCleanup(self.kivo.close)
        folder = tempfile.TemporaryDirectory(prefix="kivo-gammu-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def daemon(self, messages, run_on_receive):
        """The daemon on a phone that holds `messages`."""
        phone = self.folder / "phone/sms/1"
        phone.mkdir(parents=True)
        for number, text in enumerate(messages, start=1):
            (phone / str(number)).write_text(text)
        (self.folder / "inbox").mkdir()
        (self.folder / "smsdrc").write_text(f"""[gammu]
model = dummy
connection = none
device = {self.folder}/phone
[smsd]
service = files
inboxpath = {self.folder}/inbox/
logfile = {self.folder}/log
runonreceive = {run_on_receive}
commtimeout = 1
receivefrequency = 1
loopsleep = 1
multiparttimeout = 3
checksecurity = 0
checkbattery = 0
checksignal = 0
""")
        return running("gammu-smsd", "-c", self.folder / "smsdrc", env=with_unpacked(self.kivo.environment),
                       cwd=self.folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def log(self):
        return (self.folder / "log").read_text(errors="replace")

    def handler(self, *senders):
        words = " ".join(f"'{sender}'" for sender in senders)
        return f"exec {PREFIX / HANDLER} {words} -- #"

    def test_hands_over_whole_messages_of_the_named_senders(self):
        long_text = "card 💳 " + ARABIC * 4
        split_emoji = "x" * 66 + "💳 paid\n\n"
        latin = "Your card was charged € 150.00 at @Café; $(id) `id` \"q\" 'q' \\ %s \n done\n"
        messages = parts("MyBank", long_text, 1) + parts("Bank of Nile", split_emoji, 2)
        random.Random(4).shuffle(messages)
        messages += [message("+201001", units(latin), coding="Default_No_Compression"),
                     message("Mother", units("Call me")), message("MyBank2", units("no bank"))]
        with self.daemon(messages, self.handler("MyBank", "+2010*", "Bank of *")):
            self.assertEqual(self.kivo.backend.texts(3), sorted([long_text, split_emoji, latin]))
        self.assertNotIn("charged", self.log())

    def test_hands_over_the_received_parts_of_an_incomplete_message(self):
        messages = parts("MyBank", "A" * 67 + "B" * 67 + "C" * 9, 3)
        with self.daemon([messages[0], messages[2]], self.handler("MyBank")):
            self.assertEqual(self.kivo.backend.texts(2), ["A" * 67, "C" * 9])

    def test_hands_over_no_part_of_another_sender_with_the_same_reference(self):
        bank, mother = parts("MyBank", "A" * 67 + "B" * 9, 3), parts("Mother", "C" * 67 + "D" * 9, 3)
        for name, messages, expected in [("first", [bank[0], mother[1]], "A" * 67), ("second", [mother[0], bank[1]], "B" * 9)]:
            with self.subTest(name):
                self.setUp()
                with self.daemon(messages, self.handler("MyBank")):
                    self.assertEqual(self.kivo.backend.texts(1), [expected])

    def test_ignores_a_sender_named_like_the_end_of_options(self):
        with self.daemon([message("--", units("attack")), message("MyBank", units("after it"))], self.handler("MyBank")):
            self.assertEqual(self.kivo.backend.texts(1), ["after it"])

    def test_runs_no_shell_command_in_the_name_of_a_sender(self):
        attacks = ["a;>pwned", "a|>pwned", "$(>pwned)", "a\n>pwned\n", "& >pwned #", "*"]
        messages = [message(sender, units("attack")) for sender in attacks]
        with self.daemon(messages + [message("MyBank", units("after it"))], self.handler("MyBank")):
            self.assertEqual(self.kivo.backend.texts(1), ["after it"])
        self.assertEqual(self.log().count("Starting run on receive"), len(attacks) + 1)
        self.assertEqual([found.name for found in self.folder.rglob("pwned")], [])

    def test_refuses_a_handler_line_that_passes_the_sender_to_the_shell(self):
        unsafe = self.handler("MyBank").removesuffix(" #")
        with self.daemon([message("MyBank", units("text"))], unsafe):
            self.assertEqual(self.kivo.backend.texts(1, seconds=8), [])
        self.assertIn("Process failed with exit status 64", self.log())


if __name__ == "__main__":
    unittest.main()
