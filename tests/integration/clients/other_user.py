#!/usr/bin/python3
"""Another user of the machine, who sends the programs on the system bus what only the bus and
ModemManager may say.

    other_user.py FORGERY...

Becomes the user `nobody`, takes the name org.example.OtherUser and answers there as a ModemManager
with one modem and one message of MyBank. It sends each FORGERY to every program on the bus: `gone`
(ModemManager has no owner any more), `owner` (this program owns its name), `broken` (a change of
owner of another shape), `message` (the signals by which ModemManager tells of a message). Then it
prints "sent", and from then on a line for each call that it gets.
"""
import os
import pwd
import sys

import dbus
import dbus.bus
import dbus.lowlevel
import dbus.mainloop.glib
from gi.repository import GLib

NAME = "org.freedesktop.ModemManager1"
ROOT = "/org/freedesktop/ModemManager1"
MODEM = ROOT + "/Modem/0"
SMS = dbus.ObjectPath(ROOT + "/SMS/77")
PROPERTIES = "org.freedesktop.DBus.Properties"
MESSAGING = NAME + ".Modem.Messaging"

MODEMS = dbus.Dictionary({MODEM: {MESSAGING: dbus.Dictionary({}, "sv")}}, "oa{sa{sv}}")
MESSAGE = dbus.Dictionary({"State": dbus.UInt32(3), "PduType": dbus.UInt32(1), "Number": "MyBank",
                           "Text": "Forged", "Timestamp": ""}, "sv")
ANSWERS = {"GetManagedObjects": ("a{oa{sa{sv}}}", MODEMS), "List": ("ao", [SMS]),
           "GetAll": ("a{sv}", MESSAGE)}


def signals(forgery, me, owner):
    change = ("/org/freedesktop/DBus", "org.freedesktop.DBus", "NameOwnerChanged")
    if forgery == "gone":
        yield *change, "sss", (NAME, owner, "")
    if forgery == "owner":
        yield *change, "sss", (NAME, owner, me)
    if forgery == "broken":
        yield *change, "su", (NAME, 7)
    if forgery == "message":
        yield MODEM, MESSAGING, "Added", "ob", (SMS, True)
        yield SMS, PROPERTIES, "PropertiesChanged", "sa{sv}as", (NAME + ".Sms", MESSAGE, dbus.Array([], "s"))
        yield (ROOT, "org.freedesktop.DBus.ObjectManager", "InterfacesAdded", "oa{sa{sv}}",
               (dbus.ObjectPath(MODEM), MODEMS[MODEM]))


def answer(connection, call):
    if call.get_type() != dbus.lowlevel.MESSAGE_TYPE_METHOD_CALL:
        return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED
    print("called:", call.get_member(), flush=True)
    if call.get_member() not in ANSWERS:
        return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED
    signature, value = ANSWERS[call.get_member()]
    reply = dbus.lowlevel.MethodReturnMessage(call)
    reply.append(value, signature=signature)
    connection.send_message(reply)
    return dbus.lowlevel.HANDLER_RESULT_HANDLED


def main():
    nobody = pwd.getpwnam("nobody")
    os.setgroups([])
    os.setgid(nobody.pw_gid)
    os.setuid(nobody.pw_uid)
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(os.environ["DBUS_SYSTEM_BUS_ADDRESS"])
    bus.add_message_filter(answer)
    bus.request_name("org.example.OtherUser")
    owner = bus.get_name_owner(NAME) if bus.name_has_owner(NAME) else ""
    receivers = [name for name in bus.list_names() if name.startswith(":") and name != bus.get_unique_name()]
    for forgery in sys.argv[1:]:
        for path, interface, member, signature, values in signals(forgery, bus.get_unique_name(), owner):
            for receiver in receivers:
                signal = dbus.lowlevel.SignalMessage(path, interface, member)
                signal.set_destination(receiver)
                signal.append(*values, signature=signature)
                bus.send_message(signal)
    bus.list_names()  # once this is answered, the bus has passed on all of them
    print("sent", flush=True)
    GLib.MainLoop().run()


main()
