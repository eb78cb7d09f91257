#!/usr/bin/env python3
"""Runs commands of docs/automation.md unchanged, with fakes of the programs that only a phone has."""
import json
import os
import pathlib
import re
import unittest

from installed_kivo import InstalledKivo

PAGE = (pathlib.Path(os.environ["KIVO_SOURCE"]) / "docs/automation.md").read_text(encoding="utf-8")


def lines_under(heading):
    """The first block of shell under a heading."""
    section = re.split(r"(?m)^## ", PAGE.partition(f"\n## {heading}\n")[2])[0]
    return re.search(r"```sh\n(.*?)```", section, re.DOTALL)[1]


def message(number, sender, text):
    return {"threadid": 4, "type": "inbox", "read": True, "sender": sender, "address": sender, "number": sender,
            "received": "2026-11-21 09:00:00", "body": text, "_id": number}


class AutomationLines(unittest.TestCase):
    def setUp(self):
        self.kivo = InstalledKivo()
        self.addCleanup(self.kivo.close)
        self.home = pathlib.Path(self.kivo.environment["HOME"])
        self.tools = self.home / "tools"
        self.tools.mkdir()
        self.kivo.environment["PATH"] = f"{self.tools}:{self.kivo.environment['PATH']}"

    def stand_in(self, name, script):
        (self.tools / name).write_text(f"#!/bin/sh\n{script}\n")
        (self.tools / name).chmod(0o755)

    def run_lines(self, heading):
        return self.kivo.run("sh", "-ec", lines_under(heading), cwd=self.home)

    def test_a_text_can_be_piped(self):
        text = "Your card\nwas charged €150 💳\n\n"
        (self.home / "message.txt").write_text(text)
        self.assertEqual(self.run_lines("Any program that can pipe"), "Tracked EGP\u00a0150.00 at Cafe\n")
        self.assertEqual(self.kivo.backend.texts(1), [text])

    def test_termux_hands_over_each_bank_message_once(self):
        texts = ["first \\ \"'$(id)\n line ", "بمبلغ ١٨٬٥٠٠ 💳", "third\n"]
        inbox = [message(12, "MyBank", texts[1]), message(11, "Mother", "Call me"), message(9, "MyBank", texts[0])]
        self.stand_in("ssh", 'while [ "$1" != computer ]; do shift; done; shift; exec sh -c "$*"')
        self.stand_in("termux-sms-list", 'test "$*" = "-t inbox -l 50" && cat ~/inbox.json')
        for _ in range(2):
            (self.home / "inbox.json").write_text(json.dumps(inbox))
            self.run_lines("Termux, on an Android phone")
        self.assertEqual([one["sms_text"] for one in self.kivo.backend.requests], texts[:2])

        inbox.insert(0, message(13, "MyBank", texts[2]))
        (self.home / "inbox.json").write_text(json.dumps(inbox))
        self.stand_in("ssh", "exit 255")  # out of reach
        self.run_lines("Termux, on an Android phone")
        self.stand_in("ssh", 'while [ "$1" != computer ]; do shift; done; shift; exec sh -c "$*"')
        self.run_lines("Termux, on an Android phone")
        self.assertEqual([one["sms_text"] for one in self.kivo.backend.requests], texts)

    def test_kde_connect_hands_over_each_bank_message_once(self):
        texts = ["first\nline بمبلغ 💳 \\n $(id)", "second\n\n"]
        told = [(texts[0], "MyBank", 1, 12), ("Call me", "Mother", 1, 13), ("what I sent", "MyBank", 2, 14),
                (texts[0], "MyBank", 1, 12), (texts[1], "MyBank", 1, 15)]
        # As the bus of kdeconnectd 22.12 has it.
        signals = [{"type": "signal", "member": "conversationUpdated", "payload": {"type": "v", "data": [{
            "type": "(isa(s)xiixixa(xsss))",
            "data": [1, text, [[sender]], 1795000000000 + number, kind, 0, 4, number, 1, []]}]}}
            for text, sender, kind, number in told]
        signals.insert(1, {"type": "signal", "member": "conversationLoaded", "payload": {"type": "xt", "data": [4, 1]}})
        (self.home / "signals").write_text("".join(json.dumps(one) + "\n" for one in signals))
        self.stand_in("busctl", "cat ~/signals")
        for _ in range(2):
            self.run_lines("KDE Connect, from an Android phone")
        self.assertEqual([one["sms_text"] for one in self.kivo.backend.requests], texts)


if __name__ == "__main__":
    unittest.main()
