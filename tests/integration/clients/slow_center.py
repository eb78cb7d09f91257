#!/usr/bin/python3
"""A notification center on the session bus that answers slowly.

    slow_center.py SECONDS...

Answers the first call after the first SECONDS, the next one after the next, and all further calls
after the last; "never" leaves a call without an answer. Every bundle is authorized. Prints a line
for each request that it is given: its title.
"""
import os
import sys
import time

import dbus
import dbus.bus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME = "app.kivo.NotificationCenter"
pauses = sys.argv[1:]


def answer(reply, *values):
    pause = pauses.pop(0) if len(pauses) > 1 else pauses[0]
    if pause == "never":
        return
    time.sleep(float(pause))  # one call after the other
    reply(*values)


class Center(dbus.service.Object):
    @dbus.service.method(NAME + "1", "s", "i", async_callbacks=("reply", "error"))
    def AuthorizationStatus(self, bundle, reply, error):
        answer(reply, 2)

    @dbus.service.method(NAME + "1", "ssa{sv}db", "", async_callbacks=("reply", "error"))
    def Add(self, bundle, identifier, content, interval, repeats, reply, error):
        print(content.get("title", ""), flush=True)
        answer(reply)


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
center = Center(bus, "/app/kivo/NotificationCenter")
bus.request_name(NAME)
GLib.MainLoop().run()
