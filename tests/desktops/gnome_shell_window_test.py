#!/usr/bin/python3 -B
"""The window of Kivo in a real GNOME Shell."""
from corrected_payment import MESSAGE, TITLE, correct_payment
from desktop_session import main, wait_for
from gnome_shell import GnomeShellTest


class AWindowOnGnomeShell(GnomeShellTest):
    def open_notification(self):
        self.kivo.receive(MESSAGE)

        def banner():
            shown = self.shell.banner()
            return shown if shown and TITLE in shown["texts"] else None
        self.shell.click(wait_for(banner, "the notification is shown")["place"])

    def test_a_click_on_a_notification_leads_to_the_correction_of_its_payment(self):
        correct_payment(self, self.open_notification)


if __name__ == "__main__":
    main()
