#!/usr/bin/python3 -B
"""Uses the program's window as assistive technology does.

usage: use_window.py PROCESS row PATH     prints the cells of the row with the path, one a line; nothing without it
       use_window.py PROCESS quit PATH    selects that row alone and presses "Quit Copy"; prints "pressed" if it can
"""

import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402 (the version must be chosen first)


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


def is_quit_button(element):
    return element.get_role() == Atspi.Role.PUSH_BUTTON and element.get_name() == "Quit Copy"


def row_with(table, path):
    for row in range(Atspi.Table.get_n_rows(table)):
        cells = [Atspi.Table.get_accessible_at(table, row, c) for c in range(Atspi.Table.get_n_columns(table))]
        names = [cell.get_name() or "" if cell is not None else "" for cell in cells]
        if path in names:
            return row, names
    return None, []


def use(process, verb, path):
    program = next((p for p in children(Atspi.get_desktop(0)) if p.get_process_id() == process), None)
    table = find(program, is_table) if program is not None else None
    if table is None:
        return
    row, names = row_with(table, path)
    if verb == "row":
        print("".join(name + "\n" for name in names), end="")
        return
    button = find(program, is_quit_button)
    if row is None or button is None:
        return
    for other in Atspi.Table.get_selected_rows(table):
        Atspi.Table.remove_row_selection(table, other)
    Atspi.Table.add_row_selection(table, row)
    if button.get_state_set().contains(Atspi.StateType.SENSITIVE):
        # The program answers when it is done, which may be long after we have lost patience.
        print("pressed")
        Atspi.Action.do_action(button, 0)


try:
    use(int(sys.argv[1]), sys.argv[2], sys.argv[3])
except GLib.Error:
    pass  # it is being built, or changes while it is read: whoever asks may try again
