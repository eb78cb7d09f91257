#!/usr/bin/env python3
"""Checks that each rule of the room check can fail."""
import pathlib
import tempfile
import unittest

import rooms


class RoomCheck(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        for room in rooms.ARROWS:
            target = "kivo_" + room.replace("/", "_")
            self.write(f"src/{room}/CMakeLists.txt", f"kivo_room({target})\n")
        for place, what in rooms.EXCEPTIONS:
            include = what if what.startswith("<") else f'"{what}/x.h"'
            name = place + "task.h" if place.endswith("/") else place
            self.write(name, f"#include {include}\n")
        self.write("src/platform/CMakeLists.txt",
                   "kivo_room(kivo_platform foundation/json_decoder.cpp foundation/json_encoder.cpp)")

    def write(self, name, text):
        file = self.root / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def assert_broken(self, line):
        self.assertEqual(list(rooms.check(self.root)), [line])

    def test_includes_along_the_arrows_pass(self):
        self.write("src/queue/item.h", '#include <string>\n#include "store/shared_store.h"\n')
        self.assertEqual(list(rooms.check(self.root)), [])

    def test_an_include_against_an_arrow_fails(self):
        self.write("src/store/store.h", '#include "queue/item.h"\n')
        self.assert_broken('src/store/store.h: store may not include "queue/item.h"')

    def test_the_extension_may_not_include_linux(self):
        self.write("src/intents/flow.h", '#include "platform/linux/process/start.h"\n')
        self.assert_broken(
            'src/intents/flow.h: intents may not include "platform/linux/process/start.h"')

    def test_a_vendor_header_in_the_extension_fails(self):
        self.write("src/queue/item.h", "#include <sqlite3.h>\n")
        self.assert_broken("src/queue/item.h: queue may not include <sqlite3.h>")

    def test_a_vendor_header_in_a_program_passes(self):
        self.write("src/phone/backend.h", "#include <sqlite3.h>\n")
        self.assertEqual(list(rooms.check(self.root)), [])

    def test_an_include_against_the_order_of_folders_fails(self):
        self.write("src/platform/linux/process/start.h", '#include "platform/linux/bus/bus_loop.h"\n')
        self.assert_broken("src/platform/linux/process/start.h: platform/linux/process may not include "
                           '"platform/linux/bus/bus_loop.h"')

    def test_a_cycle_of_folders_fails(self):
        self.assertTrue(rooms.has_circle({"a": {"b"}, "b": {"c"}, "c": {"b"}}))
        self.assertFalse(rooms.has_circle({"a": {"b", "c"}, "b": {"c"}, "c": set()}))

    def test_a_vendor_header_of_the_platforms_interfaces_fails(self):
        self.write("src/platform/foundation/url.h", "#include <boost/url/url.hpp>\n")
        self.assert_broken(
            "src/platform/foundation/url.h: platform may not include <boost/url/url.hpp>")

    def test_a_relative_include_fails(self):
        self.write("src/queue/item.h", '#include "other.h"\n')
        self.assert_broken('src/queue/item.h: includes "other.h", which is in no room')

    def test_an_unknown_room_fails(self):
        self.write("src/utils/strings.h", "")
        self.assert_broken("src/utils/strings.h: is in no room")

    def test_an_unknown_framework_folder_fails(self):
        self.write("src/platform/misc/x.h", "")
        self.assert_broken("src/platform/misc/x.h: is in no folder of platform")

    def test_a_file_name_in_camel_case_fails(self):
        self.write("src/queue/PendingItem.h", "")
        self.assert_broken("src/queue/PendingItem.h: a file's name is snake_case")

    def test_a_link_against_an_arrow_fails(self):
        self.write("src/feedback/CMakeLists.txt",
                   "kivo_room(kivo_feedback)\n"
                   "target_link_libraries(kivo_feedback PUBLIC kivo_store kivo_queue)")
        self.assert_broken("src/feedback/CMakeLists.txt: kivo_feedback may not link kivo_queue")

    def test_a_source_in_no_target_fails(self):
        self.write("src/queue/forgotten.cpp", "")
        self.assert_broken("src/queue/forgotten.cpp: is in no target")

    def test_an_unused_exception_fails(self):
        self.write("src/platform/foundation/json_encoder.cpp", "")
        self.assert_broken("src/platform/foundation/json_encoder.cpp: "
                           "no longer needs its exception for <nlohmann/json.hpp>")


if __name__ == "__main__":
    unittest.main()
