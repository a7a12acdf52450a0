#!/usr/bin/python3 -B
"""Uses the program's window as assistive technology does.

usage: use_window.py PROCESS row PATH     prints the cells of the row with the path, one a line, or "no row"; nothing if
                                          the table cannot be read
       use_window.py PROCESS quit PATH    selects that row alone and presses "Quit Copy"; prints "pressed" if it can
       use_window.py PROCESS select PATH  selects that row alone and gives the table the keyboard; prints "selected" then
       use_window.py PROCESS press KEYS   presses keys such as "ctrl+shift+l" wherever the keyboard is
       use_window.py PROCESS status       prints what the status line says
       use_window.py PROCESS button NAME  prints "enabled" or "disabled: " and why
       use_window.py PROCESS tree         prints each element that can be seen, but no cells: role, name, "focusable" or "", by tabs
       use_window.py PROCESS cells        prints each cell: row, column, title, text, "selected" or "", by tabs
       use_window.py 0 bus                prints the address of the bus of assistive technology
       use_window.py 0 wake               starts the registry of programs; prints "awake" once it answers
"""

import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib  # noqa: E402 (the version must be chosen first)


def children(element):
    for i in range(element.get_child_count()):
        child = element.get_child_at_index(i)
        if child is not None:
            yield child


def find(element, wanted, depth=0):
    if wanted(element):
        return element
    # A table's cells are many and hold nothing.
    if depth > 12 or is_table(element):
        return None
    for child in children(element):
        found = find(child, wanted, depth + 1)
        if found is not None:
            return found
    return None


def is_table(element):
    return element.get_role() in (Atspi.Role.TABLE, Atspi.Role.TREE_TABLE)


def button_named(program, name):
    return find(program, lambda e: e.get_role() == Atspi.Role.PUSH_BUTTON and e.get_name() == name)


def has_state(element, state):
    return element.get_state_set().contains(state)


# The codes of keys that are held, which are the same on every keyboard, and the symbols of keys with a name.
HELD = {"ctrl": 37, "shift": 50, "alt": 64}
SYMBOLS = {"delete": 0xFFFF, "return": 0xFF0D, "escape": 0xFF1B, "f1": 0xFFBE, "f5": 0xFFC2}


def press(keys):
    *held, key = keys.split("+")
    for name in held:
        Atspi.generate_keyboard_event(HELD[name], None, Atspi.KeySynthType.PRESS)
    Atspi.generate_keyboard_event(SYMBOLS.get(key) or ord(key), None, Atspi.KeySynthType.SYM)
    for name in reversed(held):
        Atspi.generate_keyboard_event(HELD[name], None, Atspi.KeySynthType.RELEASE)


def tree(element, depth=0):
    if not has_state(element, Atspi.StateType.SHOWING) and depth > 0:
        return
    if depth > 0:
        focusable = "focusable" if has_state(element, Atspi.StateType.FOCUSABLE) else ""
        print(element.get_role_name(), (element.get_name() or "").replace("\n", " "), focusable, sep="\t")
    if is_table(element) or depth > 12:
        return
    for child in children(element):
        tree(child, depth + 1)


def cells(table):
    """The rows and columns are those that a cell's place among the table's children stands for."""
    for row in range(Atspi.Table.get_n_rows(table)):
        for column in range(Atspi.Table.get_n_columns(table)):
            cell = Atspi.Table.get_accessible_at(table, row, column)
            index = Atspi.Table.get_index_at(table, row, column)
            selected = "selected" if has_state(cell, Atspi.StateType.SELECTED) else ""
            print(Atspi.Table.get_row_at_index(table, index), Atspi.Table.get_column_at_index(table, index),
                  Atspi.Table.get_column_description(table, column), cell.get_name(), selected, sep="\t")


def select(program, table, row):
    for other in Atspi.Table.get_selected_rows(table):
        if other != row:
            Atspi.Table.remove_row_selection(table, other)
    Atspi.Table.add_row_selection(table, row)
    # There is no window manager that would give the window the keyboard.
    Atspi.Component.grab_focus(program.get_child_at_index(0))
    Atspi.Component.grab_focus(table)
    return list(Atspi.Table.get_selected_rows(table)) == [row] and has_state(table, Atspi.StateType.FOCUSED)


def row_with(table, path):
    for row in range(Atspi.Table.get_n_rows(table)):
        cells = [Atspi.Table.get_accessible_at(table, row, c) for c in range(Atspi.Table.get_n_columns(table))]
        names = [cell.get_name() or "" if cell is not None else "" for cell in cells]
        if path in names:
            return row, names
        if not any(names):
            return None, []  # the row went while it was read, or is not filled yet
    return None, ["no row"]


def program_of(process):
    return next((p for p in children(Atspi.get_desktop(0)) if p.get_process_id() == process), None)


def use(process, verb, path):
    program = program_of(process)
    table = find(program, is_table) if program is not None else None
    if table is None:
        return
    row, names = row_with(table, path)
    if verb == "row":
        print("".join(name + "\n" for name in names), end="")
        return
    if verb == "select" and row is not None:
        print("selected" if select(program, table, row) else "not yet")
        return
    button = button_named(program, "Quit Copy")
    if row is None or button is None:
        return
    for other in Atspi.Table.get_selected_rows(table):
        Atspi.Table.remove_row_selection(table, other)
    Atspi.Table.add_row_selection(table, row)
    if has_state(button, Atspi.StateType.SENSITIVE):
        # The program answers when it is done, which may be long after we have lost patience.
        print("pressed")
        Atspi.Action.do_action(button, 0)


def tell(process, verb, argument):
    """Answers the verbs that need no row."""
    if verb == "wake":
        Atspi.get_desktop(0).get_child_count()
        print("awake")
        return
    if verb == "bus":
        session = Gio.bus_get_sync(Gio.BusType.SESSION)
        answer = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None, None,
                                   Gio.DBusCallFlags.NONE, -1, None)
        print(answer.unpack()[0])
        return
    program = program_of(process)
    if verb == "tree" and program is not None:
        tree(program)
    elif verb == "cells" and program is not None:
        cells(find(program, is_table))
    elif verb == "press":
        press(argument)
        print("pressed")
    elif verb == "status" and program is not None:
        line = find(program, lambda element: element.get_role() == Atspi.Role.STATUS_BAR)
        print(line.get_description() if line is not None else "none")
    elif verb == "button" and program is not None:
        button = button_named(program, argument)
        if button is not None and has_state(button, Atspi.StateType.SENSITIVE):
            print("enabled")
        elif button is not None:
            print("disabled: " + button.get_description())


# By default a question is given up after 0.8 s, which on a busy computer is too short for one of the many of a walk.
Atspi.set_timeout(20_000, 20_000)
try:
    process, verb, *rest = sys.argv[1:]
    if verb in ("row", "quit", "select"):
        use(int(process), verb, rest[0])
    else:
        tell(int(process), verb, *(rest or [""]))
except GLib.Error:
    pass  # it is being built, or changes while it is read: whoever asks may try again
except AttributeError as error:
    # An element that went has no states and no name, not even an empty one. Anything else is a mistake in this script.
    if error.obj is not None:
        raise
