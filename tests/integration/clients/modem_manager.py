#!/usr/bin/python3
"""A fake ModemManager with text messages, on the bus that DBUS_SYSTEM_BUS_ADDRESS names.

    modem_manager.py MODEMS       a JSON object: {"0": [MESSAGE, ...], ...}

A MESSAGE is an object with its number under "path" and its properties under their own names;
whole numbers become UINT32, lists arrays of bytes. A test drives it by calling Do on /test with a
JSON object {"do": ...} and is answered with JSON.
"""
import json
import os
import sys

import dbus
import dbus.bus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME = "org.freedesktop.ModemManager1"
ROOT = "/org/freedesktop/ModemManager1"
MESSAGING = NAME + ".Modem.Messaging"
SMS = NAME + ".Sms"
PROPERTIES = "org.freedesktop.DBus.Properties"
OBJECT_MANAGER = "org.freedesktop.DBus.ObjectManager"

calls = []  # "Method path" of each call
faults = {}  # method -> the name of an error, or "hang"
modems = {}
messages = {}


def typed(value):
    if isinstance(value, bool):
        return dbus.Boolean(value)
    if isinstance(value, int):
        return dbus.UInt32(value)
    if isinstance(value, list):
        return dbus.Array([dbus.Byte(one) for one in value], signature="y")
    return dbus.String(value)


def answer(method, path, value, reply, error):
    """Notes the call and answers it with what `value` makes, unless a fault is asked for."""
    calls.append(f"{method} {path.rsplit('/', 1)[-1]}")
    fault = faults.get(method)
    if fault == "hang":
        return
    if fault:
        error(dbus.DBusException("so the test wants it", name=fault))
        return
    reply(value())


class Message(dbus.service.Object):
    def __init__(self, bus, properties):
        self.path = f"{ROOT}/SMS/{properties['path']}"
        self.properties = {key: typed(value) for key, value in properties.items() if key != "path"}
        super().__init__(bus, self.path)

    @dbus.service.method(PROPERTIES, "s", "a{sv}", async_callbacks=("reply", "error"))
    def GetAll(self, interface, reply, error):
        everything = dbus.Dictionary(self.properties if interface == SMS else {}, "sv")
        answer("GetAll", self.path, lambda: everything, reply, error)

    @dbus.service.signal(PROPERTIES, "sa{sv}as")
    def PropertiesChanged(self, interface, changed, invalidated):
        pass


class Modem(dbus.service.Object):
    def __init__(self, bus, number):
        self.path = f"{ROOT}/Modem/{number}"
        self.messages = []
        super().__init__(bus, self.path)

    def messaging(self):
        return dbus.Dictionary({"Messages": dbus.Array(self.messages, "o")}, "sv")

    def interfaces(self):
        return {NAME + ".Modem": dbus.Dictionary({}, "sv"), MESSAGING: self.messaging()}

    def has_changed(self):
        self.PropertiesChanged(MESSAGING, self.messaging(), dbus.Array([], "s"))

    @dbus.service.method(MESSAGING, "", "ao", async_callbacks=("reply", "error"))
    def List(self, reply, error):
        answer("List", self.path, lambda: dbus.Array(self.messages, "o"), reply, error)

    @dbus.service.method(MESSAGING, "o", "")
    def Delete(self, path):
        calls.append(f"Delete {path}")
        self.messages.remove(path)
        messages.pop(path.rsplit("/", 1)[-1]).remove_from_connection()
        self.has_changed()
        self.Deleted(path)

    @dbus.service.signal(MESSAGING, "ob")
    def Added(self, path, received):
        pass

    @dbus.service.signal(MESSAGING, "o")
    def Deleted(self, path):
        pass

    @dbus.service.signal(PROPERTIES, "sa{sv}as")
    def PropertiesChanged(self, interface, changed, invalidated):
        pass


class Manager(dbus.service.Object):
    def __init__(self, bus):
        self.bus = bus
        super().__init__(bus, ROOT)

    @dbus.service.method(OBJECT_MANAGER, "", "a{oa{sa{sv}}}", async_callbacks=("reply", "error"))
    def GetManagedObjects(self, reply, error):
        answer("GetManagedObjects", ROOT,
               lambda: dbus.Dictionary({modem.path: modem.interfaces() for modem in modems.values()},
                                       "oa{sa{sv}}"), reply, error)

    @dbus.service.signal(OBJECT_MANAGER, "oa{sa{sv}}")
    def InterfacesAdded(self, path, interfaces):
        pass

    @dbus.service.signal(OBJECT_MANAGER, "oas")
    def InterfacesRemoved(self, path, interfaces):
        pass

    def put(self, modem, properties):
        message = Message(self.bus, properties)
        messages[properties["path"]] = message
        modems[modem].messages.append(dbus.ObjectPath(message.path))
        modems[modem].has_changed()
        return message

    def add_modem(self, number, its_messages):
        modems[number] = Modem(self.bus, number)
        for one in its_messages:
            self.put(number, one)


class Test(dbus.service.Object):
    """What a test asks for."""

    def __init__(self, bus, manager):
        self.manager = manager
        super().__init__(bus, "/test")

    @dbus.service.method("test.Test", "s", "s")
    def Do(self, text):
        command = json.loads(text)
        return json.dumps(getattr(self, command.pop("do"))(**command))

    def receive(self, message, modem="0", received=True):
        modems[modem].Added(self.manager.put(modem, message).path, received)

    def receive_many(self, batch):
        for one in batch:
            self.receive(one)

    def change(self, path, properties):
        changed = {key: typed(value) for key, value in properties.items()}
        messages[path].properties.update(changed)
        messages[path].PropertiesChanged(SMS, dbus.Dictionary(changed, "sv"), dbus.Array([], "s"))

    def announce(self, path):
        """Tells of a message, whether it is there or not."""
        modems["0"].Added(dbus.ObjectPath(f"{ROOT}/SMS/{path}"), True)

    def add_modem(self, modem, its_messages):
        self.manager.add_modem(modem, its_messages)
        self.manager.InterfacesAdded(modems[modem].path, modems[modem].interfaces())

    def remove_modem(self, modem):
        gone = modems.pop(modem)
        for path in gone.messages:
            messages.pop(path.rsplit("/", 1)[-1]).remove_from_connection()
        gone.remove_from_connection()
        self.manager.InterfacesRemoved(gone.path, dbus.Array([MESSAGING], "s"))

    def fault(self, method, fault):
        faults[method] = fault

    def calls(self):
        return calls


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(os.environ["DBUS_SYSTEM_BUS_ADDRESS"])
    manager = Manager(bus)
    for modem, its_messages in json.loads(sys.argv[1]).items():
        manager.add_modem(modem, its_messages)
    test = Test(bus, manager)
    bus.request_name(NAME)
    GLib.MainLoop().run()
    return test


main()
