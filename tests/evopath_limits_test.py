"""Runs evopath with questions that take too long, and with output that cannot be written.

usage: evopath_limits_test.py EVOPATH
"""

import json
import os
import pathlib
import pty
import signal
import subprocess
import sys
import tempfile
import unittest

PROGRAM = pathlib.Path(sys.argv[1]).resolve()


def crowd(guests, way_round=False):
    """A catalogue in which guests move together over a version at which each needs a room of its
    own, and a room is missing: there is no path, but to prove that takes for ever. Beside them, "A"
    moves, and "X" has no hop. With a way round, each guest can do without a room, which is expensive: so there
    are paths, but which is the least takes for ever."""
    def metamodel(name, version, **needs):
        dependencies = [{"name": key, "range": value} for key, value in needs.items()]
        return {"name": name, "version": f"{version}.0.0", "dependencies": dependencies}

    rooms, everyone = range(1, guests), range(1, guests + 1)
    metamodels = [metamodel(name, k) for name in "ACX" for k in (1, 2, 3)]
    metamodels += [metamodel(f"Room{r}", g) for r in rooms for g in everyone]
    metamodels += [metamodel(f"Key{g}", r, **{f"Room{r}": f"{g}.0.0"}) for g in everyone for r in rooms]
    for g in everyone:
        keys = {f"Key{g}": ["1.0.0", f"{guests}.0.0"]}
        metamodels += [metamodel(f"G{g}", k, C=f"{k}.0.0", **(keys if k == 2 else {})) for k in (1, 2, 3)]
    hops = [{"name": name, "from": f"{k}.0.0", "to": f"{k + 1}.0.0", "expensive": False}
            for name in ["A", "C"] + [f"G{g}" for g in everyone] for k in (1, 2)]
    if way_round:
        metamodels += [{**metamodel(f"G{g}", 2, C="2.0.0"), "version": "2.5.0"} for g in everyone]
        hops += [{"name": f"G{g}", "from": start, "to": end, "expensive": end == "2.5.0"}
                 for g in everyone for start, end in (("1.0.0", "2.5.0"), ("2.5.0", "3.0.0"))]
    return {"metamodels": metamodels, "hops": hops}


def versions(names, version):
    return ",".join(f"{name}={version}.0.0" for name in names)


GUESTS = [f"G{g}" for g in range(1, 13)]
# Whether there is a path stays open; that there is none is known at once, but not how near one gets.
OPEN = ["--from", versions(GUESTS, 1), "--to", versions(GUESTS, 3)]
BLOCKED = ["--from", versions(GUESTS + ["A", "X"], 1), "--to", versions(GUESTS + ["A", "X"], 3)]


class Limits(unittest.TestCase):
    """What ends a search or an explanation, and how it is told."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        (self.folder / "crowd.json").write_text(json.dumps(crowd(12)), encoding="utf-8")

    def run_evopath(self, *arguments, **options):
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, check=False, timeout=250,
                              stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, encoding="utf-8",
                              **{"stdout": subprocess.PIPE, **options})

    def test_a_limit_is_no_absence(self):
        for command in ("path", "explain"):
            for limit in (["--timeout", "1.5"], ["--timeout", "0"], ["--memory", "100K"]):
                done = self.run_evopath(command, "crowd.json", *OPEN, *limit)
                self.assertEqual((done.returncode, done.stdout), (3, ""), limit)
                self.assertRegex(done.stderr, r"\Aevopath: The search .* No path weighs less than \d+\.")
        for option, value in [("--timeout", value) for value in ("-1", "nan", "inf", "1s", "", "1e10")] + [
                ("--memory", value) for value in ("-1", "5X", "99999999999T", "M", "")]:
            done = self.run_evopath("path", "crowd.json", *OPEN, option, value)
            self.assertEqual(done.returncode, 2, value)
            self.assertIn(f"{option} {value}: must be a number", done.stderr)

    def test_an_absence_is_told_at_once_or_explained_in_time(self):
        bare = ["path", "crowd.json", *BLOCKED, "--no-explain"]
        self.assertEqual(self.run_evopath(*bare).stdout, "No path.\n")
        self.assertIs(json.loads(self.run_evopath(*bare, "--json").stdout)["found"], False)
        for command in ("path", "explain"):
            done = self.run_evopath(command, "crowd.json", *BLOCKED, "--timeout", "4", "--output", "why")
            self.assertEqual((done.returncode, done.stdout, done.stderr), (1, "", ""))
            text = (self.folder / "why").read_text(encoding="utf-8")
            self.assertIn("No path: no hops lead to X 3.0.0.", text)
            self.assertIn("1 of 14 metamodels at the version asked for (the best found before the "
                          "time was up):\n  A    3.0.0\n", text)
            self.assertTrue(text.endswith("The explanation is not finished: the time was up.\n"))
        done = self.run_evopath("explain", "crowd.json", *BLOCKED, "--timeout", "4", "--json")
        self.assertEqual((done.returncode, json.loads(done.stdout)["stopped"]), (1, "time"))

    def test_signals_end_with_what_is_known(self):
        question = {side: dict.fromkeys([*GUESTS, "A"], version) for side, version in (("from", "1.0"), ("to", "3.0"))}
        (self.folder / "open").write_text(json.dumps(question), encoding="utf-8")
        for ending in (signal.SIGINT, signal.SIGTERM):
            for arguments, doing, answer, first, said in [
                    (["path", *OPEN], "Searching, 1 s", b"", "evopath", "No path weighs less than"),
                    (["path", *BLOCKED], "Explaining, 1 s", b"", "No path", "evopath: interrupted"),
                    (["diff", "--without", "A=2.0", "--questions", "open"], "Comparing, 1 s, 0 of 1 questions",
                     b"Ended early: 1 question not asked.\n", "evopath", "interrupted; what was compared is written")]:
                ours, terminal = pty.openpty()
                with subprocess.Popen([PROGRAM, arguments[0], "crowd.json", *arguments[1:], "--timeout", "200"],
                                      cwd=self.folder, stdout=subprocess.PIPE, stderr=terminal) as process:
                    os.close(terminal)
                    shown = ""
                    while doing not in shown:
                        shown += os.read(ours, 1000).decode()
                    process.send_signal(ending)
                    told = process.stdout.read()
                    self.assertEqual((process.wait(), told[-len(answer):] if answer else told), (-ending, answer))
                rest = os.read(ours, 100_000).decode()
                os.close(ours)
                self.assertLessEqual(shown.count(doing.replace("1 s", "0 s")), 12)
                self.assertIn("\r\x1b[K" + first, rest)
                self.assertIn(said, rest)

    def test_the_best_path_known_is_told_on_request(self):
        (self.folder / "round.json").write_text(json.dumps(crowd(20, way_round=True)), encoding="utf-8")
        guests = [f"G{g}" for g in range(1, 21)]
        asked = ["path", "round.json", "--from", versions(guests, 1), "--to", versions(guests, 3), "--best-known"]
        done = self.run_evopath(*asked, "--json", "--timeout", "5")
        plan = json.loads(done.stdout)
        self.assertEqual((done.returncode, plan["found"]), (3, True))
        self.assertEqual(plan["weight"], sum(step["weight"] for step in plan["steps"]))
        self.assertLess(plan["leastProven"], plan["weight"])
        self.assertIn(f"a plan of {plan['weight']} is known", done.stderr)
        self.assertEqual({plan["end"][name] for name in guests}, {"3.0.0"})
        ours, terminal = pty.openpty()
        with subprocess.Popen([PROGRAM, *asked, "--timeout", "200"], cwd=self.folder,
                              stdout=subprocess.PIPE, stderr=terminal) as process:
            os.close(terminal)
            shown = ""
            while "at most" not in shown:
                shown += os.read(ours, 1000).decode()
            process.send_signal(signal.SIGINT)
            self.assertRegex(process.stdout.read().decode(), r"not proven least: no path weighs less than \d+\n")
            self.assertEqual(process.wait(), -signal.SIGINT)
        os.close(ours)
        unfit = self.run_evopath(*asked, "--via", "C=2.0.0")
        self.assertEqual((unfit.returncode, unfit.stderr),
                         (2, "evopath: --best-known: not for a path under conditions\n"))

    @unittest.skipUnless(os.path.exists("/dev/full"), "there is no full device")
    def test_an_answer_that_cannot_be_written_is_no_success(self):
        (self.folder / "more.json").write_text(
            '{"metamodels": [{"name": "B", "version": "1.0", "dependencies": []}], "hops": []}')
        for arguments in (["--help"], ["path", "--help"], ["check", "crowd.json"],
                          ["explain", "crowd.json", "--from", "A=1.0", "--to", "X=3.0"],
                          ["import", "crowd.json", "crowd.store"], ["add", "crowd.store", "more.json"],
                          ["remove", "crowd.store", "B"], ["export", "crowd.store", "again.json"]):
            with open("/dev/full", "w", encoding="utf-8") as full:
                done = self.run_evopath(*arguments, stdout=full)
            self.assertEqual((done.returncode, done.stderr),
                             (2, "evopath: standard output: cannot be written: No space left on device\n"),
                             arguments)
        self.run_evopath("check", "crowd.json", "--output", "findings")
        self.assertEqual((self.folder / "findings").read_text(encoding="utf-8"),
                         self.run_evopath("check", "crowd.json").stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
