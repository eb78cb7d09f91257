#!/usr/bin/python3 -B
"""Kivo in a real Phosh on the screen of a phone: among the apps, a message's notification, a tap on it."""
from desktop_session import MESSAGE, REPORT, main, wait_for
from icon_on_screen import ALIKE, likeness
from phosh import PhoshTest

WORDS = "EGP\u00a0150.00 at Carrefour City (Groceries)"


class APhosh(PhoshTest):
    def test_the_apps_have_kivo(self):
        wait_for(lambda: self.phone.controls(program="phosh", name="Kivo"), "Kivo is in the list of apps")
        self.picture("apps")

    def test_a_notification_has_the_name_and_the_icon_of_kivo(self):
        banner = self.notified(MESSAGE, WORDS)
        picture = self.picture("notification")
        self.assertIn("Kivo", [one["name"] for one in banner])
        [icon] = [one for one in banner if one["role"] == "icon"]
        self.assertGreater(likeness(picture, self.phone.on_screen(icon)), ALIKE)

    def test_a_tap_on_a_notification_opens_the_report(self):
        [words] = [one for one in self.notified(MESSAGE, WORDS) if one["name"] == WORDS]
        self.phone.tap(words)
        wait_for(lambda: self.phone.controls(title=REPORT), "the report is open in the browser")
        self.picture("report")


if __name__ == "__main__":
    main()
