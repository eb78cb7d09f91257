"""A message of a payment that waits for a look, and its correction in the window that its notification opens."""
import sys

from desktop_session import HERE, wait_for

sys.path.insert(0, str(HERE.parent / "app"))
from accessible_window import AccessibleWindow  # noqa: E402

MESSAGE = "Purchase of USD 20.00 at MOON SHOP on card ending 4821"
TITLE = "🔎 Needs a look"


def correct_payment(test, open_notification):
    """Corrects, in a `test` of a desktop, the payment to which `open_notification` leads."""
    open_notification()
    window = AccessibleWindow(lambda application: application.name == "kivo")
    window.shows("Right, Book It")
    test.picture("payment")
    window.type_into("Category", "Gifts")
    window.click("Save")
    window.shows("Saved")
    test.picture("saved")
    [waiting] = test.kivo.entries("review")
    test.assertEqual((waiting["description"], waiting["category"]), ("MOON SHOP", "Gifts"))
    window.click("Right: MOON SHOP")
    booked = wait_for(lambda: test.kivo.entries("list"), "the payment is booked")
    test.assertEqual([(one["description"], one["amount"], one["category"]) for one in booked],
                     [("MOON SHOP", "20.00", "Gifts")])
