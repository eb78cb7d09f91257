#!/usr/bin/python3
"""Sets the notification permission of bundles at the notification center of the session bus.

    many_bundles.py COUNT

Prints how many it has accepted, then the error by which it refused the next, if any.
"""
import os
import sys

import dbus
import dbus.bus

NAME = "app.kivo.NotificationCenter"

bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
center = dbus.Interface(bus.get_object(NAME, "/app/kivo/NotificationCenter", introspect=False), NAME + "1")
for number in range(int(sys.argv[1])):
    try:
        center.SetAuthorizationStatus(f"app.number{number}", 2, timeout=60)
    except dbus.DBusException as error:
        print(number, error)
        break
else:
    print(sys.argv[1])
