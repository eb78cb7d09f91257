#!/usr/bin/python3
"""A terminal: runs the program that its arguments name on a pseudo terminal of its own.

Types what comes out of the pipe KIVO_TYPED, as long as it is open; keeps what the program shows in
the file KIVO_SHOWN, and adds the line "closed" when the program has ended.
"""
import os
import pty
import select
import sys

child, screen = pty.fork()
if child == 0:
    os.execvp(sys.argv[1], sys.argv[1:])
keyboard = os.open(os.environ["KIVO_TYPED"], os.O_RDONLY | os.O_NONBLOCK)
watched = [screen, keyboard]
with open(os.environ["KIVO_SHOWN"], "wb", buffering=0) as shown:
    while True:
        ready, _, _ = select.select(watched, [], [], 60)
        if not ready:
            break
        if keyboard in ready:
            typed = os.read(keyboard, 4096)
            if typed:
                os.write(screen, typed)
            else:
                select.select([], [], [], 0.02)  # the other end is not open at the moment
        if screen in ready:
            try:
                shown.write(os.read(screen, 4096))
            except OSError:  # the program has ended, and with it the terminal's other side
                break
    os.close(screen)
    os.waitpid(child, 0)
    shown.write(b"\nclosed\n")
