#!/usr/bin/env python3
"""Asks bash, zsh and fish what they offer after the words of a command line, and compares it with
what the installed programs say of themselves."""
import json
import os
import pty
import re
import select
import signal
import subprocess
import time
import unittest

from installed_kivo import PREFIX, UNPACKED, InstalledKivo, listed_commands, with_unpacked

PROGRAMS = [program.name for program in sorted((PREFIX / "bin").iterdir())]


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
        # By program: words that were typed -> what must be offered, and nothing else.
        cls.expected = {name: expected(cls.described(name)) for name in PROGRAMS}

    @classmethod
    def described(cls, program):
        return json.loads(cls.kivo.run(program, "--describe"))

    def test_the_expected_words_are_complete(self):
        self.assertEqual(self.expected["kivo-notification-center"], {"--": {"--help", "--version"}})
        phone = self.expected["kivo-phone"]
        self.assertEqual(phone["notifications "],
                         {"authorized", "denied", "not-determined", "provisional", "ephemeral"})
        self.assertEqual(phone["queue "], {"show", "send", "export", "drop"})
        self.assertEqual(phone["store set k v --"], {"--float"})
        self.assertEqual(phone["widget --"], {"--watch"})
        self.assertEqual(phone["sign-in --"], {"--user-id", "--url", "--local", "--currency"})
        self.assertEqual(self.expected["kivo-ledger"]["edit --kind "], {"expense", "income", "transfer"})
        intents = self.expected["kivo-intents"]
        self.assertEqual(intents[""], {"perform", "catalog", "say", "serve"})
        self.assertEqual(intents["perform "], {"ProcessSMSIntent", "AddExpenseIntent"})
        self.assertEqual(intents["perform ProcessSMSIntent --smsText "], {"-"})
        self.assertEqual(intents["perform AddExpenseIntent --"], {"--amount", "--merchant", "--json"})
        catalog = json.loads(self.kivo.run("kivo-intents", "catalog", "--json"))
        phrases = [phrase for shortcut in catalog["appShortcuts"] for phrase in shortcut["phrases"]]
        self.assertEqual(intents["say "], set(phrases))
        self.assertEqual(len(intents["say "]), len(phrases))

    def test_a_description_lists_the_commands_and_options_of_the_help(self):
        for program in PROGRAMS:
            described = {(name, one["name"]) for name, command in commands(self.described(program)).items()
                         for one in command["parameters"] if one["name"].startswith("--")}
            described |= {(name, "") for name in commands(self.described(program))}
            self.assertEqual(described, self.helped(program))

    def helped(self, program, command=""):
        """Pairs of a command and an option of it, or "", as --help lists them."""
        printed = self.kivo.run(program, *command.split(), "--help")
        found = {(command, "")} if command else set()
        found |= {(command, one) for one in re.findall(r"(?m)^  (?:-h,)?(--[\w-]+)", printed)} if command else set()
        found -= {(command, "--help")}
        for word in listed_commands(printed):
            found |= self.helped(program, f"{command} {word}".strip())
        return found

    def test_fish_completes_the_declared_words(self):
        for program in PROGRAMS:
            for words, offered in self.expected[program].items():
                with self.subTest(program=program, words=words):
                    self.assertEqual(self.fish(program, words), offered)
        self.assertEqual(self.fish("kivo-phone", "notifications authorized "), set())

    def fish(self, program, words):
        file = self.share / f"fish/vendor_completions.d/{program}.fish"
        functions = UNPACKED / "usr/share/fish/functions"  # which an unpacked fish does not find
        shell = ["fish", "--no-config", "-c", "set -p fish_function_path $argv[1]; source $argv[2]; complete -C $argv[3]",
                 functions, file, f"{program} {words}"]
        printed = subprocess.run(shell, env=with_unpacked(self.kivo.environment), check=True, capture_output=True,
                                 text=True, timeout=60).stdout
        return {line.split("\t")[0] for line in printed.splitlines()}

    def test_bash_completes_the_declared_words(self):
        shell = Terminal(["bash", "--norc", "--noprofile", "-i"], self.kivo.environment)
        self.addCleanup(shell.close)
        files = [str(self.share / "bash-completion/completions" / program) for program in PROGRAMS]
        shell.type(f"bind 'set enable-bracketed-paste off'; for file in {' '.join(files)}; do . $file; done\n")
        # Readline's command that writes everything that is offered into the line.
        self.compare(shell, insert_all="\x1b*")
        self.assertEqual(self.words(shell, "kivo-intents", "say 'Log ", "\t"), ["say", "Log expense to Kivo"])
        self.assertEqual(self.words(shell, "kivo-phone", "queue drop 1 ", "\t"), ["queue", "drop", "1", "--yes"])

    def test_zsh_completes_the_declared_words(self):
        shell = Terminal(["zsh", "-f", "-i"], self.kivo.environment)
        self.addCleanup(shell.close)
        shell.type(f"unsetopt zle_bracketed_paste prompt_sp; fpath=({self.share}/zsh/vendor-completions $fpath);"
                   f"autoload -Uz compinit; compinit -u -d {self.kivo.folder}/zcompdump;"
                   "zstyle ':completion:*' completer _all_matches _complete;"
                   "zstyle ':completion:*' insert true; bindkey -e; bindkey '^X^A' complete-word\n")
        self.compare(shell, insert_all="\x18\x01")

    def compare(self, shell, insert_all):
        for program in PROGRAMS:
            # What stands in the line is then what the shell takes for words.
            shell.type(program + "() { [ $# -eq 0 ] || printf '<%s>' \"$@\"; printf '@%s@\\n' over; }\n")
            for words, offered in self.expected[program].items():
                with self.subTest(program=program, words=words):
                    given = self.words(shell, program, words, "")
                    before = given if words.endswith(" ") or not words else given[:-1]
                    found = self.words(shell, program, words, insert_all)
                    self.assertEqual(found[:len(before)], before)
                    self.assertEqual(set(found[len(before):]), offered)

    @staticmethod
    def words(shell, program, typed, key):
        """The words that `program` is called with when `key` is pressed after `typed`."""
        shell.type(f"{program} {typed}{key}\n")
        written = shell.read_until("@over@")
        return re.findall("<([^>]*)>", written[:written.rindex("@over@")].splitlines()[-1])


def commands(described):
    return {command["name"]: command for command in described["commands"]}


def expected(described):
    """What is to be offered after words that can be typed after the program."""
    found = {"--": {"--help", "--version"}}
    known = commands(described)
    for name in ["", *known]:
        typed = name + " " if name else ""
        if subcommands := {other.split()[-1] for other in known if other.rpartition(" ")[0] == name}:
            found[typed] = subcommands
        if not name:
            continue
        parameters = known[name]["parameters"]
        places = [one for one in parameters if not one["name"].startswith("--")]
        options = [one for one in parameters if one["name"].startswith("--")]
        for place, one in enumerate(places):
            if one["values"]:
                found[typed + "x " * place] = set(one["values"])
        if options:
            found[typed + "".join(one["name"][0].lower() + " " for one in places) + "--"] = {one["name"] for one in options}
        for one in options:
            if one["values"]:
                found[f"{typed}{one['name']} "] = set(one["values"])
    return found


if __name__ == "__main__":
    unittest.main()
