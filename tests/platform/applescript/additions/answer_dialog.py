#!/usr/bin/python3 -B
"""Answers a program's dialog as assistive technology does.

usage: answer_dialog.py PROCESS choose NAME   selects the list item of that name
       answer_dialog.py PROCESS type TEXT     sets the text of the last field that can be edited
       answer_dialog.py PROCESS click NAME    clicks the button of that name
Prints "done" if there was such an element.
"""

import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402 (the version must be chosen first)

ROLES = {"choose": (Atspi.Role.LIST_ITEM,), "click": (Atspi.Role.PUSH_BUTTON,), "type": (Atspi.Role.TEXT,)}


def elements(element):
    yield element
    for i in range(element.get_child_count()):
        child = element.get_child_at_index(i)
        if child is not None:
            yield from elements(child)


def plain(name):
    return name.replace("&", "")


def answer(process, verb, text):
    desktop = Atspi.get_desktop(0)
    programs = (desktop.get_child_at_index(i) for i in range(desktop.get_child_count()))
    program = next((p for p in programs if p is not None and p.get_process_id() == process), None)
    if program is None:
        return False
    found = [e for e in elements(program) if e.get_role() in ROLES[verb]]
    if verb == "type":
        fields = [e for e in found if e.get_state_set().contains(Atspi.StateType.EDITABLE)]
        return bool(fields) and Atspi.EditableText.set_text_contents(fields[-1], text)
    named = next((e for e in found if plain(e.get_name()) == text), None)
    if named is None:
        return False
    if verb == "choose":
        return Atspi.Table.add_row_selection(named.get_parent(), named.get_index_in_parent())
    return Atspi.Action.do_action(named, 0)


# By default a question is given up after 0.8 s, which on a busy computer is too short for one of the many of a walk.
Atspi.set_timeout(20_000, 20_000)
try:
    if answer(int(sys.argv[1]), *sys.argv[2:]):
        print("done")
except GLib.Error:
    pass  # it is being built, or changes while it is read: whoever asks may try again
except AttributeError as error:
    # An element that went has no states and no name, not even an empty one. Anything else is a mistake in this script.
    if error.obj is not None:
        raise
