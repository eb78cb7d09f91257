#!/usr/bin/python3
"""Adds requests to the notification center of the session bus.

    large_requests.py BYTES...

Each has a body of BYTES bytes; the request counts as its identifier. Prints a line for each: "kept",
or the name of the error by which it was refused.
"""
import os
import sys

import dbus
import dbus.bus

NAME = "app.kivo.NotificationCenter"

bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
center = dbus.Interface(bus.get_object(NAME, "/app/kivo/NotificationCenter", introspect=False), NAME + "1")
for number, size in enumerate(sys.argv[1:], start=1):
    content = dbus.Dictionary({"title": "Large", "body": "x" * int(size)}, signature="sv")
    try:
        center.Add("app.other", str(number), content, 3600.0, False, timeout=60)
        print("kept")
    except dbus.DBusException as error:
        print(error.get_dbus_name())
