#!/usr/bin/python3
"""Calls the intents by python3-dbus, as a user's script does.

    call_intents.py catalog
    call_intents.py perform INTENT [NAME TYPE VALUE]...   TYPE is text or number

Prints what is answered, or the name of the error.
"""
import sys

import dbus

NAME, PATH, INTERFACE = "app.kivo.expenses.Intents", "/app/kivo/expenses/Intents", "app.kivo.Intents1"
TYPES = {"text": dbus.String, "number": dbus.Double}


def main():
    intents = dbus.Interface(dbus.SessionBus().get_object(NAME, PATH), INTERFACE)
    if sys.argv[1] == "catalog":
        return intents.Catalog()
    triples = zip(*[iter(sys.argv[3:])] * 3)
    values = dbus.Dictionary({name: TYPES[kind](value) for name, kind, value in triples}, "sv")
    return intents.Perform(sys.argv[2], values)


try:
    print(main())
except dbus.DBusException as error:
    print(error.get_dbus_name())
