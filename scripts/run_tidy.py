#!/usr/bin/env python3
"""Runs clang-tidy over every C++ source of a build; scripts/check_tidy.sh calls it.

Most of what clang-tidy does to a source is reading and matching other people's headers. So sources that are compiled
alike are written into one, which is checked instead of them; what is found is reported where it stands. Sources that
cannot be compiled together, because their own names collide, go to different ones.

usage: run_tidy.py BUILD [FILE...]      FILE: a source or folder to check, instead of all
"""

import os
import re
import shutil
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from compiled_sources import compiled_sources, root

MOST_TOGETHER = 32
# Functions that many sources have, each for another program.
ONCE_A_PROGRAM = ("main", "LLVMFuzzerTestOneInput")
# What two sources may well do each: include the same header and declare the same function. Formatting drops a second
# #include of one source, and the compiler's own warnings are for builds to show.
NOT_WHEN_UNITED = "-clang-diagnostic-*,-readability-duplicate-include,-readability-redundant-declaration"
# The analyzer follows the paths of a function until it has seen so many states. Its default, 225000, takes it four
# times as long, in the tests for the most part, and finds no more here.
ANALYZER_LIMIT = ["-Xclang", "-analyzer-config", "-Xclang", "max-nodes=40000"]


def rules_of(source):
    """The folder whose .clang-tidy is for the source."""
    return next(folder for folder in source.parents if (folder / ".clang-tidy").exists())


class United:
    """Several sources in one, in the folder of BUILD/tidy that stands for that of their rules, which are found so."""

    def __init__(self, build, number, sources, flags):
        self.sources = sources
        rules = rules_of(sources[0])
        self.path = build / "tidy" / rules.relative_to(root) / f"united_{number}.cpp"
        folders = sorted({str(source.parent) for source in sources})
        self.flags = [*flags, *(word for folder in folders for word in ("-iquote", folder))]
        self.first_lines = []
        self.path.parent.mkdir(parents=True, exist_ok=True)
        if rules != root:
            shutil.copy(rules / ".clang-tidy", self.path.parent)
        line = 1
        with self.path.open("w", encoding="utf-8") as out:
            for index, source in enumerate(sources):
                renaming = "".join(f"#undef {name}\n#define {name} {name}_{index}\n" for name in ONCE_A_PROGRAM)
                text = source.read_text(encoding="utf-8")
                text += "" if text.endswith("\n") else "\n"
                self.first_lines.append(line + renaming.count("\n"))
                out.write(renaming + text)
                line += (renaming + text).count("\n")

    def place(self, line):
        """The source that a line comes from, and its number there."""
        last = max((index for index, first in enumerate(self.first_lines) if first <= line), default=0)
        return self.sources[last], line - self.first_lines[last] + 1

    def run(self, *command):
        """What the command says of the united source, said of the sources in it; and whether it is content."""
        done = subprocess.run(command, capture_output=True, text=True, cwd=root)

        def original(match):
            source, line = self.place(int(match[1]))
            return f"{source.relative_to(root)}:{line}:"

        return re.sub(re.escape(str(self.path)) + r":(\d+):", original, done.stdout + done.stderr), done.returncode == 0

    def colliding(self):
        """Those of the sources that do not compile together with the ones before them."""
        said, content = self.run("clang++", *self.flags, "-fsyntax-only", "-w", "-ferror-limit=0", str(self.path))
        if content:
            return set()
        named = {root / name for name in re.findall(r"^([^:\s]+):\d+:\d+: (?:fatal )?error:", said, re.MULTILINE)}
        return named & set(self.sources[1:]) or set(self.sources[len(self.sources) // 2:])

    def check(self):
        are_united = len(self.sources) > 1
        checks = [f"--checks={NOT_WHEN_UNITED}"] if are_united else []
        flags = [*self.flags, "-w"] if are_united else self.flags  # otherwise warnings that are errors are told
        return self.run("clang-tidy", "--quiet", *checks, str(self.path), "--", *flags, *ANALYZER_LIMIT)


def unite(build, group, sources, flags):
    """As few united sources as can be, each of which compiles."""
    pending, number = sources, 0
    while pending:
        together, pending = pending[:MOST_TOGETHER], pending[MOST_TOGETHER:]
        united = United(build, f"{group}_{number}", together, flags)
        while len(together) > 1 and (colliding := united.colliding()):
            pending = [source for source in together if source in colliding] + pending
            together = [source for source in together if source not in colliding]
            united = United(build, f"{group}_{number}", together, flags)
        yield united
        number += 1


def main(build, *only):
    build = Path(build).resolve()
    shutil.rmtree(build / "tidy", ignore_errors=True)
    alike = {}
    for source, flags in compiled_sources(build, only).items():
        if source.suffix == ".cpp":  # the rules are for C++
            alike.setdefault((rules_of(source), flags), []).append(source)
    if not alike:
        sys.exit(f"No source of {build} is among: {' '.join(only)}")

    def unite_group(group):
        number, ((_, flags), sources) = group
        return list(unite(build, number, sorted(sources), flags))

    def check(united):
        said, content = united.check()
        if not content:
            print(said, flush=True)
        return content

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        everything = [united for part in pool.map(unite_group, enumerate(alike.items())) for united in part]
        # The longest first, so that no processor is left alone with it at the end.
        everything.sort(key=lambda united: united.path.stat().st_size, reverse=True)
        contents = list(pool.map(check, everything))
    print(f"clang-tidy: {sum(len(united.sources) for united in everything)} sources in {len(everything)} checked.")
    if not all(contents):
        sys.exit("clang-tidy found something.")


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(*sys.argv[1:])
