#!/usr/bin/python3 -B
"""Kivo in a real GNOME Shell: a message's notification, what a click on it opens, and an expense from the search."""
import pathlib

from desktop_session import MESSAGE, REPORT, main, wait_for
from gnome_shell import GnomeShellTest
from icon_on_screen import ALIKE, likeness


def is_asking():
    """Whether a program asks for an expense."""
    for file in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
        try:
            if file.read_text().split("\0")[1:3] == ["perform", "AddExpenseIntent"]:
                return True
        except (FileNotFoundError, ProcessLookupError):
            pass  # it has ended meanwhile
    return False


class AGnomeShell(GnomeShellTest):
    def notified(self):
        self.kivo.receive(MESSAGE)
        return wait_for(self.shell.banner, "the notification is shown")

    def test_a_notification_has_the_words_and_the_icon_of_kivo(self):
        banner = self.notified()
        self.assertIn("EGP\u00a0150.00 at Carrefour City (Groceries)", banner["texts"])
        self.assertGreater(likeness(self.picture("notification"), banner["icon"]), ALIKE)

    def test_a_click_on_a_notification_opens_the_report(self):
        self.shell.click(self.notified()["place"])
        wait_for(lambda: REPORT in self.shell.windows(), "the report is open in the browser")
        self.picture("report")

    def test_the_search_adds_an_expense(self):
        self.shell.open_overview()
        self.shell.type("Add expense")
        wait_for(lambda: "Add Expense" in self.shell.first_result(), "Kivo's shortcut is the first result")
        self.picture("search")
        self.shell.type("\n")
        wait_for(is_asking, "a console asks for the expense")
        wait_for(self.shell.types_into_a_window, "the console has the keyboard")
        self.shell.type("12.5\nCafe Nilo\n")
        wait_for(self.kivo.booked, "the expense is in the book")
        self.assertEqual(self.kivo.booked(), [("12.50", "Cafe Nilo")])
        self.picture("console")
        self.assertTrue(self.shell.windows(), "the console stays open to be read")
        self.shell.type("\n")
        wait_for(lambda: not self.shell.windows(), "the console closes after Enter")


if __name__ == "__main__":
    main()
