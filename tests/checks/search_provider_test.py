#!/usr/bin/env python3
"""Checks what is installed for the search of GNOME's shell against what the programs offer.

Needs the programs in the folder that KIVO_PROGRAMS names, and in KIVO_INSTALL_SCRIPT the script that
installs packaging/gnome.
"""
import configparser
import json
import os
import pathlib
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree

PROGRAM = pathlib.Path(os.environ["KIVO_PROGRAMS"]) / "kivo-intents"


def shortcuts():
    printed = subprocess.run([PROGRAM, "catalog", "--json"], check=True, capture_output=True, timeout=60)
    return json.loads(printed.stdout)["appShortcuts"]


class AnInstallation(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.umask, os.umask(0o022))
        subprocess.run(["cmake", "-DCMAKE_INSTALL_PREFIX=/usr", "-P", os.environ["KIVO_INSTALL_SCRIPT"]],
                       check=True, capture_output=True, timeout=60, env={**os.environ, "DESTDIR": folder.name})
        self.share = pathlib.Path(folder.name) / "usr/share"

    def test_has_the_file_that_the_shell_reads(self):
        file = self.share / "gnome-shell/search-providers/app.kivo.expenses.search-provider.ini"
        description = configparser.ConfigParser()
        description.optionxform = str
        description.read_string(file.read_text(encoding="utf-8"))
        self.assertEqual(dict(description["Shell Search Provider"]), {
            "DesktopId": "app.kivo.expenses.desktop",
            "BusName": "app.kivo.expenses.Intents",
            "ObjectPath": "/app/kivo/expenses/SearchProvider",
            "Version": "2",
        })

    def test_has_exactly_one_icon_for_each_shortcut(self):
        icons = self.share / "icons/hicolor/scalable/apps"
        names = {f"app.kivo.expenses.{shortcut['systemImageName']}.svg" for shortcut in shortcuts()}
        self.assertEqual({icon.name for icon in icons.iterdir()}, names)
        for icon in icons.iterdir():
            root = xml.etree.ElementTree.parse(icon).getroot()
            self.assertEqual(root.tag, "{http://www.w3.org/2000/svg}svg")
            self.assertEqual(root.get("viewBox"), "0 0 64 64")

    def test_is_readable_for_all_users(self):
        for file in self.share.rglob("*"):
            self.assertEqual(file.stat().st_mode & 0o777, 0o644 if file.is_file() else 0o755, file)


if __name__ == "__main__":
    unittest.main()
