#!/usr/bin/python3
"""Waits until the running Vantrel shows every given text on a showing accessible of its panel (read over
AT-SPI), or the deadline passes; on failure prints what the panel did show. Texts starting with "re:" are
regular expressions that must match a whole accessible name.
Usage: panel_texts_probe.py SECONDS TEXT..."""
import re
import sys
import time

import pyatspi


def shown_names(accessible, depth=0):
    """Names of the showing accessibles below one node; the tree is small, so a plain walk is enough."""
    names = []
    if depth > 40:
        return names
    for child in accessible:
        if child is None:
            continue
        try:
            if child.getState().contains(pyatspi.STATE_SHOWING):
                names.append(child.name)
                names.extend(shown_names(child, depth + 1))
        except Exception:  # the tree may change under a walk; the next round reads it again
            continue
    return names


def vantrel_names():
    names = []
    for application in pyatspi.Registry.getDesktop(0):
        if application is not None and application.name == "Vantrel":
            names.extend(shown_names(application))
    return names


def missing(wanted, names):
    def found(text):
        if text.startswith("re:"):
            return any(re.fullmatch(text[3:], name) for name in names)
        return text in names
    return [text for text in wanted if not found(text)]


def main():
    deadline = time.monotonic() + float(sys.argv[1])
    wanted = sys.argv[2:]
    while True:
        names = vantrel_names()
        absent = missing(wanted, names)
        if not absent:
            return 0
        if time.monotonic() > deadline:
            print("panel lacks: %r\npanel shows: %r" % (absent, names), file=sys.stderr)
            return 1
        time.sleep(0.5)


sys.exit(main())
