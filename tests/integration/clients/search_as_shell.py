#!/usr/bin/python3
"""Searches as the desktop's shell does: by a proxy of the described interface, terms split at blanks.

    search_as_shell.py initial TEXT
    search_as_shell.py further RESULT[,RESULT]... TEXT
    search_as_shell.py metas RESULT...
    search_as_shell.py activate RESULT TEXT
    search_as_shell.py launch TEXT

Prints a line for each result: its identifier or, for metas, identifier, name, description and the
names of its icon as the toolkit understands it. Prints the error of a call that fails.
"""
import configparser
import os
import sys

from gi.repository import Gio, GLib

INTERFACE = """<node><interface name="org.gnome.Shell.SearchProvider2">
  <method name="GetInitialResultSet"><arg type="as" direction="in"/><arg type="as" direction="out"/></method>
  <method name="GetSubsearchResultSet"><arg type="as" direction="in"/><arg type="as" direction="in"/>
    <arg type="as" direction="out"/></method>
  <method name="GetResultMetas"><arg type="as" direction="in"/><arg type="aa{sv}" direction="out"/></method>
  <method name="ActivateResult"><arg type="s" direction="in"/><arg type="as" direction="in"/>
    <arg type="u" direction="in"/></method>
  <method name="LaunchSearch"><arg type="as" direction="in"/><arg type="u" direction="in"/></method>
</interface></node>"""
NOW = 12345


def provider():
    """The search provider that the installed description names."""
    description = configparser.ConfigParser()
    description.optionxform = str
    description.read(os.environ["KIVO_SEARCH_PROVIDER"])
    group = description["Shell Search Provider"]
    assert group["Version"] == "2"
    interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
    return Gio.DBusProxy.new_for_bus_sync(
        Gio.BusType.SESSION, Gio.DBusProxyFlags.DO_NOT_LOAD_PROPERTIES, interface,
        group["BusName"], group["ObjectPath"], interface.name, None)


def call(name, signature, *arguments):
    reply = provider().call_sync(name, GLib.Variant(signature, arguments), Gio.DBusCallFlags.NONE, 60000, None)
    return reply.get_child_value(0) if reply.n_children() else None


def show(meta):
    values = {key: meta.lookup_value(key, None) for key in meta.unpack()}
    icon = Gio.icon_deserialize(values.pop("icon"))
    print(*(values.pop(key).get_string() for key in ("id", "name", "description")),
          ",".join(name for name in icon.get_names() if not name.endswith("-symbolic")), sep=" | ")
    assert not values, values


def main():
    command, *words = sys.argv[1:]
    terms = words[-1].split()
    if command == "initial":
        print(*call("GetInitialResultSet", "(as)", terms).unpack(), sep="\n")
    elif command == "further":
        print(*call("GetSubsearchResultSet", "(asas)", words[0].split(","), terms).unpack(), sep="\n")
    elif command == "metas":
        metas = call("GetResultMetas", "(as)", words)
        for index in range(metas.n_children()):
            show(metas.get_child_value(index))
    elif command == "activate":
        call("ActivateResult", "(sasu)", words[0], terms, NOW)
    elif command == "launch":
        call("LaunchSearch", "(asu)", terms, NOW)


try:
    main()
except GLib.Error as error:
    print(error.message)
