#!/usr/bin/env python3
"""Compares what the programs offer with docs/catalog.schema.json, and shows that it can differ.

Needs the programs in the folder that KIVO_PROGRAMS names.
"""
import copy
import json
import os
import pathlib
import subprocess
import unittest

import jsonschema

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCHEMA = json.loads((ROOT / "docs/catalog.schema.json").read_text(encoding="utf-8"))


def catalog_of(program):
    """The catalog that `program` prints, which is one line."""
    printed = subprocess.run([pathlib.Path(os.environ["KIVO_PROGRAMS"]) / program, "catalog", "--json"],
                             check=True, capture_output=True, text=True, timeout=60)
    assert printed.stderr == "" and printed.stdout.count("\n") == 1, printed
    return json.loads(printed.stdout)


def without(place, key):
    del place[key]


def parameter(catalog):
    """The amount, the extension's first parameter."""
    return catalog["intents"][0]["parameters"][0]


# What spoils a catalog, by a name.
SPOILERS = {
    "a member too many": lambda c: c.update(version=1),
    "a missing member": lambda c: without(c, "bundleIdentifier"),
    "a bundle that is not an identifier": lambda c: c.update(bundleIdentifier="kivo"),
    "intents as an object": lambda c: c.update(intents={}),
    "an intent's member too many": lambda c: c["intents"][0].update(icon="x"),
    "an intent without a title": lambda c: without(c["intents"][1], "title"),
    "an empty title": lambda c: c["intents"][1].update(title=""),
    "a number for a boolean": lambda c: c["intents"][0].update(openAppWhenRun=0),
    "an unknown mode": lambda c: c["intents"][0].update(supportedModes="hidden"),
    "an unknown policy": lambda c: c["intents"][0].update(authenticationPolicy="never"),
    "a parameter's member too many": lambda c: parameter(c).update(unit="EGP"),
    "an unknown type": lambda c: parameter(c).update(type="float"),
    "an unknown control": lambda c: parameter(c).update(controlStyle="wheel"),
    "half a range": lambda c: parameter(c).update(inclusiveRange={"minimum": 1}),
    "a required parameter with a default": lambda c: parameter(c).update(default=1),
    "an optional parameter without one": lambda c: parameter(c).update(required=False),
    "a default of the other type": lambda c: parameter(c).update(required=False, default="1"),
    "a number on several lines": lambda c: parameter(c).update(inputOptions="multiline"),
    "an option in a name": lambda c: parameter(c).update(name="--amount"),
    "a shortcut without phrases": lambda c: c["appShortcuts"][0].update(phrases=[]),
    "a phrase said twice": lambda c: c["appShortcuts"][0].update(phrases=["a", "a"]),
    "a shortcut without a symbol": lambda c: without(c["appShortcuts"][0], "systemImageName"),
    "an unknown colour": lambda c: c.update(shortcutTileColor="pink"),
}


class CatalogSchema(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.validator = jsonschema.Draft202012Validator(SCHEMA)
        cls.catalog = catalog_of("kivo-intents")

    def test_is_a_schema(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)

    def test_describes_the_output_of_the_program(self):
        self.validator.validate(self.catalog)
        self.assertEqual([intent["type"] for intent in self.catalog["intents"]],
                         ["AddExpenseIntent", "ProcessSMSIntent"])

    def test_describes_an_extension_that_uses_every_setting(self):
        self.validator.validate(catalog_of("kivo_third_intent"))

    def test_each_shortcut_belongs_to_an_intent(self):
        types = {intent["type"] for intent in self.catalog["intents"]}
        self.assertEqual({shortcut["intent"] for shortcut in self.catalog["appShortcuts"]}, types)

    def test_an_invalid_catalog_fails(self):
        for name, spoil in SPOILERS.items():
            with self.subTest(name):
                catalog = copy.deepcopy(self.catalog)
                spoil(catalog)
                self.assertFalse(self.validator.is_valid(catalog))


if __name__ == "__main__":
    unittest.main()
