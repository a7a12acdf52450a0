#!/usr/bin/python3 -B
"""Uses a program's alert as assistive technology does.

usage: use_alert.py PROCESS read         prints the window's role and name, then "text TEXT" for each text and
                                         "button NAME" for each button, with " has the keyboard" where it is
       use_alert.py PROCESS focus        gives the window the keyboard, as a window manager would
       use_alert.py PROCESS press KEY    presses return, escape, tab or space wherever the keyboard is
"""

import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402 (the version must be chosen first)

SYMBOLS = {"return": 0xFF0D, "escape": 0xFF1B, "tab": 0xFF09, "space": 0x0020}
SHOWN = {Atspi.Role.LABEL: "text", Atspi.Role.STATIC: "text", Atspi.Role.PUSH_BUTTON: "button"}


def children(element):
    found = [element.get_child_at_index(i) for i in range(element.get_child_count())]
    return [child for child in found if child is not None]


def show(element):
    kind, name = SHOWN.get(element.get_role()), element.get_name()
    if kind and name:
        focused = element.get_state_set().contains(Atspi.StateType.FOCUSED)
        print(kind, name + (" has the keyboard" if focused else ""))
    for child in children(element):
        show(child)


def use(process, verb, key=""):
    if verb == "press":
        Atspi.generate_keyboard_event(SYMBOLS[key], None, Atspi.KeySynthType.SYM)
        return
    program = next((p for p in children(Atspi.get_desktop(0)) if p.get_process_id() == process), None)
    window = program.get_child_at_index(0) if program is not None else None
    if window is None:
        return
    if verb == "focus":
        Atspi.Component.grab_focus(window)
    else:
        print(window.get_role_name(), window.get_name())
        show(window)


# By default a question is given up after 0.8 s, which on a busy computer is too short for one of the many of a walk.
Atspi.set_timeout(20_000, 20_000)
try:
    use(int(sys.argv[1]), *sys.argv[2:])
except GLib.Error:
    pass  # it is being built, or changes while it is read: whoever asks may try again
except AttributeError as error:
    # An element that went has no states and no name, not even an empty one. Anything else is a mistake in this script.
    if error.obj is not None:
        raise
