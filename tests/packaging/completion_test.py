#!/usr/bin/env python3
"""Asks bash, zsh and fish what they offer after the words of a command line, and compares it with
what the installed program declares."""
import json
import os
import pathlib
import pty
import re
import select
import signal
import subprocess
import sys
import time
import unittest

from installed_kivo import PREFIX, UNPACKED, InstalledKivo, with_unpacked

sys.path.insert(0, str(pathlib.Path(os.environ["KIVO_SOURCE"]) / "packaging/completions"))
import completions  # noqa: E402  what the files were written by

class Terminal:
    """An interactive shell on a terminal of its own, wide enough that no line wraps."""

    def __init__(self, command, environment):
        self.pid, self.file = pty.fork()
        if self.pid == 0:
            os.execvpe(command[0], command, environment | {"COLUMNS": "400", "LINES": "100"})

    def type(self, text):
        os.write(self.file, text.encode())

    def read_until(self, wanted, seconds=60):
        """What the shell writes until `wanted`, a regular expression, occurs."""
        written, end = "", time.monotonic() + seconds
        while not re.search(wanted, written):
            if not select.select([self.file], [], [], max(0, end - time.monotonic()))[0]:
                raise AssertionError(f"no {wanted!r} in {written!r}")
            written += os.read(self.file, 65536).decode(errors="replace")
        return written

    def close(self):
        os.kill(self.pid, signal.SIGKILL)
        os.waitpid(self.pid, 0)
        os.close(self.file)


class Completions(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.kivo = InstalledKivo()
        cls.addClassCleanup(cls.kivo.close)
        cls.share = PREFIX / "share"
        catalog = json.loads(cls.kivo.run("kivo-intents", "catalog", "--json"))
        declared = {intent["type"]: {"--" + one["name"] for one in intent["parameters"]}
                    for intent in catalog["intents"]}
        texts = ["--" + one["name"] for intent in catalog["intents"] for one in intent["parameters"]
                 if one["type"] == "string"]
        # Words that were typed -> what must be offered, and nothing else.
        cls.expected = {
            "": set(completions.COMMANDS),
            "perform ": set(declared),
            "catalog --": {"--json"},
            "say ": {phrase for shortcut in catalog["appShortcuts"] for phrase in shortcut["phrases"]},
            "say Track\\ SMS\\ transaction\\ in\\ Kivo --": set().union(*declared.values()) | {"--json"},
            "perform ProcessSMSIntent --smsText - --j": {"--json"},
                    }
        cls.expected |= {f"perform {intent} --": options | {"--json"} for intent, options in declared.items()}
        assert len(cls.expected) == 8 and texts, declared
        cls.text_option = texts[-1]

    def test_the_commands_are_the_programs_own(self):
        for name, purpose in completions.COMMANDS.items():
            self.assertRegex(self.kivo.run("kivo-intents", "--help"), rf"(?m)^  {name} +{re.escape(purpose)}$")
        listed = self.kivo.run("kivo-intents", "--help").split("Subcommands:")[1].strip().splitlines()
        self.assertEqual(len(listed), len(completions.COMMANDS))

    def test_fish_offers_what_is_declared(self):
        for words, offered in self.expected.items():
            with self.subTest(words):
                self.assertEqual(self.fish(words), offered)
        self.assertEqual(self.fish(f"perform ProcessSMSIntent {self.text_option} "), {"-"})

    def fish(self, words):
        file = self.share / "fish/vendor_completions.d/kivo-intents.fish"
        functions = UNPACKED / "usr/share/fish/functions"  # which an unpacked fish does not find
        shell = ["fish", "--no-config", "-c", "set -p fish_function_path $argv[1]; source $argv[2]; complete -C $argv[3]",
                 functions, file, "kivo-intents " + words]
        printed = subprocess.run(shell, env=with_unpacked(self.kivo.environment), check=True, capture_output=True,
                                 text=True, timeout=60).stdout
        return {line.split("\t")[0] for line in printed.splitlines()}

    def test_bash_offers_what_is_declared(self):
        shell = Terminal(["bash", "--norc", "--noprofile", "-i"], self.kivo.environment)
        self.addCleanup(shell.close)
        file = self.share / "bash-completion/completions/kivo-intents"
        shell.type(f"bind 'set enable-bracketed-paste off'; . {file}\n")
        # Readline's command that writes everything that is offered into the line.
        self.compare(shell, insert_all="\x1b*", more={"": {"--help", "--version"}})
        self.assertEqual(self.words(shell, "say 'Log ", "\t"), ["say", "Log expense to Kivo"])

    def test_zsh_offers_what_is_declared(self):
        shell = Terminal(["zsh", "-f", "-i"], self.kivo.environment)
        self.addCleanup(shell.close)
        shell.type(f"unsetopt zle_bracketed_paste prompt_sp; fpath=({self.share}/zsh/vendor-completions $fpath);"
                   f"autoload -Uz compinit; compinit -u -d {self.kivo.folder}/zcompdump;"
                   "zstyle ':completion:*' completer _all_matches _complete;"
                   "zstyle ':completion:*' insert true; bindkey -e; bindkey '^X^A' complete-word\n")
        self.compare(shell, insert_all="\x18\x01", more={"": {"--help", "--version"}})

    def compare(self, shell, insert_all, more):
        # What stands in the line is then what the shell takes for words.
        shell.type("kivo-intents() { [ $# -eq 0 ] || printf '<%s>' \"$@\"; printf '@%s@\\n' over; }\n")
        for words, offered in self.expected.items():
            with self.subTest(words):
                given = self.words(shell, words, "")
                before = given if words.endswith(" ") or not words else given[:-1]
                found = self.words(shell, words, insert_all)
                self.assertEqual(found[:len(before)], before)
                self.assertEqual(set(found[len(before):]), offered | more.get(words, set()))
        text = f"perform ProcessSMSIntent {self.text_option} "
        self.assertEqual(self.words(shell, text, insert_all), text.split() + ["-"])

    @staticmethod
    def words(shell, typed, key):
        """The words that `kivo-intents` is called with when `key` is pressed after `typed`."""
        shell.type(f"kivo-intents {typed}{key}\n")
        written = shell.read_until("@over@")
        return re.findall("<([^>]*)>", written[:written.rindex("@over@")].splitlines()[-1])


if __name__ == "__main__":
    unittest.main()
