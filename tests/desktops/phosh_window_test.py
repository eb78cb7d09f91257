#!/usr/bin/python3 -B
"""The window of Kivo in a real Phosh on the screen of a phone."""
from corrected_payment import MESSAGE, TITLE, correct_payment
from desktop_session import main
from phosh import PhoshTest


class AWindowOnPhosh(PhoshTest):
    def open_notification(self):
        [title] = [one for one in self.notified(MESSAGE, TITLE) if one["name"] == TITLE]
        self.picture("notification")
        self.phone.tap(title)

    def test_a_tap_on_a_notification_leads_to_the_correction_of_its_payment(self):
        correct_payment(self, self.open_notification)


if __name__ == "__main__":
    main()
