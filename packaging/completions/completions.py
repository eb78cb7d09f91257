#!/usr/bin/env python3
"""Writes a program's completions for bash, zsh and fish from its own description.

    completions.py DESCRIPTION.json FOLDER

The description is what the program prints with --describe. For kivo-phone this makes
FOLDER/kivo-phone (bash), FOLDER/_kivo-phone (zsh) and FOLDER/kivo-phone.fish.

In all three shells the words after the program name a command as far as they can, such as "store set";
the others are its options, their values, and arguments. An argument is known by its place among them.
"""
import json
import pathlib
import re
import shlex
import sys

# Every program has these, before any command.
GENERAL_OPTIONS = [
    {"name": "--help", "meaning": "Print this help message and exit", "kind": "flag", "values": []},
    {"name": "--version", "meaning": "Display program version information and exit", "kind": "flag", "values": []},
]


class Program:
    """`commands` by their full names; "" is the program itself, before any command."""

    def __init__(self, description):
        self.name = description["name"]
        self.commands = {"": {"name": "", "parameters": GENERAL_OPTIONS}}
        self.commands |= {command["name"]: command for command in description["commands"]}

    def subcommands(self, command):
        """The commands one word longer than `command`: that word and its purpose."""
        return {one["name"].split()[-1]: one["purpose"] for name, one in self.commands.items()
                if name and name.rpartition(" ")[0] == command}

    def options(self, command):
        return [one for one in self.commands[command]["parameters"] if one["name"].startswith("-")]

    def arguments(self, command):
        return [one for one in self.commands[command]["parameters"] if not one["name"].startswith("-")]

    def options_with_value(self):
        return [(command, one) for command in self.commands for one in self.options(command) if one["kind"] != "flag"]


def function_name(program):
    return "_" + program.name.replace("-", "_")


def shell_words(words):
    return " ".join(shlex.quote(word) for word in words)


def bash_words_before(program):
    """Goes through the words before the current one: which command they name, how many arguments follow
    it, and which option the current word is the value of."""
    lines = ["        case $place:${named:+$named }$one in"]
    lines += [f"        0:{shlex.quote(name)}) named={shlex.quote(name)}; continue ;;" for name in program.commands if name]
    lines += ["        esac", "        case $named:$one in"]
    if valued := [shlex.quote(f"{command}:{one['name']}") for command, one in program.options_with_value()]:
        lines.append(f"        {' | '.join(valued)}) ((++at == COMP_CWORD)) && value=$one ;;")
    return lines + ["        *:-?*) ;;", "        *) ((++place)) ;;", "        esac"]


def bash_offers(program):
    """The possible next words: values or commands in `offered`, and options."""
    lines = ["    case $named:$place:$value in"]
    for command, one in program.options_with_value():
        if one["values"]:
            lines.append(f"    {shlex.quote(command)}:*:{one['name']}) offered=({shell_words(one['values'])}) ;;")
    for command in program.commands:
        places = [argument["values"] for argument in program.arguments(command)]
        for place, offered in enumerate([list(program.subcommands(command))] if program.subcommands(command) else places):
            if offered:
                lines.append(f"    {shlex.quote(command)}:{place}:) offered=({shell_words(offered)}) ;;")
    lines += ["    esac", "    case $named:$value in"]
    for command in program.commands:
        if program.options(command):
            lines.append(f"    {shlex.quote(command)}:) options=({' '.join(one['name'] for one in program.options(command))}) ;;")
    return lines + ["    esac"]


def bash(program):
    function = function_name(program)
    return "\n".join([
        f"# bash completion for {program.name}",
        f"{function}() {{",
        "    local IFS=$'\\n' current=${COMP_WORDS[COMP_CWORD]} named= at place=0 value= offered=() options=() one",
        "    COMPREPLY=()",
        "    for ((at = 1; at < COMP_CWORD; at++)); do",
        "        one=${COMP_WORDS[at]}",
        *bash_words_before(program),
        "    done",
        *bash_offers(program),
        "    [[ $current == -* || ${#offered[@]} -eq 0 ]] && offered+=(\"${options[@]}\")",
        "    for one in \"${offered[@]}\"; do",
        "        # A word that is being quoted is compared as it is typed.",
        "        [[ $one == \"$current\"* || $(printf %q \"$one\") == \"$current\"* || \\'$one == \"$current\"* || \\\"$one == \"$current\"* ]] || continue",
        "        case $current in",
        "        [\\'\\\"]*) COMPREPLY+=(\"${current:0:1}$one${current:0:1}\") ;;",
        "        *) COMPREPLY+=(\"$(printf %q \"$one\")\") ;;",
        "        esac",
        "    done",
        "}",
        f"complete -F {function} {program.name}",
    ]) + "\n"


def zsh_text(text):
    """`text` escaped as a description for _arguments."""
    return re.sub(r"([\\:\[\]])", r"\\\1", text)


def zsh_item(text):
    """`text` as one word of a list within an action of _arguments."""
    return re.sub(r"([^\w.-])", r"\\\1", text)


def zsh_values(values):
    return f"({' '.join(zsh_item(value) for value in values)})" if values else " "


def zsh_specifications(program, command):
    """The arguments of _arguments after `command`, each a quoted word."""
    found = []
    alone = "(- *)" if command == "" else ""  # --help excludes everything else
    for one in program.options(command):
        value = "" if one["kind"] == "flag" else f":{zsh_text(one['name'][2:])}:{zsh_values(one['values'])}"
        found.append(f"{alone}{one['name']}[{zsh_text(one['meaning'])}]{value}")
    if subcommands := program.subcommands(command):
        items = " ".join(f"{zsh_item(word)}\\:{zsh_item(purpose)}" for word, purpose in subcommands.items())
        found.append(f"1:command:(({items}))")
    else:
        for place, one in enumerate(program.arguments(command), 1):
            found.append(f"{place}:{zsh_text(one['name'])}:{zsh_values(one['values'])}")
    return shell_words(found)


def zsh(program):
    named = " | ".join(shlex.quote(name) for name in program.commands if name)
    lines = [
        f"#compdef {program.name}",
        f"{function_name(program)}() {{",
        "    local context state line named= at=2",
        "    local -A opt_args",
    ]
    if named:
        lines += [
            "    while (( at < CURRENT )); do",
            "        case ${named:+$named }$words[at] in",
            f"        {named}) named=${{named:+$named }}$words[at]; (( at++ )) ;;",
            "        *) break ;;",
            "        esac",
            "    done",
            "    shift $(( at - 2 )) words; (( CURRENT -= at - 2 ))",
        ]
    lines.append("    case $named in")
    for command in program.commands:
        if specifications := zsh_specifications(program, command):
            lines.append(f"    {shlex.quote(command)}) _arguments {specifications} ;;")
    lines += ["    esac", "}", f"{function_name(program)} \"$@\""]
    return "\n".join(lines) + "\n"


def fish_quoted(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def fish(program):
    test = "_" + function_name(program) + "_at"
    begin = f"complete -c {program.name}"
    names = " ".join(fish_quoted(name) for name in program.commands if name)
    valued = " ".join(fish_quoted(f"{command}:{one['name']}") for command, one in program.options_with_value())
    lines = [
        f"# fish completion for {program.name}",
        f"function {test}",
        "    # Whether the words before the current one name this command, and so many arguments follow it.",
        "    set -l words (commandline -opc)",
        "    set -e words[1]",
        "    set -l named ''",
        "    set -l place 0",
        "    while set -q words[1]",
        "        set -l longer (string trim -- \"$named $words[1]\")",
        f"        if test $place -eq 0; and contains -- \"$longer\" {names}",
        "            set named $longer",
        f"        else if contains -- \"$named:$words[1]\" {valued}",
        "            set -q words[2]; and set -e words[2]",
        "        else if not string match -q -- '-?*' \"$words[1]\"",
        "            set place (math $place + 1)",
        "        end",
        "        set -e words[1]",
        "    end",
        "    test \"$named\" = \"$argv[1]\"; or return",
        "    not set -q argv[2]; or test $place -eq $argv[2]",
        "end",
        f"{begin} -f",
    ]
    for command in program.commands:
        here = f"{test} {fish_quoted(command)}"
        for word, purpose in program.subcommands(command).items():
            lines.append(f"{begin} -n {fish_quoted(here + ' 0')} -a {word} -d {fish_quoted(purpose)}")
        for place, one in enumerate(program.arguments(command)):
            for value in one["values"]:
                lines.append(f"{begin} -n {fish_quoted(f'{here} {place}')} -a {fish_quoted(fish_quoted(value))}")
        for one in program.options(command):
            words = " ".join(fish_quoted(value) for value in one["values"])  # of several -a, fish takes the last
            value = "" if one["kind"] == "flag" else " -x" + (f" -a {fish_quoted(words)}" if words else "")
            lines.append(f"{begin} -n {fish_quoted(here)} -l {one['name'][2:]}{value} -d {fish_quoted(one['meaning'])}")
    return "\n".join(lines) + "\n"


def main(description_file, folder):
    program = Program(json.loads(pathlib.Path(description_file).read_text(encoding="utf-8")))
    for name, write in {program.name: bash, "_" + program.name: zsh, program.name + ".fish": fish}.items():
        (pathlib.Path(folder) / name).write_text(write(program), encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
