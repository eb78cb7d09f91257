#!/usr/bin/python3 -B
"""The watcher beside Chatty, which takes each received message from ModemManager and deletes it there: which of the
bank's messages are booked. docs/automation.md says it to users."""
import contextlib
import datetime
import json
import os
import sys
import time

from desktop_session import HERE, DesktopTest, Kivo, Session, main, run, wait_for

sys.path.insert(0, str(HERE.parent / "packaging"))
from modem_manager_in_root import ModemManager  # noqa: E402

REST_SECONDS = 1


def message(number):
    """The bank's of now, about a payment of as many pounds."""
    return {"path": str(number), "State": 3, "PduType": 1, "Storage": 1, "Number": "MyBank",
            "Text": f"Your card ending 4821 was charged EGP {number}.00 at Shop {number}.",
            "Timestamp": datetime.datetime.now(datetime.timezone.utc).isoformat(timespec="seconds")}


class AWatcherBesideChatty(DesktopTest):
    """A message has arrived while neither ran."""

    def setUp(self):
        self.session = Session(GDK_BACKEND="x11")
        self.addCleanup(self.session.close)
        os.environ["DISPLAY"] = self.session.start_screen()
        self.kivo = Kivo(self.session)
        run("kivo-phone", "watch", "add", "MyBank")
        bus = self.session.home / "system-bus"
        os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={bus}"
        modem_manager = contextlib.ExitStack()
        modem_manager.enter_context(ModemManager(bus, {"0": [message(1)]}))
        self.addCleanup(modem_manager.close)
        wait_for(lambda: self.calls() == [], "ModemManager answers")

    def modem_manager(self, **command):
        """The stand-in's answer to what a test asks for."""
        try:
            said = run("gdbus", "call", "--system", "--dest", "org.freedesktop.ModemManager1", "--object-path", "/test",
                       "--method", "test.Test.Do", json.dumps(command))
        except AssertionError:
            return None  # it is not on the bus yet
        return json.loads(said[said.index("'") + 1:said.rindex("'")])

    def calls(self):
        return self.modem_manager(do="calls")

    def receive(self, number):
        self.modem_manager(do="receive", message=message(number))

    def start_watcher(self):
        before = self.calls().count("GetManagedObjects ModemManager1")
        self.session.start("kivo-sms-watcher")
        wait_for(lambda: self.calls().count("GetManagedObjects ModemManager1") > before, "the watcher reads the modem")

    def start_chatty(self):
        self.session.start("chatty", "--daemon")

    def expect_deleted(self, number):
        wait_for(lambda: f"Delete /org/freedesktop/ModemManager1/SMS/{number}" in self.calls(),
                 f"Chatty has taken message {number} and deleted it")

    def expect_booked(self, *numbers):
        """Exactly these messages."""
        expected = [(f"{number}.00", f"Shop {number}") for number in numbers]
        wait_for(lambda: len(self.kivo.booked()) >= len(expected), f"{len(expected)} messages are booked")
        self.assertCountEqual(self.kivo.booked(), expected)

    def receive_while_both_run(self, number):
        """Some time after the last one, as a bank sends them: when the watcher has noted that."""
        record = self.session.home / ".local/share/app.kivo.SmsWatcher"
        wait_for(lambda: time.time() - max(file.stat().st_mtime for file in record.iterdir()) > REST_SECONDS,
                 "the watcher has nothing to do")
        self.receive(number)
        self.expect_deleted(number)

    def test_without_chatty_all_messages_are_booked(self):
        self.start_watcher()
        self.expect_booked(1)
        self.receive(2)
        self.expect_booked(1, 2)

    def test_a_watcher_that_was_started_first_books_all_messages(self):
        self.start_watcher()
        self.expect_booked(1)
        self.start_chatty()
        self.expect_deleted(1)
        for number in (2, 3, 4):
            self.receive_while_both_run(number)
            self.expect_booked(*range(1, number + 1))

    def test_a_watcher_that_was_started_later_books_what_arrives_from_then_on(self):
        self.start_chatty()
        self.expect_deleted(1)
        self.start_watcher()
        for number in (2, 3, 4):
            self.receive_while_both_run(number)
            self.expect_booked(*range(2, number + 1))

    def test_without_the_watcher_no_message_is_booked(self):
        self.start_chatty()
        self.expect_deleted(1)
        self.receive(2)
        self.expect_deleted(2)
        self.expect_booked()


if __name__ == "__main__":
    main()
