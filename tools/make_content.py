#!/usr/bin/env python3
"""Draws and writes the shipped content below share/: all of it but the photographs.

    tools/make_content.py            write every file
    tools/make_content.py Frames/    write those whose name begins so (several may be given)
    tools/make_content.py --check    write nothing; name the files that differ, status 1 if any does

It needs Python 3 and nothing beside its standard library. Two runs give the same bytes. The files
are in the tree, since a build must not wait for them: run this after a change in tools/content and
commit both. The photographs and Frame1.jpg come from elsewhere, see share/Photos/CREDITS.md.
"""

import argparse
import multiprocessing
import pathlib
import sys

from content import bmp, filters, frames, masks, ornament, overlays, scripts

SHARE = pathlib.Path(__file__).resolve().parent.parent / "share"

# Name below share/ to (the function that makes it, how its result becomes a file).
FILES = {
    **{name: (make, bmp.grey_bmp) for name, make in masks.ALL.items()},
    **{name: (make, lambda picture: bmp.colour_bmp(picture, (frames.OPENING,)))
       for name, make in frames.ALL.items()},
    **{name: (make, lambda picture: bmp.colour_bmp(picture, overlays.KEYS))
       for name, make in overlays.ALL.items()},
    **{name: (make, bytes) for family in (ornament, filters, scripts)
       for name, make in family.ALL.items()},
}


def made(name):
    make, finish = FILES[name]
    return name, finish(make())


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--check", action="store_true", help="compare, write nothing")
    parser.add_argument("prefixes", nargs="*", help="names below share/, or how they begin")
    arguments = parser.parse_args()
    chosen = [name for name in FILES
              if not arguments.prefixes or name.startswith(tuple(arguments.prefixes))]
    if not chosen:
        parser.error("no such content")
    differing = 0
    with multiprocessing.Pool() as pool:
        for name, data in pool.imap(made, chosen):
            path = SHARE / name
            if path.exists() and path.read_bytes() == data:
                continue
            if arguments.check:
                print("differs: " + name)
                differing += 1
                continue
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(data)
            print("%s: %d bytes" % (name, len(data)))
    return 1 if differing else 0


if __name__ == "__main__":
    sys.exit(main())
