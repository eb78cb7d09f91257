"""A GSM modem behind a pseudo terminal, with the commands that a program needs to fetch messages."""
import os
import pty
import re
import select
import threading
import tty

ALPHABET = ("@£$¥èéùìòÇ\nØø\rÅåΔ_ΦΓΛΩΠΨΣΘΞ\x1bÆæßÉ !\"#¤%&'()*+,-./0123456789:;<=>?"
            "¡ABCDEFGHIJKLMNOPQRSTUVWXYZÄÖÑÜ§¿abcdefghijklmnopqrstuvwxyzäöñüà")
EXTENDED = {"€": 0x65, "[": 0x3C, "]": 0x3E, "{": 0x28, "}": 0x29, "\\": 0x2F, "^": 0x14, "~": 0x3D, "|": 0x40}
ESCAPE = 0x1B


def septets(text):
    """`text` in the network's default alphabet."""
    return [value for one in text
            for value in ([ESCAPE, EXTENDED[one]] if one in EXTENDED else [ALPHABET.index(one)])]


def packed(values, fill=0):
    """Seven bits each, after `fill` empty ones."""
    bits = [0] * fill + [value >> at & 1 for value in values for at in range(7)]
    bits += [0] * (-len(bits) % 8)
    return bytes(sum(bit << at for at, bit in enumerate(bits[start:start + 8])) for start in range(0, len(bits), 8))


def delivered(sender, text, part=None):
    """A received message as the modem hands it on, from a sender with a name: text in the default
    alphabet, bytes as UCS2. `part` is (reference, how many, which)."""
    header = bytes([5, 0, 3, *part]) if part else b""
    if isinstance(text, bytes):
        coding, content = 8, header + text
        length = len(content)
    else:
        coding, fill = 0, -len(header) * 8 % 7
        content = header + packed(septets(text), fill)
        length = (len(header) * 8 + fill) // 7 + len(septets(text))
    name = septets(sender)
    first = bytes([0x44 if part else 0x04, (len(name) * 7 + 3) // 4, 0xD0]) + packed(name)
    time = bytes.fromhex("62111270407500")  # 2026-11-21T07:04:57Z
    return "00" + (first + bytes([0, coding]) + time + bytes([length]) + content).hex().upper()


class SmsModem:
    """Answers on `path`, a symbolic link, until it is closed. A message that was deleted is gone."""

    def __init__(self, path, messages):
        self._messages = dict(enumerate(messages, start=1))
        self._master, self._slave = pty.openpty()
        tty.setraw(self._slave)
        os.symlink(os.ttyname(self._slave), path)
        self._wake, self._waker = os.pipe()
        self._thread = threading.Thread(target=self._serve)
        self._thread.start()

    def close(self):
        os.write(self._waker, b".")
        self._thread.join()
        for one in (self._master, self._slave, self._wake, self._waker):
            os.close(one)

    def _serve(self):
        received = b""
        while self._wake not in select.select([self._master, self._wake], [], [])[0]:
            received += os.read(self._master, 4096)
            while b"\r" in received:
                command, received = received.split(b"\r", 1)
                answer = self._answer(command.strip().decode("ascii", "replace"))
                os.write(self._master, f"\r\n{answer}\r\n".encode())

    def _answer(self, command):
        if command == "AT+CPIN?":
            return "+CPIN: READY\r\n\r\nOK"
        if command == "AT+CREG?":
            return "+CREG: 0,1\r\n\r\nOK"
        if command.startswith("AT+CPMS"):
            return "+CPMS: " + ",".join([f'"SM",{len(self._messages)},20'] * 3) + "\r\n\r\nOK"
        which = re.match(r"AT\+CMG([RD])=(\d+)", command)
        if which and which[1] == "D":
            self._messages.pop(int(which[2]), None)
        elif which and int(which[2]) in self._messages:
            message = self._messages[int(which[2])]
            return f"+CMGR: 1,,{len(message) // 2 - 1}\r\n{message}\r\n\r\nOK"
        return "OK"
