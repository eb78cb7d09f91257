#!/usr/bin/python3
"""Calls COUNT times, each time when the service is about to have had no call for IDLE_MS.

    calls_at_the_idle_end.py COUNT IDLE_MS

The moments are spread over some milliseconds around that end. Prints how many calls were answered
with the dialog, by how many different processes, and each error.
"""
import sys
import time

import dbus
import dbus.lowlevel

NAME, PATH, INTERFACE = "app.kivo.expenses.Intents", "/app/kivo/expenses/Intents", "app.kivo.Intents1"


def main():
    count, idle = int(sys.argv[1]), float(sys.argv[2]) / 1000
    bus = dbus.SessionBus()
    answered, processes = 0, set()
    for number in range(count):
        message = dbus.lowlevel.MethodCallMessage(NAME, PATH, INTERFACE, "Perform")
        message.append("ProcessSMSIntent", {"smsText": " "}, signature="sa{sv}")
        try:
            reply = bus.send_message_with_reply_and_block(message, 30.0)
            answered += reply.get_args_list() == ["No SMS text provided"]
            processes.add(reply.get_sender())
        except dbus.DBusException as error:
            print(error.get_dbus_name())
        end = time.monotonic() + idle + (number % 21 - 10) * 0.0002
        while time.monotonic() < end:
            pass
    print(answered, len(processes))


main()
