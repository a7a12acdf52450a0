#!/usr/bin/python3 -B
"""Prints what assistive technology sees of the programs at the session's bus: a line with role and name an element, and
"whole" at the end if nothing changed meanwhile.

With --ready it prints whether there is a bus for that ("yes" or "no") and nothing else.
"""

import sys

import gi

gi.require_version("Atspi", "2.0")
gi.require_version("Gio", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402 (the version must be chosen first)

DEEPEST = 40


def is_ready():
    try:
        bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        place = ("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")
        answer = bus.call_sync(*place, None, None, Gio.DBusCallFlags.NO_AUTO_START, -1, None)
        return bool(answer.unpack()[0])
    except GLib.Error:
        return False


def show(element, depth=0):
    if element is None or depth > DEEPEST:
        return
    print(element.get_role_name(), element.get_name())
    for i in range(element.get_child_count()):
        show(element.get_child_at_index(i), depth + 1)


if sys.argv[1:] == ["--ready"]:
    print("yes" if is_ready() else "no")
    sys.exit()
# By default a question is given up after 0.8 s, which on a busy computer is too short for one of the many of a walk.
Atspi.set_timeout(20_000, 20_000)
try:
    show(Atspi.get_desktop(0))
    print("whole")
except GLib.Error:
    pass  # a program that changes or ends while it is read: what was read is printed
