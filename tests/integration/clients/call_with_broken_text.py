#!/usr/bin/python3
"""Calls ProcessSMSIntent with a text that is not UTF-8, straight through the bus's socket: no
library would send it. Prints "dropped" when the bus ends the connection."""
import os
import socket
import struct
import sys

CALL, SERIAL = 1, 7


def padded(data, size):
    return data + b"\0" * (-len(data) % size)


def string(text):
    return struct.pack("<I", len(text)) + text + b"\0"


def call(destination, path, interface, member, signature=b"", body=b""):
    fields = b""
    for code, kind, text in ((1, b"o", path), (2, b"s", interface), (3, b"s", member),
                             (6, b"s", destination)):
        fields = padded(fields, 8) + bytes([code, 1]) + kind + b"\0" + string(text)
    if signature:
        fields = padded(fields, 8) + bytes([8, 1]) + b"g\0" + bytes([len(signature)]) + signature + b"\0"
    head = struct.pack("<BBBBIII", ord("l"), CALL, 0, 1, len(body), SERIAL, len(fields)) + fields
    return padded(head, 8) + body


def performing(text):
    start = padded(string(b"ProcessSMSIntent"), 4)
    entry = padded(string(b"smsText") + b"\1s\0", 4) + string(text)
    length = struct.pack("<I", len(entry))
    return padded(start + length, 8) + entry


def main():
    address = os.environ["DBUS_SESSION_BUS_ADDRESS"]
    bus = socket.socket(socket.AF_UNIX)
    bus.settimeout(10)
    bus.connect(address.removeprefix("unix:path="))
    bus.sendall(b"\0AUTH EXTERNAL " + str(os.getuid()).encode().hex().encode() + b"\r\n")
    if not bus.recv(1000).startswith(b"OK"):
        sys.exit("the bus does not know us")
    bus.sendall(b"BEGIN\r\n")
    bus.sendall(call(b"org.freedesktop.DBus", b"/org/freedesktop/DBus", b"org.freedesktop.DBus",
                     b"Hello"))
    bus.recv(4096)
    text = b"Paid \xff 150" if len(sys.argv) == 1 else sys.argv[1].encode()
    bus.sendall(call(b"app.kivo.expenses.Intents", b"/app/kivo/expenses/Intents",
                     b"app.kivo.Intents1", b"Perform", b"sa{sv}", performing(text)))
    while True:
        received = bus.recv(4096)
        if not received:
            return "dropped"
        if b"Offline" in received or b"offline" in received or b"No SMS text" in received:
            return "answered"


print(main())
