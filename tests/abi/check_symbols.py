#!/usr/bin/env python3
"""Compares the symbols that a shared library offers with a kept list, and says what is new or missing.

usage: check_symbols.py LIBRARY LIST [--update]      --update writes LIST anew

The list holds one demangled name a line, in ascending order, without addresses, and without the kinds of symbols,
which differ between compilers. A change of the list is a change of the library's surface: what goes missing
breaks programs that were built before, so it asks for a new SONAME.
"""

import pathlib
import subprocess
import sys


def offered(library):
    table = subprocess.run(
        ["nm", "--dynamic", "--defined-only", "--demangle", library],
        check=True, capture_output=True, text=True, env={"LC_ALL": "C", "PATH": "/usr/bin:/bin"}).stdout
    return {line.split(" ", 2)[2] for line in table.splitlines()}  # "ADDRESS KIND NAME"


def main(library, kept_list, update=False):
    now = offered(library)
    kept_list = pathlib.Path(kept_list)
    if update:
        kept_list.write_text("".join(f"{name}\n" for name in sorted(now)))
        return 0
    kept = set(kept_list.read_text().splitlines())
    for name in sorted(now - kept):
        print(f"New: {name}")
    for name in sorted(kept - now):
        print(f"Missing: {name}")
    if now == kept:
        print(f"{len(now)} symbols, as kept.")
        return 0
    print(f"If this is meant, write the list anew: {sys.argv[0]} {library} {kept_list} --update")
    return 1


if __name__ == "__main__":
    arguments = [argument for argument in sys.argv[1:] if argument != "--update"]
    if len(arguments) != 2:
        sys.exit(__doc__)
    sys.exit(main(*arguments, update="--update" in sys.argv))
