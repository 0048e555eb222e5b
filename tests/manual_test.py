"""Checks the manual page, the shell completions and the examples of the help texts.

usage: manual_test.py EVOPATH FOLDER DATA

FOLDER holds the generated files. What groff, zsh and fish check is left out where they are not
installed.
"""

import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, FOLDER, DATA = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
PAGES = ["evopath.1", "evopath.bash", "evopath.fish", "_evopath"]
# What is typed, and what must be offered for its last word, in a folder with data/operators.json.
COMPLETIONS = [
    ("evopath pa", ["path"]),
    ("evopath path da", ["data"]),
    ("evopath path data/op", ["data/operators.json"]),
    ("evopath path data/operators.json --fo", ["--format"]),
    ("evopath path --format ", ["dot", "html", "json", "mermaid", "script", "svg", "text"]),
    ("evopath steps x.json --direction ba", ["backward"]),
    ("evopath path --from a=1 data/op", ["data/operators.json"]),
    ("evopath path x.json --from @data/op", ["@data/operators.json"]),
    ("evopath path x.json --from a=1,@data/op", ["a=1,@data/operators.json"]),
    ("evopath check data/op", ["data/operators.json"]),
    ("evopath diff data/op", ["data/operators.json"]),
    ("evopath diff x.json data/op", ["data/operators.json"]),
    ("evopath diff data/operators.json --without dns-operator=0.6", ["dns-operator=0.6.0"]),
    ("evopath batch x.json --heads --to", ["--together"]),
    ("evopath change s.store data/ch", ["data/changed-releases.json"]),
    ("evopath remove x.store --dry", ["--dry-run"]),
    ("evopath explore data/operators.json --questions data/q", ["data/questions.jsonl"]),
    ("evopath check --severity w", ["warning"]),
    ("evopath add s.store data/op", ["data/operators.json"]),
    ("evopath import --from o", ["operators"]),
    ("evopath import --from npm a.json data/op", ["data/operators.json"]),
    ("evopath show x.json d", []),
    ("evopath show data/operators.json dns", ["dns-operator"]),
    ("evopath show data/operators.json dns-operator=0.1", ["dns-operator=0.1.0"]),
    ("evopath graph data/operators.json --format svg kuadrant", ["kuadrant-operator"]),
    ("evopath check data/operators.json --name limit", ["limitador-operator"]),
    ("evopath path data/operators.json --from dns", ["dns-operator="]),
    ("evopath path data/operators.json --from dns-operator=0.6", ["dns-operator=0.6.0"]),
    ("evopath path data/operators.json --to=@x,dns-operator=0.6", ["--to=@x,dns-operator=0.6.0"]),
    ("evopath steps data/operators.json --at dns-operator=0.6.0,kua",
     ["dns-operator=0.6.0,kuadrant-operator="]),
    ("evopath path x.json --output da", ["data"]),
]


def run(command, folder=None, **options):
    """A finished command, with its texts."""
    environment = {**os.environ, "PATH": f"{PROGRAM.parent}{os.pathsep}{os.environ['PATH']}",
                   "LC_ALL": "C.UTF-8", "XDG_CONFIG_HOME": str(folder), "HOME": str(folder)}
    return subprocess.run(command, cwd=folder, env=environment, check=False, capture_output=True,
                          encoding="utf-8", **options)


def help_texts():
    """The help of each command, by its name, in the order of the program's help."""
    commands = re.search(r"Subcommands:\n(.*?)\n\n", run([PROGRAM, "--help"]).stdout, re.DOTALL)
    names = re.findall(r"^  (\S+)", commands.group(1), re.MULTILINE)
    return {name: run([PROGRAM, name, "--help"]).stdout for name in names}


class Manual(unittest.TestCase):
    """The generated files against what the program says of itself."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        (self.folder / "data").mkdir()
        for file in DATA.glob("*.json*"):
            (self.folder / "data" / file.name).symlink_to(file)

    def offered_by(self, shell, script):
        """Compares what a shell offers with the table; `script` is told the line to complete."""
        for line, expected in COMPLETIONS:
            done = run([shell, "-c", script, shell, line], self.folder)
            words = [word.split("\t")[0].rstrip("/") for word in done.stdout.splitlines()]
            self.assertEqual((sorted(words), done.stderr), (expected, ""), f"{shell}: {line}")

    def test_every_command_and_option_is_told(self):
        texts = help_texts()
        self.assertGreaterEqual(len(texts), 10)
        for page in PAGES:
            text = (FOLDER / page).read_text(encoding="utf-8").replace("\\-", "-")
            for command, description in texts.items():
                self.assertRegex(text, rf"\b{command}\b", page)
                for option in re.findall(r"--[a-z-]+", description.split("Exit status:")[0]):
                    name = option.removeprefix("--") if page.endswith(".fish") else option
                    self.assertIn(name, text, page)

    def test_examples_work(self):
        for command, text in {"": run([PROGRAM, "--help"]).stdout, **help_texts()}.items():
            example = text.rstrip().splitlines()[-1]
            self.assertTrue(example.startswith(f"Example: evopath {command}"), text)
            done = run(shlex.split(example.removeprefix("Example: ")), self.folder)
            self.assertIn(done.returncode, (0, 1), f"{example}\n{done.stdout}{done.stderr}")

    @unittest.skipUnless(shutil.which("groff"), "groff is not installed")
    def test_page_is_clean(self):
        done = run(["groff", "-man", "-ww", "-Tutf8", "-P-cbou", FOLDER / "evopath.1"])
        self.assertEqual(done.stderr, "")
        self.assertRegex(done.stdout, r"(?s)NAME.*SYNOPSIS.*COMMANDS.*evopath remove operators")

    def test_bash_completes(self):
        # $2 is the word as readline sees it, which breaks words after an equals sign.
        self.offered_by("bash", f"""source '{FOLDER}/evopath.bash'
            COMP_LINE=$1 COMP_POINT=${{#1}}
            word=${{1##*[ =]}}; given=${{1##* }}
            _evopath evopath "$word" ""
            for reply in "${{COMPREPLY[@]}}"; do echo "${{given%"$word"}}$reply"; done""")

    @unittest.skipUnless(shutil.which("fish"), "fish is not installed")
    def test_fish_completes(self):
        self.offered_by("fish", f"source '{FOLDER}/evopath.fish'; complete -C $argv[-1]")

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_zsh_reads_it(self):
        done = run(["zsh", "-n", FOLDER / "_evopath"])
        self.assertEqual((done.returncode, done.stderr), (0, ""))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
