#!/usr/bin/env python3
"""Compiles sources of a build alone, as the build does, without making objects; scripts/check_sources.sh calls it.

usage: check_sources.py BUILD FILE...      FILE: a source, or a folder of them
"""

import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

from compiled_sources import compiled_sources, root


def main(build, *only):
    sources = compiled_sources(build, only)
    if not sources:
        sys.exit(f"No source of {build} is among: {' '.join(only)}")

    def check(source):
        done = subprocess.run(["clang++", *sources[source], "-fsyntax-only", str(source)], cwd=root)
        return done.returncode == 0

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        failed = list(pool.map(check, sources)).count(False)
    if failed:
        sys.exit(f"{failed} of {len(sources)} sources do not compile alone.")
    print(f"{len(sources)} sources compile alone.")


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
