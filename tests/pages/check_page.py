"""Checks that a page of the documentation shows what there is and what is really printed.

usage: check_page.py BUILD PAGE [COMPLAINTS]

Every code block says after its fence what it is, and is checked accordingly; there is no block that
is not checked.

- ```cpp FILE or ```c FILE: lines that stand together in FILE, which the build or scripts/test_consumers.sh
  compiles.
- ```text PROGRAM: lines that PROGRAM, an example, prints one after the other.
- ```console: lines that begin with "$ " are commands, continued in lines that begin with "> ", and
  what follows is all that they print. They run one after the other in one scratch folder, in which
  data/ is that of the project. What they write below docs/ must be what is kept there.
- ```console SOURCE: the same with packages from npm or Debian, SOURCE being "npm" or "apt-get". Where that does not
  answer, these blocks are not run, which is said.
- ```cmake FOLDER: lines that stand together in the CMakeLists.txt of FOLDER, which the build or
  scripts/test_consumers.sh configures.
- ```bash FILE, ```yaml FILE: lines that stand together in FILE, an example that a test runs.
- ```json: a catalogue that loads.
- ```python: lines of a session at the prompt. They parse; scripts/python.sh runs those of a page one after the other.
- ```sh: commands whose programs, files, presets and tests are there. They are not run.

In what is printed, "..." on a line of its own stands for lines that are left out. Outside of
blocks, links must lead somewhere, and what reads as a file of the project or as a command of ctest
must name files and tests that are there.

Given a file of complaints, the check is passed when it has exactly these. The exit status is 77 when nothing is at
fault, but some blocks were not run.
"""

import doctest
import pathlib
import re
import sys
import tempfile

from blocks import is_part, matches, read_blocks
from project import Project, anchors
from scratch import Scratch

COMPILED = ("examples/", "tests/consumer/")
# What shows that packages can be had.
PROBES = {"npm": "npm view --fetch-retries=0 --fetch-timeout=30000 vue@3.4.1 version",
          "apt-get": "apt-get -qq download postgresql-15-cron"}
NOT_RUN = 77
FILE_NAME = re.compile(r"[\w./*-]+\.(?:c|cmake|cpp|h|hpp|json|js|md|mjs|py|sh|svg|txt)|[\w./-]+/")
OTHER_BLOCK = re.compile(r"(?<=\n\n)(?: {4}|\t)|<pre")
REFERENCE = re.compile(r"\]\((?P<link>[^)]*)\)|`(?P<code>[^`]+)`")


class PageCheck:
    """The checks of one page; each yields complaints."""

    def __init__(self, page_file, project, scratch):
        self.page_file = page_file
        self.page = page_file.read_text(encoding="utf-8")
        self.project = project
        self.scratch = scratch
        self.not_run = []

    def run(self):
        """All complaints, with their lines."""
        blocks, prose = read_blocks(self.page)
        for block in blocks:
            for complaint in self.check_block(block):
                yield f"line {block.line}: {complaint}"
        for other in OTHER_BLOCK.finditer(prose):
            yield f"line {line_of(other, prose)}: nothing checks a block without a fence"
        for reference in REFERENCE.finditer(prose):
            for complaint in self.check_reference(reference):
                yield f"line {line_of(reference, prose)}: {complaint}"
        yield from self.check_written()

    def check_block(self, block):
        """What a block shows."""
        checks = {"bash": self.check_cpp, "c": self.check_cpp, "cmake": self.check_cmake, "console": self.check_console,
                  "cpp": self.check_cpp, "json": self.check_json, "python": self.check_python, "sh": self.check_sh,
                  "text": self.check_text, "yaml": self.check_cpp}
        if block.kind in checks:
            yield from checks[block.kind](block)
        else:
            yield f"nothing checks a block of kind \"{block.kind}\""

    def check_cpp(self, block):
        """A part of a file that is compiled or run."""
        yield from self.check_part(block, block.subject)

    def check_cmake(self, block):
        """A part of a project that is configured."""
        yield from self.check_part(block, block.subject + "/CMakeLists.txt")

    def check_part(self, block, name):
        """A part of a file of the compiled folders."""
        file = self.project.folder / name
        if not name.startswith(COMPILED) or not file.is_file():
            yield f"the block is to be a part of \"{name}\", which is not compiled"
        elif not is_part(block.lines, file.read_text(encoding="utf-8").splitlines()):
            yield f"{name} does not contain:\n{block.text}"

    def check_text(self, block):
        """Lines that an example prints."""
        if not {f"{block.subject}.cpp", f"{block.subject}.c"} & self.project.files:
            yield f"the block is to be printed by \"{block.subject}\", which is no example"
            return
        printed, status = self.scratch.run([self.project.build / block.subject])
        if status != 0 or not matches(["...", *block.lines, "..."], f"\n{printed}\n"):
            yield f"{block.subject} ends with status {status} and prints:\n{printed}"

    def check_console(self, block):
        """Commands and all they print."""
        if not block.lines or not block.lines[0].startswith("$ "):
            yield "the block does not begin with a command"
            return
        if block.subject and block.subject not in PROBES:
            yield f"packages come from {' or '.join(PROBES)}, not from \"{block.subject}\""
            return
        if block.subject and not self.scratch.answers(PROBES[block.subject]):
            self.not_run.append(f"line {block.line}: not run, for {block.subject} does not answer")
            return
        for command, shown in commands_of(block.lines):
            printed = self.scratch.run_command(command)
            if not matches(shown, printed):
                yield f"$ {command}\nprints:\n{printed}"

    def check_json(self, block):
        """A catalogue that loads."""
        file = self.scratch.folder / "block.json"
        file.write_text(block.text, encoding="utf-8")
        printed, status = self.scratch.run(
            [self.scratch.evopath, "check", file.name, "--severity", "error"])
        if status == 2:
            yield printed

    def check_python(self, block):
        """A session that parses."""
        try:
            if not doctest.DocTestParser().get_examples(block.text):
                yield "the block has no line that begins with >>>"
        except ValueError as error:
            yield str(error)

    def check_sh(self, block):
        """Commands that could run."""
        for line in re.sub(r" *\\\n *", " ", block.text).splitlines():
            for command in re.split(r"&&|[;|]", re.sub(r"(^|\s)#.*", "", line)):
                if command.strip():
                    yield from self.check_command(command.strip())

    def check_command(self, command):
        """Whether the program, files, presets and tests that a command names are there."""
        words = re.sub(r"^(\w+=\S+ )+", "", command).split()
        if "/" not in words[0] and self.scratch.run(["bash", "-c", f"type {words[0]}"])[1] != 0:
            yield f"there is no program {words[0]}"
        for before, word in zip(["", *words], words):
            if FILE_NAME.fullmatch(word) or word.startswith("build/"):
                if not self.project.has(word):
                    yield f"there is no {word}"
            if before == "--preset" and word not in self.project.presets:
                yield f"there is no preset {word}"
        if words[0] == "ctest" and not self.project.finds_tests(command):
            yield f"no test is selected by: {command}"

    def check_reference(self, reference):
        """A link, or a piece of code that may name something."""
        if reference["link"] is not None:
            yield from self.check_link(reference["link"])
            return
        code = reference["code"].replace("\n", " ")
        if code.startswith(("ctest ", "scripts/")):
            yield from self.check_command(code)
        elif FILE_NAME.fullmatch(code) and not self.project.has(code):
            yield f"there is no {code}"

    def check_link(self, target):
        """Whether a link leads somewhere."""
        file, _, anchor = target.partition("#")
        path = (self.page_file.parent / file).resolve() if file else self.page_file
        if "://" in target:
            return
        if not path.exists():
            yield f"there is no {target}"
        elif anchor and anchor not in anchors(path.read_text(encoding="utf-8")):
            yield f"there is no heading {target}"
        elif path.suffix == ".svg":
            yield from self.check_picture(target, path.read_text(encoding="utf-8"))

    def check_picture(self, target, picture):
        """A picture is what a command writes, or drawn by hand and names files that are there."""
        if target in self.scratch.written():
            return
        if "drawn by hand" not in picture:
            yield f"no command of the page writes {target}"
        shown = re.sub(r"<style>.*?</style>|<[^>]*>", " ", picture, flags=re.DOTALL)
        for word in shown.split():
            if FILE_NAME.fullmatch(word) and not self.project.has(word):
                yield f"{target} shows {word}, which is not there"

    def check_written(self):
        """What commands write below docs/ is what is kept."""
        for name, written in self.scratch.written().items():
            kept = self.project.folder / "docs" / name
            if not kept.is_file() or kept.read_bytes() != written.read_bytes():
                yield f"docs/{name} is not what the commands write"


def line_of(match, text):
    """The number of the line in which a match begins."""
    return text.count("\n", 0, match.start()) + 1


def commands_of(lines):
    """The commands of a console block with the lines that follow them."""
    lines = list(lines)
    while lines:
        command = lines.pop(0)[2:]
        while lines and lines[0].startswith("> "):
            command += "\n" + lines.pop(0)[2:]
        shown = []
        while lines and not lines[0].startswith("$ "):
            shown.append(lines.pop(0))
        yield command, shown


def main():
    """Checks the page and prints every complaint."""
    build, page_file, *expected = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
    project = Project(pathlib.Path(__file__).resolve().parents[2], build)
    with tempfile.TemporaryDirectory() as folder:
        scratch = Scratch(folder, project.folder, build)
        check = PageCheck(page_file, project, scratch)
        complaints = "".join(complaint.rstrip("\n") + "\n" for complaint in check.run())
    print(complaints or f"{page_file.name}: all is as shown\n", end="")
    print("".join(line + "\n" for line in check.not_run), end="")
    if complaints != (expected[0].read_text(encoding="utf-8") if expected else ""):
        sys.exit(1)
    sys.exit(NOT_RUN if check.not_run else 0)


if __name__ == "__main__":
    main()
