#!/usr/bin/python3 -B
"""Presses a key with Control on the display, for the window below the point of the screen.

usage: press_key.py KEYCODE X Y
"""

import ctypes
import sys

CONTROL = 37


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__.strip())
    key, x, y = (int(argument) for argument in sys.argv[1:])
    x11, test = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    display = ctypes.c_void_p(x11.XOpenDisplay(None))
    if not display:
        sys.exit("there is no display")
    test.XTestFakeMotionEvent(display, 0, x, y, 0)
    for code, is_down in ((CONTROL, 1), (key, 1), (key, 0), (CONTROL, 0)):
        test.XTestFakeKeyEvent(display, code, is_down, 0)
    x11.XSync(display, 0)
    x11.XCloseDisplay(display)


main()
