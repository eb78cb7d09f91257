#!/usr/bin/python3
"""Sends COUNT calls of ProcessSMSIntent at once and waits for all replies.

    overlapping_calls.py COUNT

Prints the milliseconds from the first call to the last reply, then each different reply, or name of
an error, after how many times it came.
"""
import collections
import sys
import time

import dbus
import dbus.mainloop.glib
from gi.repository import GLib

NAME, PATH, INTERFACE = "app.kivo.expenses.Intents", "/app/kivo/expenses/Intents", "app.kivo.Intents1"


def main():
    count = int(sys.argv[1])
    bus = dbus.SessionBus(mainloop=dbus.mainloop.glib.DBusGMainLoop())
    loop = GLib.MainLoop()
    replies = collections.Counter()

    def note(reply):
        replies[reply] += 1
        if replies.total() == count:
            loop.quit()

    start = time.monotonic()
    for number in range(count):
        values = {"smsText": f"Paid {number}"}
        bus.call_async(NAME, PATH, INTERFACE, "Perform", "sa{sv}", ("ProcessSMSIntent", values),
                       lambda dialog: note(str(dialog)),
                       lambda error: note(error.get_dbus_name()), timeout=60)
    loop.run()
    print(round((time.monotonic() - start) * 1000))
    for reply, times in sorted(replies.items()):
        print(times, reply)


main()
