#!/usr/bin/env python3
"""Writes kivo-intents' completions for bash, zsh and fish from its own catalog.

    completions.py CATALOG.json FOLDER

makes FOLDER/kivo-intents (bash), FOLDER/_kivo-intents (zsh) and FOLDER/kivo-intents.fish. What the
extension declares and these files offer can therefore not differ.
"""
import json
import pathlib
import shlex
import sys

# What a value may be completed to: a text can come from standard input, a number cannot.
VALUES = {"string": "-", "double": ""}

COMMANDS = {
    "perform": "Perform an intent and answer its dialog",
    "catalog": "Print intents, parameters and phrases",
    "say": "Perform the intent that a phrase means",
    "serve": "Answer calls on the session bus",
}
JSON_FLAG = ("--json", "Answer as one JSON object")


def parameters_of_all(catalog):
    """Every parameter once, by its name: a sentence may be followed by those of any intent."""
    return {one["name"]: one for intent in catalog["intents"] for one in intent["parameters"]}.values()


def option(parameter):
    return "--" + parameter["name"]


def bash(catalog):
    lines = [
        "# bash completion for kivo-intents",
        "_kivo_intents() {",
        "    local IFS=$'\\n' current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} offered=() one",
        "    COMPREPLY=()",
        "    case $COMP_CWORD:${COMP_WORDS[1]}:${COMP_WORDS[2]}:$previous in",
        f"    1:*) offered=({' '.join(COMMANDS)} --help --version) ;;",
        f"    2:perform:*) offered=({' '.join(intent['type'] for intent in catalog['intents'])}) ;;",
        f"    2:say:*) offered=({' '.join(shlex.quote(phrase) for phrase in phrases(catalog))}) ;;",
    ]
    for parameter in parameters_of_all(catalog):
        lines.append(f"    *:perform:*:{option(parameter)} | *:say:*:{option(parameter)}) offered=({VALUES[parameter['type']]}) ;;")
    for intent in catalog["intents"]:
        options = [option(parameter) for parameter in intent["parameters"]] + [JSON_FLAG[0]]
        lines.append(f"    *:perform:{intent['type']}:*) offered=({' '.join(options)}) ;;")
    everywhere = [option(parameter) for parameter in parameters_of_all(catalog)] + [JSON_FLAG[0]]
    lines += [
        f"    *:say:*) offered=({' '.join(everywhere)}) ;;",
        f"    2:catalog:*) offered=({JSON_FLAG[0]}) ;;",
        "    esac",
        "    for one in \"${offered[@]}\"; do",
        "        # A word that is being quoted is compared as it is typed.",
        "        [[ $one == \"$current\"* || $(printf %q \"$one\") == \"$current\"* || \\'$one == \"$current\"* || \\\"$one == \"$current\"* ]] || continue",
        "        case $current in",
        "        [\\'\\\"]*) COMPREPLY+=(\"${current:0:1}$one${current:0:1}\") ;;",
        "        *) COMPREPLY+=(\"$(printf %q \"$one\")\") ;;",
        "        esac",
        "    done",
        "}",
        "complete -F _kivo_intents kivo-intents",
    ]
    return "\n".join(lines) + "\n"


def phrases(catalog):
    return [phrase for shortcut in catalog["appShortcuts"] for phrase in shortcut["phrases"]]


def zsh_word(text):
    """`text` as the description as _arguments and _describe take it."""
    return text.replace("\\", "\\\\").replace(":", "\\:").replace("[", "\\[").replace("]", "\\]")


def zsh_option(parameter):
    values = VALUES[parameter["type"]]
    action = f"({values})" if values else " "
    return shlex.quote(f"{option(parameter)}[{zsh_word(parameter['description'])}]:{zsh_word(parameter['title'])}:{action}")


def zsh(catalog):
    flag = shlex.quote(f"{JSON_FLAG[0]}[{JSON_FLAG[1]}]")
    lines = [
        "#compdef kivo-intents",
        "_kivo_intents() {",
        "    local context state line",
        "    local -a commands intents phrases",
        "    local -A opt_args",
        f"    commands=({' '.join(shlex.quote(name + ':' + zsh_word(purpose)) for name, purpose in COMMANDS.items())})",
        f"    intents=({' '.join(shlex.quote(one['type'] + ':' + zsh_word(one['title'])) for one in catalog['intents'])})",
        f"    phrases=({' '.join(shlex.quote(phrase) for phrase in phrases(catalog))})",
        "    if (( CURRENT == 2 )); then",
        "        _describe -t commands command commands",
        "        _arguments '(- *)--help[Print what can be asked for]' '(- *)--version[Print the version]'",
        "        return",
        "    fi",
        "    case $words[2]:$words[3] in",
        "    catalog:*) shift words; (( CURRENT-- )); _arguments " + flag + " ;;",
        "    say:*)",
        "        if (( CURRENT == 3 )); then compadd -X phrase -a phrases; return; fi",
        "        shift 2 words; (( CURRENT -= 2 ))",
        "        _arguments " + " ".join([zsh_option(one) for one in parameters_of_all(catalog)] + [flag]) + " ;;",
        "    perform:*)",
        "        if (( CURRENT == 3 )); then _describe -t intents intent intents; return; fi",
        "        local intent=$words[3]",
        "        shift 2 words; (( CURRENT -= 2 ))",
        "        case $intent in",
    ]
    for intent in catalog["intents"]:
        offered = [zsh_option(one) for one in intent["parameters"]] + [flag]
        lines.append(f"        {intent['type']}) _arguments {' '.join(offered)} ;;")
    lines += ["        esac ;;", "    esac", "}", "_kivo_intents \"$@\""]
    return "\n".join(lines) + "\n"


def fish_quoted(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def fish_option(condition, parameter):
    values = VALUES[parameter["type"]]
    offered = f" -a {fish_quoted(values)}" if values else ""
    return (f"complete -c kivo-intents -n {fish_quoted(condition)} -l {parameter['name']} -x{offered}"
            f" -d {fish_quoted(parameter['description'])}")


def fish(catalog):
    flag = f"-l {JSON_FLAG[0][2:]} -d {fish_quoted(JSON_FLAG[1])}"
    lines = [
        "# fish completion for kivo-intents",
        "function __kivo_intents_given",
        "    # Whether the words before the current one are exactly these, or begin with them after -b.",
        "    set -l words (commandline -opc)",
        "    set -e words[1]",
        "    if test \"$argv[1]\" = -b",
        "        set -e argv[1]",
        "        test (count $words) -ge (count $argv); or return",
        "        set words $words[1..(count $argv)]",
        "    end",
        "    test (count $words) -eq (count $argv); and test \"$words\" = \"$argv\"",
        "end",
        "complete -c kivo-intents -f",
    ]
    for name, purpose in COMMANDS.items():
        lines.append(f"complete -c kivo-intents -n __fish_use_subcommand -a {name} -d {fish_quoted(purpose)}")
    lines += [
        "complete -c kivo-intents -n __fish_use_subcommand -l help -d 'Print what can be asked for'",
        "complete -c kivo-intents -n __fish_use_subcommand -l version -d 'Print the version'",
        f"complete -c kivo-intents -n '__kivo_intents_given -b catalog' {flag}",
    ]
    for intent in catalog["intents"]:
        lines.append(f"complete -c kivo-intents -n '__kivo_intents_given perform' -a {intent['type']}"
                     f" -d {fish_quoted(intent['title'])}")
        condition = f"__kivo_intents_given -b perform {intent['type']}"
        lines += [fish_option(condition, parameter) for parameter in intent["parameters"]]
        lines.append(f"complete -c kivo-intents -n '{condition}' {flag}")
    for phrase in phrases(catalog):
        lines.append(f"complete -c kivo-intents -n '__kivo_intents_given say' -a {fish_quoted(fish_quoted(phrase))}")
    lines += [fish_option("__kivo_intents_given -b say", parameter) for parameter in parameters_of_all(catalog)]
    lines.append(f"complete -c kivo-intents -n '__kivo_intents_given -b say' {flag}")
    return "\n".join(lines) + "\n"


def main(catalog_file, folder):
    catalog = json.loads(pathlib.Path(catalog_file).read_text(encoding="utf-8"))
    for name, write in {"kivo-intents": bash, "_kivo-intents": zsh, "kivo-intents.fish": fish}.items():
        (pathlib.Path(folder) / name).write_text(write(catalog), encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
