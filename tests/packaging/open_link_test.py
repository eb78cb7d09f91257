#!/usr/bin/env python3
"""Clicks on a notification of the installed Kivo as a person would, and looks at the window or the page that opens."""
import os
import shutil
import unittest

from installed_kivo import with_unpacked
from kivo_on_a_desktop import KivoOnADesktop, KivoWithALedger
from virtual_desktop import wait_for

class AnOpenedLink(KivoOnADesktop):
    def test_a_click_on_a_notification_shows_the_widget(self):
        self.click_on_the_notification()
        self.expect_widget()

    def test_the_window_closes_when_the_widget_ends(self):
        self.track()
        self.desktop.launch("gio", "open", "kivo-expenses://")
        self.expect_widget()
        self.desktop.press("ctrl+c", *self.desktop.windows("XTerm"))
        wait_for(lambda: not self.desktop.windows("XTerm"), "the terminal is closed")

    def test_a_desktop_with_its_own_opener_shows_the_widget(self):
        self.track()
        self.desktop.launch("gio", "open", "kivo-expenses://")
        self.expect_widget()

    def test_a_menu_shows_the_widget(self):
        self.track()
        self.desktop.launch("gio", "launch", self.desktop.entry)
        self.expect_widget()

    def test_a_foreign_link_cannot_pass_options(self):
        self.track()
        made = self.desktop.home / "made"
        self.desktop.launch("xdg-open", f"kivo-expenses:x --version $(touch {made}) `touch {made}`; touch {made}")
        self.expect_widget()
        self.assertFalse(made.exists())


class AnOpenedLinkWithALedger(KivoWithALedger):
    def expect_report(self, text):
        """One browser is started, with the report."""
        page = self.desktop.home / "page"
        wait_for(page.exists, "the browser shows a page")
        self.assertIn(text, page.read_text())
        self.assertEqual((len(self.desktop.browsers()), self.desktop.terminals()), (1, []))

    def test_a_click_on_a_notification_shows_the_report(self):
        self.desktop.install_browser()
        self.click_on_the_notification()
        self.expect_report("Cafe")

    def test_a_menu_shows_the_report(self):
        self.desktop.install_browser()
        self.track()
        self.desktop.launch("gio", "launch", self.desktop.entry)
        self.expect_report("Cafe")

    def test_an_empty_book_has_a_report(self):
        self.desktop.install_browser()
        self.desktop.launch("kivo-phone", "open")  # ends while the browser runs
        self.expect_report("Nothing is booked")

    def test_a_desktop_without_a_browser_shows_the_widget(self):
        # Answers as xdg-open does where no program shows pages, whatever this machine has.
        self.desktop.install("xdg-open", "#!/bin/sh\ncase $1 in kivo-*) exec /usr/bin/xdg-open \"$1\" ;; esac\nexit 3\n")
        self.click_on_the_notification()
        self.expect_widget()
        wait_for(lambda: "This month" in self.desktop.shown(), "the widget shows the month")


if __name__ == "__main__":
    for program in ("Xvfb", "dunst", "xdotool", "xterm"):
        path = with_unpacked(os.environ)["PATH"]
        assert shutil.which(program, path=path), f"{program} is missing; scripts/setup test brings it"
    unittest.main()
