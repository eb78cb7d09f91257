#!/usr/bin/env python3
"""Checks each installed file with the tool for its format."""
import configparser
import gzip
import os
import pathlib
import re
import stat
import struct
import subprocess
import unittest

from installed_kivo import PREFIX, UNPACKED, InstalledKivo, listed_commands

SOURCE = pathlib.Path(os.environ["KIVO_SOURCE"])
PROGRAMS = {"kivo-intents", "kivo-ledger", "kivo-notification-center", "kivo-phone", "kivo-sms-watcher"}


def judge(*command, **options):
    """What the tool says, and its exit status."""
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=60, **options)
    return result.stdout, result.returncode


def unit_file(path):
    """The sections of a file of units, services or desktops; of a doubled key, the last value."""
    parsed = configparser.ConfigParser(interpolation=None, strict=False)
    parsed.optionxform = str
    parsed.read_string(path.read_text())
    return parsed


class InstalledFiles(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.kivo = InstalledKivo()
        cls.addClassCleanup(cls.kivo.close)
        cls.share = PREFIX / "share"
        cls.programs = sorted((PREFIX / "bin").iterdir())
        cls.services = sorted((cls.share / "dbus-1/services").iterdir())
        cls.units = PREFIX / "lib/systemd/user"

    def test_the_programs_are_installed_without_a_library_search_path(self):
        names = {program.name for program in self.programs}
        self.assertIn(names, [PROGRAMS, PROGRAMS - {"kivo-sms-watcher"}])
        for program in self.programs:
            dynamic, _ = judge("readelf", "--dynamic", program)
            self.assertIn("NEEDED", dynamic)
            self.assertNotRegex(dynamic, "RPATH|RUNPATH")

    def test_the_desktop_entry_is_valid(self):
        desktop = self.share / "applications/app.kivo.expenses.desktop"
        self.assertEqual(judge("desktop-file-validate", "--warn-kde", desktop), ("", 0))
        entry = unit_file(desktop)["Desktop Entry"]
        self.assertEqual(entry["X-GNOME-UsesNotifications"], "true")
        self.assertIn(PREFIX / "bin" / entry["Exec"].split()[0], self.programs)
        self.assertTrue((self.share / f"icons/hicolor/scalable/apps/{entry['Icon']}.svg").exists())
        # Whatever a link holds comes after what ends the options.
        self.assertEqual(entry["MimeType"], "x-scheme-handler/kivo-expenses;")
        self.assertEqual(entry["Exec"].split()[1:], ["open", "--", "%u"])
        self.assertEqual(entry["Terminal"], "false")
        # Phosh hides programs that are not for a phone's screen.
        self.assertEqual(entry["X-Purism-FormFactor"], "Workstation;Mobile;")

    def test_the_desktop_knows_kivos_terminal_windows(self):
        desktop = self.share / "applications/app.kivo.expenses.Terminal.desktop"
        self.assertEqual(judge("desktop-file-validate", "--warn-kde", desktop), ("", 0))
        entry = unit_file(desktop)["Desktop Entry"]
        self.assertEqual((entry["Name"], entry["Icon"]), ("Kivo", "app.kivo.expenses"))
        self.assertEqual(entry["NoDisplay"], "true")

    def test_the_icon_can_be_rendered(self):
        icon = self.share / "icons/hicolor/scalable/apps/app.kivo.expenses.svg"
        drawn = pathlib.Path(self.kivo.folder) / "icon.png"
        self.assertEqual(judge("rsvg-convert", "--width", "64", icon, "--output", drawn), ("", 0))
        self.assertGreater(drawn.stat().st_size, 500)

    def test_the_icon_is_installed_as_png_in_all_sizes(self):
        icons = self.share / "icons/hicolor"
        sizes = {path.parents[1].name: path for path in icons.rglob("apps/app.kivo.expenses.png")}
        self.assertEqual(set(sizes), {f"{side}x{side}" for side in (16, 22, 24, 32, 48, 64, 128, 256)})
        for size, path in sizes.items():
            content = path.read_bytes()
            self.assertEqual(content[:8], b"\x89PNG\r\n\x1a\n")
            width, height = struct.unpack(">II", content[16:24])
            self.assertEqual(f"{width}x{height}", size)
            self.assertNotIn(b"tIME", content)  # the same bytes each time

    def test_the_metadata_for_software_centers_is_valid(self):
        said, status = judge("appstreamcli", "validate", "--no-net", "--pedantic",
                             self.share / "metainfo/app.kivo.expenses.metainfo.xml")
        self.assertEqual(status, 0, said)
        self.assertNotRegex(said, r"(?m)^[EW]:")

    def test_each_manual_page_describes_every_command_and_option(self):
        for program in self.programs:
            page = self.share / f"man/man1/{program.name}.1.gz"
            source = gzip.decompress(page.read_bytes()).decode()
            self.assertEqual(judge("mandoc", "-Tlint", "-Wwarning", input=source), ("", 0))
            shown, status = judge("groff", "-man", "-ww", "-Kutf8", "-Tascii", "-P-bcou", "-rLL=200n", input=source)
            self.assertEqual(status, 0)
            self.assertNotIn("warning", shown)
            for word in self.offered(program):
                with self.subTest(program=program.name, word=word):
                    self.assertRegex(shown, rf"(?<![\w-]){re.escape(word)}(?![\w-])")

    def offered(self, program, command=()):
        """The commands and options that --help lists, and those of each command."""
        printed = self.kivo.run(program, *command, "--help")
        found = set(re.findall(r"(?m)^  (?:-h,)?(--[\w-]+)", printed))
        for name in listed_commands(printed):
            found |= {name} | self.offered(program, (*command, name))
        return found

    def test_the_systemd_units_are_valid(self):
        units = [unit for unit in self.units.iterdir() if unit.is_file()]
        self.assertGreaterEqual(len(units), 2)
        for unit in units:
            with self.subTest(unit.name):
                self.assertEqual(self.verify(unit), ("", 0))
                page = re.fullmatch(r"man:([\w-]+)\(1\)", unit_file(unit)["Unit"]["Documentation"])
                self.assertTrue((self.share / f"man/man1/{page[1]}.1.gz").exists())
        spoiled = self.kivo.folder / "spoiled.service"
        spoiled.write_text((self.units / "kivo-intents.service").read_text().replace("[Service]", "[Service]\nUnheardOf=yes"))
        self.assertIn("UnheardOf", self.verify(spoiled)[0])

    def verify(self, unit):
        return judge("systemd-analyze", "verify", "--user", "--man=no", unit, env=self.of_user())

    def of_user(self):
        """The environment in which systemd's programs find these units and those of the system."""
        folders = f"{self.units}:/usr/lib/systemd/user:{UNPACKED}/usr/lib/systemd/user"
        return {"PATH": os.environ["PATH"], "HOME": str(self.kivo.folder), "XDG_RUNTIME_DIR": str(self.kivo.folder),
                "SYSTEMD_UNIT_PATH": folders}

    def test_the_bus_and_systemd_start_the_same_programs(self):
        self.assertEqual(len(self.services), 2)
        for file in self.services:
            service = unit_file(file)["D-BUS Service"]
            unit = unit_file(self.units / service["SystemdService"])["Service"]
            self.assertEqual(file.name, service["Name"] + ".service")
            self.assertEqual((unit["Type"], unit["BusName"]), ("dbus", service["Name"]))
            self.assertEqual(service["Exec"].replace('"', ""), unit["ExecStart"])
            self.assertIn(pathlib.Path(unit["ExecStart"].split()[0]), self.programs)

    def test_every_service_is_sandboxed_as_far_as_it_can_be(self):
        # The exposure that systemd computes, in tenths. The first two have no user namespace; see their units.
        most = {"kivo-intents": 64, "kivo-notification-center": 61, "kivo-ledger": 13, "kivo-ledger-backup": 13,
                "kivo-sms-watcher": 13}
        for path in self.units.glob("*.service"):
            with self.subTest(path.stem):
                said, status = judge("systemd-analyze", "--user", "security", "--offline=true",
                                     f"--threshold={most[path.stem]}", path.name, env=self.of_user())
                self.assertEqual(status, 0, said)
                self.assertIn("MemoryMax", unit_file(path)["Service"])

    def test_the_watcher_starts_for_every_user(self):
        if not (PREFIX / "bin/kivo-sms-watcher").exists():
            self.skipTest("this build has no watcher")
        for name in ("kivo-sms-watcher.service", "kivo-sms-watcher.path"):
            self.assertTrue((self.units / "default.target.wants" / name).samefile(self.units / name))

    def test_the_session_waits_until_the_watcher_hears_of_messages(self):
        if not (PREFIX / "bin/kivo-sms-watcher").exists():
            self.skipTest("this build has no watcher")
        unit = unit_file(self.units / "kivo-sms-watcher.service")
        self.assertEqual(unit["Unit"]["Before"], "graphical-session-pre.target")
        self.assertEqual((unit["Service"]["Type"], unit["Service"]["BusName"]), ("dbus", "app.kivo.SmsWatcher"))

    def test_the_ledger_is_started_by_its_socket_and_reaches_no_network(self):
        socket = self.units / "kivo-ledger.socket"
        self.assertTrue((self.units / "sockets.target.wants" / socket.name).samefile(socket))
        listens = unit_file(socket)["Socket"]
        self.assertEqual(listens["ListenStream"], "%t/kivo/ledger.sock")
        self.assertEqual((listens["SocketMode"], listens["DirectoryMode"]), ("0600", "0700"))
        lines = (self.units / "kivo-ledger.service").read_text().splitlines()
        families = [line for line in lines if line.startswith("RestrictAddressFamilies=")]
        self.assertEqual(families[-2:], ["RestrictAddressFamilies=", "RestrictAddressFamilies=AF_UNIX"])

    def test_the_daily_backup_is_off_until_a_person_enables_it(self):
        timer = unit_file(self.units / "kivo-ledger-backup.timer")
        self.assertEqual((timer["Timer"]["OnCalendar"], timer["Install"]["WantedBy"]), ("daily", "timers.target"))
        self.assertEqual([path for path in self.units.glob("*.wants/kivo-ledger-backup*")], [])
        unit = unit_file(self.units / "kivo-ledger-backup.service")["Service"]
        self.assertTrue(unit["ExecStart"].endswith("/kivo-ledger backup --daily"))
        self.assertEqual(unit["PrivateNetwork"], "yes")

    def test_permissions_do_not_depend_on_the_umask(self):
        found = sorted(PREFIX.rglob("*"))  # installed under 077
        self.assertGreater(len(found), 40)
        for path in found:
            executable = path.is_dir() or path.parent.name in ("bin", "kivo")
            self.assertEqual(stat.S_IMODE(path.stat().st_mode), 0o755 if executable else 0o644, path)


if __name__ == "__main__":
    unittest.main()
