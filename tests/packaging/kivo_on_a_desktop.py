"""The installed Kivo on a virtual desktop, as the tests of links and notifications use it."""
import contextlib
import unittest

from installed_kivo import InstalledKivo
from virtual_desktop import VirtualDesktop, wait_for

MESSAGE = "Your card was charged EGP 150.00 at Cafe"
FIGURES = "EGP\u00a0150.00"


class KivoOnADesktop(unittest.TestCase):
    def setUp(self):
        self.stack = contextlib.ExitStack()
        self.addCleanup(self.stack.close)
        self.kivo = InstalledKivo()
        self.stack.callback(self.kivo.close)
        self.desktop = VirtualDesktop(self.kivo, self.stack)

    def track(self):
        self.kivo.run("kivo-intents", "perform", "ProcessSMSIntent", "--smsText", "-", input=MESSAGE)

    def click_on_the_notification(self):
        """Of a message that is tracked, as the first of this desktop."""
        self.kivo.run("kivo-phone", "notifications", "authorized")
        self.track()
        [notification] = wait_for(lambda: self.desktop.windows("Dunst"), "the notification is shown")
        self.assertEqual(self.desktop.terminals() + self.desktop.browsers(), [])
        self.desktop.click(notification)

    def expect_widget(self):
        """One window opens, with the figures in it."""
        wait_for(lambda: self.desktop.windows("XTerm"), "a terminal is open")
        wait_for(lambda: FIGURES in self.desktop.shown(), "the terminal shows the figures")
        self.assertIn("1 expense ", self.desktop.shown())
        self.assertEqual(len(self.desktop.terminals()), 1)


class KivoWithALedger(KivoOnADesktop):
    def setUp(self):
        super().setUp()
        self.desktop.start("kivo-ledger", "serve")
        wait_for((self.desktop.home / "kivo/ledger.sock").exists, "the ledger listens")
        self.kivo.run("kivo-phone", "sign-in", "--local")
