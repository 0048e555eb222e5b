"""Checks that a page of the documentation shows what its commands really print.

usage: console_test.py PAGE EVOPATH DATA

In every block that begins with ```console, the lines that begin with "$ " are commands, continued
in lines that begin with "> ", and the lines after a command are all it prints; "..." on a line of
its own stands for lines that are left out. The commands of a page run one after
the other in one scratch folder, in which data/ is DATA. What they write below docs/ must be what is
kept there, and the page must show no other picture of images/.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile


def read_blocks(page):
    """Yields the commands of each block with the lines that follow them."""
    for block in re.findall(r"^```console\n(.*?)^```$", page, re.MULTILINE | re.DOTALL):
        lines = block.splitlines()
        if not lines or not lines[0].startswith("$ "):
            raise SystemExit(f"a block does not begin with a command:\n{block}")
        while lines:
            command = lines.pop(0)[2:]
            while lines and lines[0].startswith("> "):
                command += "\n" + lines.pop(0)[2:]
            shown = []
            while lines and not lines[0].startswith("$ "):
                shown.append(lines.pop(0))
            yield command, shown


def matches(shown, printed):
    """Whether the lines shown stand for the lines printed."""
    pattern = "".join(
        r"(?:.*\n)+" if line == "..." else re.escape(line) + r"\n" for line in shown)
    return re.fullmatch(pattern, printed) is not None


class Session:
    """Commands that run one after the other in a scratch folder."""

    def __init__(self, folder, program, data):
        self.folder = pathlib.Path(folder)
        (self.folder / "docs" / "images").mkdir(parents=True)
        (self.folder / "data").symlink_to(data)
        path = os.pathsep.join([str(program.parent), os.environ["PATH"]])
        self.environment = {"PATH": path, "LC_ALL": "C.UTF-8", "HOME": folder}
        self.status = 0

    def run(self, command):
        """What the command prints on either stream; it finds the last exit status in $?."""
        done = subprocess.run(
            ["bash", "-c", f"(exit {self.status}); {command}"], cwd=self.folder, check=False,
            env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, encoding="utf-8")
        self.status = done.returncode
        return done.stdout

    def files(self):
        """The files below docs/ that the commands have written."""
        return sorted(file.relative_to(self.folder / "docs")
                      for file in (self.folder / "docs").rglob("*") if file.is_file())


def check_files(session, page, docs):
    """Complaints about pictures that are not what the commands of the page write."""
    written = session.files()
    for file in written:
        kept = docs / file
        if not kept.is_file() or kept.read_bytes() != (session.folder / "docs" / file).read_bytes():
            yield f"{kept} is not what the commands write"
    for shown in re.findall(r"\]\((images/[^)]*)\)", page):
        if pathlib.Path(shown) not in written:
            yield f"no command of the page writes {shown}"


def main():
    """Runs the commands of the page and prints every difference."""
    page_file, program, data = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
    page = page_file.read_text(encoding="utf-8")
    complaints = []
    with tempfile.TemporaryDirectory() as folder:
        session = Session(folder, program, data)
        commands = list(read_blocks(page))
        for command, shown in commands:
            printed = session.run(command)
            if not matches(shown, printed):
                complaints.append(f"$ {command}\nprints:\n{printed}")
        complaints += check_files(session, page, page_file.parent)
    if not commands:
        complaints.append("no command was found")
    print(f"{page_file.name}: {len(commands)} commands")
    if complaints:
        raise SystemExit("\n".join(complaints))


if __name__ == "__main__":
    main()
