"""Runs evopath with pipes, terminals and little memory: whatever a shell puts in the place of files.

usage: evopath_streams_test.py EVOPATH
"""

import fcntl
import json
import os
import pathlib
import pty
import resource
import signal
import stat
import struct
import subprocess
import sys
import tempfile
import termios
import threading
import unittest

PROGRAM = pathlib.Path(sys.argv[1]).resolve()


def metamodel(name, version, **needs):
    dependencies = [{"name": key, "range": value} for key, value in needs.items()]
    return {"name": name, "version": version, "dependencies": dependencies}


def hop(name, source, target):
    return {"name": name, "from": source, "to": target, "expensive": False}


SMALL = {"metamodels": [metamodel("A", "1.0.0"), metamodel("A", "2.0.0"), metamodel("B", "1.0.0", A="1.0.0")],
         "hops": [hop("A", "1.0.0", "2.0.0")], "question": {"from": {"A": "1.0.0"}, "to": {"A": "2.0.0"}}}
MORE = {"metamodels": [metamodel("C", "1.0.0")], "hops": []}
PATH = "Start\n  A  1.0.0\nStep 1, weight 2\n  A  1.0.0 -> 2.0.0\n1 step, weight 2\n"


def least_memory():
    resource.setrlimit(resource.RLIMIT_AS, (400_000_000, 400_000_000))


def runs_within_least_memory():
    """Not so when it is built with sanitizers, which reserve more."""
    return subprocess.run([PROGRAM, "--version"], check=False, capture_output=True,
                          preexec_fn=least_memory).returncode == 0


class Streams(unittest.TestCase):
    """Each test has a folder with small.json, more.json and small.store."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        self.write("small.json", SMALL)
        self.write("more.json", MORE)
        self.run_evopath("import", "small.json", "small.store")

    def write(self, name, content):
        (self.folder / name).write_text(json.dumps(content), encoding="utf-8")

    def run_evopath(self, *arguments, **options):
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, check=False, timeout=250, encoding="utf-8",
                              **{"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE,
                                 "stderr": subprocess.PIPE, **options})

    def shell(self, line):
        """What a line for bash writes, both streams as one."""
        done = subprocess.run(["bash", "-c", line.replace("evopath", f"'{PROGRAM}'")], cwd=self.folder, check=False,
                              timeout=250, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8")
        return done.stdout

    def test_json_is_read_from_whatever_a_shell_offers(self):
        for catalogue in ("- <small.json", "/dev/stdin <small.json", "<(cat small.json)", "- < <(cat small.json)"):
            self.assertEqual(self.shell(f"evopath path --question {catalogue}"), PATH, catalogue)
            self.assertIn("0 errors", self.shell(f"evopath check {catalogue}"), catalogue)
        self.assertEqual(self.shell("cat small.json | evopath path small.store --from @- --to @small.json"), PATH)
        self.assertEqual(self.shell("evopath path small.json --from @<(cat small.json) --to @<(cat small.json)"), PATH)
        self.assertIn("A  2.0.0", self.shell("""evopath show small.json --at @<(echo '{"A": "2.0.0"}')"""))
        self.assertEqual(self.shell("cat small.json | evopath import - new.store"),
                         "Imported 3 versions of metamodels and 1 hop.\n")
        self.assertEqual(self.shell("evopath add new.store <(cat more.json); evopath path new.store --question"),
                         "Added 1 version of a metamodel and 0 hops.\n" + PATH)
        self.assertEqual(self.shell("""printf 'name,version\\nA,1.0\\n' | evopath import --from table - t.json"""),
                         "Imported 1 version of a metamodel and 0 hops.\n")

    def test_what_cannot_be_read_from_a_pipe_is_told(self):
        pipe = "is a SQLite database that comes through a pipe; a store is opened by the name of its file\n"
        for line, said in [
                ("evopath show <(cat small.store)", pipe),
                ("cat small.store | evopath check -", "evopath: /dev/stdin: " + pipe),
                ("evopath import <(cat small.store) x.store", pipe),
                ("evopath show small.json --at @<(cat small.store)", pipe),
                ("evopath export <(cat small.store) x.json", "is no regular file; a store is opened by the name"),
                ("cat small.json | evopath path - --from @- --to A=2.0", "standard input can be read only once"),
                ("evopath import small.json -", "a catalogue is made in a file, not on standard output"),
                ("echo '[' | evopath check -", "error not-json"),
                ("printf SQL | evopath show -", "not JSON: parse error at line 1, column 1"),
                ("evopath show - </dev/null", "not JSON")]:
            self.assertIn(said, self.shell(line), line)

    def test_an_export_goes_where_it_is_sent(self):
        exported = self.shell("evopath export small.store out.json >&2; cat out.json")
        self.assertEqual(self.shell("evopath export small.store -"), exported[exported.index("{"):])
        for line in ("evopath export small.store /dev/stdout", "evopath export small.store - | cat",
                     "evopath export small.store >(cat) >/dev/null; wait; sleep 0.1",
                     "evopath export small.store /dev/stdout >f; cat f"):
            self.assertEqual(json.loads(self.shell(line)), SMALL, line)
        os.mkfifo(self.folder / "fifo")
        received = []
        reader = threading.Thread(target=lambda: received.append((self.folder / "fifo").read_text(encoding="utf-8")))
        reader.start()
        self.assertEqual(self.run_evopath("export", "small.store", "fifo").returncode, 0)
        reader.join()
        self.assertEqual(json.loads(received[0]), SMALL)
        self.assertTrue(stat.S_ISFIFO(os.stat(self.folder / "fifo").st_mode))
        self.assertEqual(self.run_evopath("export", "small.store", "/dev/null").returncode, 0)
        self.assertTrue(stat.S_ISCHR(os.stat("/dev/null").st_mode))
        for target in ("out.json", "nowhere"):
            (self.folder / "link").symlink_to(target)
            self.assertEqual(self.run_evopath("export", "small.store", "link").returncode, 0)
            self.assertEqual(json.loads((self.folder / target).read_text(encoding="utf-8")), SMALL)
            self.assertTrue((self.folder / "link").is_symlink())
            (self.folder / "link").unlink()
        if os.path.exists("/dev/full"):
            for redirection, where in [("/dev/full", "/dev/full"), ("- >/dev/full", "standard output")]:
                self.assertEqual(self.shell(f"evopath export small.store {redirection}; echo $?"),
                                 f"evopath: {where}: cannot be written: No space left on device\n2\n")

    def test_progress_keeps_to_its_line_and_ends_in_order(self):
        self.write("large.json", {"metamodels": [metamodel("A", f"{k}.0.0") for k in range(60_000)], "hops": []})
        for columns, bar in [(100, "Importing [" + 40 * "#" + "] 100 %"), (24, "Importing ["), (12, "Importing ")]:
            ours, terminal = pty.openpty()
            fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
            with subprocess.Popen([PROGRAM, "import", "large.json", "large.store"], cwd=self.folder,
                                  stdout=subprocess.DEVNULL, stderr=terminal) as process:
                os.close(terminal)
                shown = b""
                try:
                    while piece := os.read(ours, 10_000):
                        shown += piece
                except OSError:
                    pass  # the other end is closed
                self.assertEqual(process.wait(), 0)
            os.close(ours)
            lines = shown.decode().replace("\x1b[K", "").split("\r")
            self.assertLess(max(map(len, lines)), columns)
            self.assertTrue(any(bar in line for line in lines), lines[-3:])

    @unittest.skipUnless(runs_within_least_memory(), "the program is built with sanitizers")
    def test_little_memory_is_told(self):
        (self.folder / "deep.json").write_bytes(10_000_000 * b"[")
        for arguments in (["show", "deep.json"], ["check", "deep.json"], ["import", "deep.json", "deep.store"],
                          ["show", "small.json", "--at", "@deep.json"],
                          ["import", "--from", "npm", "deep.json", "d.json"]):
            done = self.run_evopath(*arguments, preexec_fn=least_memory)
            self.assertEqual(done.returncode, 2, arguments)
            self.assertNotIn("memory", done.stdout + done.stderr)
        at = "P=1.0.0,Q=1.0.0,X=1.0.0"
        open_names = "more than {} baselines; pin some of these:\n  A: 1000 choices, 1.0.0 .. 1000.0.0\n"
        self.write_wide("wide.json", "AD", 1000)
        for command in (["show", "wide.json"], ["steps", "wide.json"]):
            done = self.run_evopath(*command, "--at", at, preexec_fn=least_memory)
            self.assertEqual((done.returncode, done.stdout), (2, ""))
            self.assertIn("the versions leave " + open_names.format(1000), done.stderr)
            self.assertTrue(done.stderr.endswith("or give --prefer newest or --prefer oldest\n"), done.stderr)
        for preference, version in (("newest", "1000.0.0"), ("oldest", "1.0.0")):
            chosen = ["--prefer", preference]
            done = self.run_evopath("show", "wide.json", "--at", at, *chosen, preexec_fn=least_memory)
            self.assertIn(f"Baseline 1 of 1\n+ A  {version}\n", done.stdout)
            done = self.run_evopath("explain", "wide.json", "--from", at, "--to", "X=2.0.0", *chosen,
                                    preexec_fn=least_memory)
            self.assertIn("No path: no hops lead to X 2.0.0.", done.stdout)
        # Each of P and Q alone can be linked in a million ways.
        self.write_wide("wider.json", "ABCDEF", 100)
        for to, missing in (("X=2.0.0", "X 2.0.0"), ("X=2.0.0,Y=1.0.0", "X 2.0.0 or Y 1.0.0")):
            done = self.run_evopath("explain", "wider.json", "--from", at, "--to", to, preexec_fn=least_memory)
            self.assertIn(f"No path: no hops lead to {missing}.", done.stdout)
            self.assertEqual(done.returncode, 1)
        # Z leads back to its own name, so that only linking tells what it can stand with.
        done = self.run_evopath("explain", "wider.json", "--from", at + ",Z=1.0.0", "--to", "X=2.0.0",
                                preexec_fn=least_memory)
        self.assertEqual(done.returncode, 2)
        self.assertTrue(done.stderr.startswith(
            "evopath: out of memory\nthe versions to start from leave very many choices; pin some of these:\n"
            "  A: 100 choices, 1.0.0 .. 100.0.0\n"), done.stderr)

    @unittest.skipUnless(runs_within_least_memory(), "the program is built with sanitizers")
    def test_an_answer_is_whole_or_not_at_all(self):
        last = 2500
        self.write("long.json", {"metamodels": [metamodel("A", f"{k}.0.0") for k in range(1, last + 1)],
                                 "hops": [hop("A", f"{k}.0.0", f"{k + 1}.0.0") for k in range(1, last)]})
        line = 100_000 * "x"  # of which there is no room for so many
        done = self.run_evopath("path", "long.json", "--from", "A=1.0", "--to", f"A={last}.0", "--format", "script",
                                "--template", line, preexec_fn=least_memory)
        self.assertEqual((done.returncode, len(done.stdout)), (2, 0))
        self.assertIn("evopath: out of memory\n", done.stderr)

    def test_steps_are_told_while_others_are_sought(self):
        names = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
        self.write("all.json", {"metamodels": [metamodel(name, f"{k}.0") for name in names for k in (1, 2)],
                                "hops": [hop(name, "1.0", "2.0") for name in names]})
        at = ",".join(f"{name}=1.0" for name in names)
        for output in ("", "--output -", "--output /dev/stdout"):
            line = f"timeout 30 evopath steps all.json --at {at} --all --limit 100000000 {output} | head -n 1"
            self.assertEqual(self.shell(line), "Step 1, forward, weight 2\n", output)

    def write_wide(self, file, names, versions):
        """P and Q each need half of the names, at any version. X has no hop."""
        half = len(names) // 2
        parts = [metamodel(name, f"{k}.0.0") for name in names for k in range(1, versions + 1)]
        wide = [metamodel(name, "1.0.0", **{part: ["1.0.0", "9999.0.0"] for part in needs})
                for name, needs in (("P", names[:half]), ("Q", names[half:]))]
        others = [metamodel("X", "1.0.0"), metamodel("X", "2.0.0"), metamodel("Y", "1.0.0"),
                  metamodel("Z", "1.0.0", W=["1.0.0", "2.0.0"]), metamodel("W", "1.0.0", Z=["2.0.0", "3.0.0"]),
                  metamodel("Z", "2.0.0")]
        self.write(file, {"metamodels": parts + wide + others, "hops": []})

    def test_a_script_runs(self):
        quote = 'A "b" \'c\' $d'
        self.write("odd.json", {"metamodels": [metamodel(quote, "1.0.0"), metamodel(quote, "2 \n x", A="1.0.0"),
                                               metamodel("A", "1.0.0")],
                                "hops": [hop(quote, "1.0.0", "2 \n x")]})
        (self.folder / "from.json").write_text(json.dumps({quote: "1.0.0"}), encoding="utf-8")
        (self.folder / "to.json").write_text(json.dumps({quote: "2 \n x"}), encoding="utf-8")
        done = self.run_evopath("path", "odd.json", "--from", "@from.json", "--to", "@to.json", "--format", "script",
                                "--template", "printf '{{%s}}' {step} {name} {from} {to} {expensive}",
                                "--output", "run.sh")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(self.shell("sh run.sh"), "{1}{" + quote + "}{1.0.0}{2 \n x}{false}")
        self.assertIn("#   A enters at 1.0.0\n", (self.folder / "run.sh").read_text(encoding="utf-8"))

    def test_other_signals_leave_nothing_beside(self):
        self.write("large.json", {"metamodels": [metamodel("A", f"{k}.0.0") for k in range(200_000)], "hops": []})
        before = sorted(os.listdir(self.folder))
        with subprocess.Popen([PROGRAM, "import", "large.json", "x.store"], cwd=self.folder,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
            while ".x.store.partial" not in os.listdir(self.folder):
                self.assertIsNone(process.poll())
            process.send_signal(signal.SIGTERM)
            self.assertEqual(process.wait(), -signal.SIGTERM)
        self.assertEqual(sorted(os.listdir(self.folder)), before)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
