#!/usr/bin/python3 -B
"""Prints what the programs of this session show, as a screen reader finds it: one JSON object for each control, with
program, window, role, name and place (left, top, width, height, in its window)."""
import json

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


def controls_of(parent, about):
    for index in range(parent.get_child_count()):
        control = parent.get_child_at_index(index)
        try:
            if control is None or not control.get_state_set().contains(Atspi.StateType.SHOWING):
                continue
            place = control.get_extents(Atspi.CoordType.WINDOW)
            yield about | {"role": control.get_role_name(), "name": control.get_name(),
                           "place": [place.x, place.y, place.width, place.height]}
            yield from controls_of(control, about)
        except GLib.Error:
            pass  # it has gone meanwhile


def main():
    desktop = Atspi.get_desktop(0)
    for program in (desktop.get_child_at_index(index) for index in range(desktop.get_child_count())):
        for number in range(program.get_child_count() if program else 0):
            window = program.get_child_at_index(number)
            if window is not None:
                about = {"program": program.get_name(), "window": number, "title": window.get_name()}
                for control in controls_of(window, about):
                    print(json.dumps(control))


main()
