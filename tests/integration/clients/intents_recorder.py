#!/usr/bin/python3
"""A fake intents service that records its calls.

    intents_recorder.py NOTES BEHAVIOUR

Appends "begin INTENT VALUES" and "end" lines, VALUES as JSON, to the file NOTES. The file BEHAVIOUR
holds what it does with a call: answer, slow (an answer after 100 ms), fail, hang, or die.
"""
import json
import os
import sys

import dbus
import dbus.bus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME, PATH, INTERFACE = "app.kivo.expenses.Intents", "/app/kivo/expenses/Intents", "app.kivo.Intents1"


def note(line):
    with open(sys.argv[1], "a", encoding="utf-8") as notes:
        notes.write(line + "\n")


def behaviour():
    with open(sys.argv[2], encoding="utf-8") as file:
        return file.read().strip()


class Intents(dbus.service.Object):
    @dbus.service.method(INTERFACE, "sa{sv}", "s", async_callbacks=("reply", "error"))
    def Perform(self, intent, values, reply, error):
        note(f"begin {intent} " + json.dumps({str(key): str(values[key]) for key in values},
                                             ensure_ascii=False))
        does = behaviour()
        if does == "die":
            os._exit(1)
        if does == "hang":
            return
        if does == "fail":
            note("end")
            error(dbus.DBusException("no", name="app.kivo.Intents1.Error.UnknownIntent"))
            return

        def answer():
            note("end")
            reply("Tracked EGP 1.00 at MARKMERCHANT")

        GLib.timeout_add(100 if does == "slow" else 0, answer)


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
    service = Intents(bus, PATH)
    bus.request_name(NAME)
    GLib.MainLoop().run()
    return service


main()
