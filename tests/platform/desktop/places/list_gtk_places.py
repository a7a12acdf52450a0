#!/usr/bin/python3 -B
"""Prints the bookmarks that GTK's own list of places shows: a line with URI and name each.

usage: list_gtk_places.py COUNT

Waits until there are so many, at most a minute: GTK looks at each folder before it shows it.
"""

import ctypes
import sys
import time

# The section of the user's bookmarks, as GTK counts them.
BOOKMARKS = 4


class List(ctypes.Structure):
    pass


List._fields_ = [("data", ctypes.c_void_p), ("next", ctypes.POINTER(List)), ("prev", ctypes.POINTER(List))]


def library():
    try:
        gtk = ctypes.CDLL("libgtk-3.so.0")
    except OSError as error:
        sys.exit(f"GTK cannot be loaded: {error}")
    for name in ("gtk_places_sidebar_new", "gtk_bin_get_child"):
        getattr(gtk, name).restype = ctypes.c_void_p
    gtk.gtk_container_get_children.restype = ctypes.POINTER(List)
    return gtk


def children(gtk, widget):
    link = gtk.gtk_container_get_children(ctypes.c_void_p(widget))
    while link:
        yield link.contents.data
        link = link.contents.next


def text(gtk, row, name):
    value = ctypes.c_char_p()
    gtk.g_object_get(ctypes.c_void_p(row), name, ctypes.byref(value), None)
    return (value.value or b"").decode()


def is_bookmark(gtk, row):
    section = ctypes.c_int()
    gtk.g_object_get(ctypes.c_void_p(row), b"section-type", ctypes.byref(section), None)
    return section.value == BOOKMARKS


def bookmarks(gtk, rows):
    """Without the row for a new one, which has no URI."""
    shown = [row for row in children(gtk, rows) if is_bookmark(gtk, row) and text(gtk, row, b"uri")]
    return [(text(gtk, row, b"uri"), text(gtk, row, b"label")) for row in shown]


def main():
    gtk = library()
    if not gtk.gtk_init_check(None, None):
        sys.exit("GTK has no display")
    viewport = gtk.gtk_bin_get_child(ctypes.c_void_p(gtk.gtk_places_sidebar_new()))
    rows = gtk.gtk_bin_get_child(ctypes.c_void_p(viewport))
    end = time.monotonic() + 60
    while len(bookmarks(gtk, rows)) < int(sys.argv[1]) and time.monotonic() < end:
        gtk.g_main_context_iteration(None, False)
    for uri, label in bookmarks(gtk, rows):
        print(uri, label)


main()
