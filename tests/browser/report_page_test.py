#!/usr/bin/env python3
"""Shows the report in Chromium and has it judged by html-validate and by axe-core.

KIVO_PROGRAMS has kivo-ledger, KIVO_CHECKERS is the folder of npm's packages. With KIVO_PICTURES, keeps
pictures of the page in that folder, to be looked at.
"""
import os
import pathlib
import re
import subprocess
import tempfile
import unittest

from headless_browser import DESK, PHONE, HeadlessBrowser
from invented_book import HOSTILE, InventedBook

PROGRAMS = os.environ["KIVO_PROGRAMS"]
CHECKERS = pathlib.Path(os.environ["KIVO_CHECKERS"])
SMALLEST = 320
RULES = pathlib.Path(__file__).with_name("html-validate.json")
OPEN_TABLES = "document.querySelectorAll('.chart + details').forEach(one => one.open = true)"
OPEN_ALL = "document.querySelectorAll('details').forEach(one => one.open = true)"


class TheReport(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = cls.enterClassContext(tempfile.TemporaryDirectory(prefix="kivo-report-"))
        cls.browser = cls.enterClassContext(HeadlessBrowser())
        for name in ("year", "hostile", "empty", "arabic"):
            (pathlib.Path(folder) / name).mkdir()
        book = InventedBook(f"{folder}/year", PROGRAMS)
        book.add_year()
        cls.year = book.report()
        hostile = InventedBook(f"{folder}/hostile", PROGRAMS)
        hostile.add("2026-11-20", "expense", 123456, HOSTILE, HOSTILE)
        hostile.add("2026-11-20", "income", 123456789012, "W" * 300, "ش" * 300)
        hostile.add("2026-11-20", "expense", 123456, "مطعم أبو طارق (2)", "Dining", "KWD", like=1)
        hostile.add("2026-11-20", "income", 123456789012345, HOSTILE + "W" * 90, "Other", state="review",
                    text=f"{HOSTILE}\n{'W' * 300} مطعم أبو طارق")
        cls.hostile = hostile.report()
        arabic = InventedBook(f"{folder}/arabic", PROGRAMS, "ar_EG.UTF-8")
        arabic.add_year()
        cls.arabic = arabic.report()
        empty = InventedBook(f"{folder}/empty", PROGRAMS)
        cls.empty = empty.report()
        months = {"year": cls.year, "hostile": cls.hostile, "empty": cls.empty, "arabic": cls.arabic}
        years = {f"{name}-of-2026": of.year_report() for name, of in
                 (("year", book), ("hostile", hostile), ("empty", empty), ("arabic", arabic))}
        cls.pages = months | years

    def test_is_valid_html(self):
        for name, page in self.pages.items():
            with self.subTest(page=name):
                found = subprocess.run([CHECKERS / ".bin/html-validate", "--config", RULES, page], capture_output=True,
                                       text=True, timeout=60, check=False)
                self.assertEqual((found.returncode, found.stdout), (0, ""), found.stderr)

    def test_has_no_flaw_that_the_accessibility_checker_finds(self):
        checker = (CHECKERS / "axe-core/axe.min.js").read_text(encoding="utf-8")
        for name, page in self.pages.items():
            with self.subTest(page=name):
                for width in (PHONE, DESK):
                    for scheme in ("light", "dark"):
                        self.browser.show(page, width, scheme)
                        self.browser.run(OPEN_TABLES)
                        self.browser.run(checker)
                        result = self.browser.awaited("axe.run()")
                        self.assertIn("color-contrast", {rule["id"] for rule in result["passes"]})
                        flaws = [(rule["id"], node["html"], node["failureSummary"]) for rule in result["violations"]
                                 for node in rule["nodes"]]
                        self.assertEqual(flaws, [], f"{width} pixels, {scheme}")

    def test_fits_each_screen(self):
        for name, page in self.pages.items():
            with self.subTest(page=name):
                for width in (SMALLEST, PHONE, DESK):
                    self.browser.show(page, width)
                    self.browser.run(OPEN_ALL)
                    self.assertLessEqual(self.browser.value("document.documentElement.scrollWidth"), width)

    def test_loads_nothing_and_runs_nothing(self):
        for name, page in self.pages.items():
            with self.subTest(page=name):
                self.browser.show(page)
                self.assertEqual(self.browser.value("performance.getEntriesByType('resource').map(one => one.name)"), [])
                self.assertEqual(self.browser.value("document.scripts.length + document.images.length"), 0)
                title = "Kivo: 2026" if name.endswith("-of-2026") else "Kivo: November 2026"
                self.assertEqual(self.browser.value("document.title"), title)
                self.assertEqual(self.browser.complaints(), [])

    def test_forbids_what_it_does_not_need(self):
        self.browser.show(self.year)
        self.browser.run("const one = document.createElement('script'); one.textContent = 'window.ran = true';"
                         "document.body.append(one); const two = new Image(); two.src = 'file:///etc/hostname';"
                         "document.body.append(two)")
        self.assertIsNone(self.browser.value("window.ran"))
        refused = " ".join(self.browser.complaints())
        self.assertIn("script", refused)
        self.assertIn("img-src", refused)

    def test_shows_a_hostile_name_as_its_text(self):
        self.browser.show(self.hostile)
        shown = HOSTILE.replace("\x1b", "\\x1b").replace("\u202e", "\\u202e")
        self.assertIn(shown, self.browser.value("[...document.querySelectorAll('.what bdi')].map(one => one.textContent)"))

    def test_shows_the_id_of_each_payment_on_each_screen(self):
        for width in (SMALLEST, PHONE, DESK):
            self.browser.show(self.year, width)
            self.browser.run(OPEN_ALL)
            shown = self.browser.value("[...document.querySelectorAll('.list tbody tr')].map(row =>"
                                       " row.querySelector('.id').getBoundingClientRect().width > 0)")
            self.assertGreater(len(shown), 300)
            self.assertTrue(all(shown))

    def test_lists_what_waits_in_review(self):
        for width in (PHONE, DESK):
            self.browser.show(self.year, width)
            rows = self.browser.value("[...document.querySelectorAll('[aria-labelledby=review] tbody tr')].map(row =>"
                                      " row.innerText.replace(/\\s+/g, ' '))")
            self.assertEqual(len(rows), 2)
            self.assertRegex(rows[0], r"^\d+ Steam 2026-11-23 Your card ending 4821 was charged USD 49.99 at Steam on"
                                      r" 23-11-2026. \$49.99$")
            self.assertRegex(rows[1], r"^\d+ Nile Cinema 2026-11-19 Purchase EGP 150.00 EGP 350.00 at Nile Cinema unknown$")

    def test_keeps_each_sum_at_the_right_edge(self):
        for page in (self.year, self.hostile, self.arabic):
            for width in (PHONE, DESK):
                self.browser.show(page, width)
                self.browser.run(OPEN_ALL)
                edges = self.browser.value("[...document.querySelectorAll('.list td.sum bdi')].map(one =>"
                                           " Math.round(one.getBoundingClientRect().right))")
                self.assertEqual(len(set(edges)), 1)
                names = self.browser.value("[...document.querySelectorAll('.list tr')].every(row => !row.cells[1] ||"
                                           " row.cells[1].getBoundingClientRect().right <="
                                           " row.querySelector('.sum').getBoundingClientRect().left + 1)")
                self.assertTrue(names)

    def test_scrolls_a_years_widest_table_by_itself(self):
        self.browser.show(self.pages["year-of-2026"], PHONE)
        table = "document.querySelector('.by-month .wide')"
        self.assertTrue(self.browser.value(f"{table}.scrollWidth > {table}.clientWidth"))
        self.browser.run(f"{table}.scrollLeft = 10000")
        self.assertGreater(self.browser.value(f"{table}.scrollLeft"), 0)
        self.assertGreaterEqual(self.browser.value(f"{table}.querySelector('tbody th').getBoundingClientRect().left"), 0)

    def test_opens_a_closed_month_for_a_text_that_is_searched_in_it(self):
        self.browser.show(self.year)
        closed = "document.querySelectorAll('.list > details')[3]"
        self.assertFalse(self.browser.value(f"{closed}.open"))
        number = self.browser.value(f"{closed}.querySelector('td.sum').textContent")
        self.browser.show(self.year, search=number)
        self.assertTrue(self.browser.becomes_true(f"{closed}.open"))

    def test_is_printed_in_black_on_white_also_from_a_dark_screen(self):
        self.browser.show(self.year, scheme="dark", media="print")
        style = "getComputedStyle(document.body)"
        self.assertEqual(self.browser.value(f"{style}.backgroundColor"), "rgb(255, 255, 255)")
        self.assertEqual(self.browser.value(f"{style}.color"), "rgb(0, 0, 0)")
        pages = len(re.findall(rb"/Type\s*/Page\b", self.browser.printed()))
        self.assertIn(pages, range(1, 7))

    def test_is_photographed(self):
        folder = os.environ.get("KIVO_PICTURES")
        if not folder:
            self.skipTest("KIVO_PICTURES names no folder")
        for name, page in self.pages.items():
            for width in (PHONE, DESK):
                for scheme in ("light", "dark"):
                    self.browser.show(page, width, scheme)
                    height = self.browser.value("document.documentElement.scrollHeight")
                    self.browser.photograph(pathlib.Path(folder) / f"{name}-{width}-{scheme}.png", min(height, 4000))
        (pathlib.Path(folder) / "year.pdf").write_bytes(self.browser.printed())


if __name__ == "__main__":
    unittest.main()
