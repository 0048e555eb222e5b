"""Answers batches of questions, and holds answers against the schema and against asking one by one.

usage: evopath_batch_test.py EVOPATH DATA EXAMPLES
"""

import itertools
import json
import math
import os
import pathlib
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

import jsonschema
import yaml

PROGRAM, DATA, EXAMPLES = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
SCHEMA = json.loads((DATA / "plan.schema.json").read_text(encoding="utf-8"))
SEED = int(os.environ.get("TARN_RANDOM_SEED", random.randrange(1 << 32)))


def heads():
    """Random questions about the versions of the operators, hostile lines among them, for each of which it is said
    whether it can be asked."""
    print(f"TARN_RANDOM_SEED={SEED}")
    chance = random.Random(SEED)
    versions = {}
    for each in json.loads((DATA / "operators.json").read_text(encoding="utf-8"))["metamodels"]:
        versions.setdefault(each["name"], []).append(each["version"])
    lines = []
    for _ in range(60):
        names = chance.sample(sorted(versions), chance.randint(1, 2))
        question = {side: {name: chance.choice(versions[name]) for name in names} for side in ("from", "to")}
        lines.append((json.dumps(question), True))
    for hostile in ("", "{", "[]", "{}", '{"from": {}, "to": 1}', '{"from": {"x": "1"}, "to": {"x": "2"}}',
                    '{"from": {}, "to": {}}, "hops": [3]', "\"\u00e4\U0001f600\"", "{}}", "null", " \t"):
        lines.insert(chance.randrange(len(lines)), (hostile, False))
    return lines


def write_catalogue(file, versions, hops):
    """`versions` are how many each name has; hops are names and two of these."""
    file.write_text(json.dumps({
        "metamodels": [{"name": name, "version": f"{number}.0.0", "dependencies": []}
                       for name, count in versions.items() for number in range(1, count + 1)],
        "hops": [{"name": name, "from": f"{source}.0.0", "to": f"{target}.0.0", "expensive": False}
                 for name, source, target in hops]}), encoding="utf-8")


def chain_ways(hops):
    """From each tail to each head of a set of versions, by the sets, of which the one that begins last comes first."""
    newer = [(source, target) for source, target in hops if source < target]
    sets = [{number} for number in {number for hop in newer for number in hop}]
    for hop in newer:
        held = [each for each in sets if each & {*hop}]
        sets = [each for each in sets if each not in held] + [set().union(*held)]
    lefts, entered = ({hop[side] for hop in newer} for side in (0, 1))
    return [(tail, head) for each in sorted(sets, key=min, reverse=True)
            for head in sorted(each - lefts, reverse=True) for tail in sorted(each - entered)]


class Batch(unittest.TestCase):
    """What batches answer, and how they are divided and resumed."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        self.lines = heads()
        (self.folder / "q.jsonl").write_text("".join(line + "\n" for line, _ in self.lines), encoding="utf-8")
        self.evopath("import", DATA / "operators.json", "operators.store")

    def evopath(self, *arguments, **options):
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, check=False, encoding="utf-8", timeout=250,
                              **{"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, **options})

    def batch(self, *arguments, catalogue="operators.store"):
        return self.evopath("batch", catalogue, "q.jsonl", *arguments)

    def test_answers_are_those_of_asking_one_by_one(self):
        validator = jsonschema.Draft202012Validator(SCHEMA)
        jsonschema.Draft202012Validator.check_schema(SCHEMA)
        done = self.batch("--jobs", "4")
        self.assertEqual(done.returncode, 2)
        answers = [json.loads(line) for line in done.stdout.splitlines()]
        first = next(answer for answer in answers if "error" in answer)
        self.assertIn(f"evopath: line {first['line']}: {first['error'][:20]}", done.stderr)
        asked = [number for number, (line, _) in enumerate(self.lines, 1) if line.strip()]
        self.assertEqual([answer["line"] for answer in answers], asked)
        found = absent = 0
        for answer in answers:
            validator.validate(answer)
            text, is_question = self.lines[answer["line"] - 1]
            self.assertEqual("error" in answer, not is_question, text)
            if not is_question:
                continue
            question = json.loads(text)
            for side in ("from", "to"):
                (self.folder / f"{side}.json").write_text(json.dumps(question[side]), encoding="utf-8")
            single = self.evopath("path", "operators.store", "--from", "@from.json", "--to", "@to.json", "--json",
                                  "--no-explain")
            plan = json.loads(single.stdout)
            validator.validate(plan)
            self.assertEqual({**plan, "line": answer["line"]}, answer)
            found += answer["found"]
            absent += not answer["found"]
        self.assertGreater(min(found, absent), 0)
        for jobs, catalogue in [("1", "operators.store"), ("3", DATA / "operators.json")]:
            self.assertEqual(self.batch("--jobs", jobs, catalogue=catalogue).stdout, done.stdout)
        for wrong in ({"form": 2, "found": False, "question": {"from": {}, "to": {}}}, {"form": 1},
                      {**answers[asked.index(answer["line"])], "found": "yes"}):
            self.assertFalse(validator.is_valid(wrong))

    def test_parts_and_resumption_lose_nothing(self):
        whole = self.batch().stdout.splitlines(keepends=True)
        parts = [self.batch("--part", f"{part}/3").stdout.splitlines(keepends=True) for part in (1, 2, 3)]
        self.assertEqual([parts[place % 3][place // 3] for place in range(len(whole))], whole)
        self.assertEqual(sum(map(len, parts)), len(whole))
        text = "".join(whole)
        output = self.folder / "answers"
        for kept in (0, 1, len(whole[0]), len(whole[0]) + 1, len(text) // 2, len(text) - 1, len(text)):
            output.write_bytes(text.encode()[:kept])
            self.batch("--output", "answers", "--resume")
            self.assertEqual(output.read_text(encoding="utf-8"), text, kept)
        self.assertIn("answers: exists; --resume goes on with it", self.batch("--output", "answers").stderr)
        done = self.batch("--output", "answers", "--resume", "--part", "2/3")
        self.assertIn("answers: line 1 does not answer the question that it should", done.stderr)
        self.assertEqual(output.read_text(encoding="utf-8"), text)
        for part in ("0/3", "4/3", "1", "a/b", "1/0", "-1/3"):
            self.assertIn(f"--part {part}: must be", self.batch("--part", part).stderr)

    def test_heads_of_texts_older_than_all_versions(self):
        versions = [{"name": "A", "version": version, "dependencies": []} for version in ("p", "2.0.0", "o")]
        hops = [{"name": "A", "from": source, "to": target, "expensive": False}
                for source, target in (("o", "p"), ("p", "2.0.0"))]
        (self.folder / "texts.json").write_text(json.dumps({"metamodels": versions, "hops": hops}), encoding="utf-8")
        done = self.evopath("batch", "texts.json", "--heads")
        self.assertEqual([json.loads(line)["question"] for line in done.stdout.splitlines()],
                         [{"from": {"A": "o"}, "to": {"A": "2.0.0"}}])
        done = self.evopath("diff", "texts.json", "--without", "A=p")
        self.assertIn("1 lost", done.stdout)

    def test_heads_and_what_cannot_be_linked(self):
        versions = [{"name": name, "version": f"{number}.0.0", "dependencies": needs}
                    for name, number, needs in [("A", 1, []), ("A", 2, [{"name": "B", "range": "7.0.0"}]), ("A", 3, []),
                                                ("B", 1, []), ("B", 2, []), ("B", 3, []), ("B", 4, []), ("B", 9, [])]]
        hops = [("A", 1, 2), ("A", 2, 3), ("B", 1, 3), ("B", 2, 3), ("B", 3, 4), ("B", 3, 9), ("B", 9, 3)]
        (self.folder / "small.json").write_text(json.dumps({"metamodels": versions, "hops": [
            {"name": name, "from": f"{source}.0.0", "to": f"{target}.0.0", "expensive": False}
            for name, source, target in hops]}), encoding="utf-8")
        self.evopath("import", "small.json", "small.store")
        heads = [{"from": {"A": "1.0.0"}, "to": {"A": "3.0.0"}}] + [
            {"from": {"B": source}, "to": {"B": target}}
            for target in ("9.0.0", "4.0.0") for source in ("1.0.0", "2.0.0")]
        (self.folder / "heads").write_text("".join(json.dumps(each) + "\n" for each in heads), encoding="utf-8")
        for catalogue in ("small.json", "small.store"):
            done = self.evopath("batch", catalogue, "--heads")
            self.assertEqual(done.stdout, self.evopath("batch", catalogue, "heads").stdout)
            self.assertEqual((done.returncode, json.loads(done.stdout.splitlines()[0])["error"]),
                             (2, "hops lead to A 2.0.0, which cannot be linked"))
            self.assertIn("4 found, 0 without a path, 0 open, 1 that cannot be asked\n"
                          "evopath: line 1: hops lead to A 2.0.0, which cannot be linked\n", done.stderr)
            done = self.evopath("batch", catalogue, "--heads", "--of", "B", "--timeout", "0")
            self.assertEqual([json.loads(line).get("question") for line in done.stdout.splitlines()], heads[1:])
        done = self.evopath("batch", "small.json", "-", input='{"from": {"A": "2.0"}, "to": {"A": "3.0"}}')
        self.assertIn('"error":"A 2.0.0 cannot be linked"', done.stdout)
        for arguments, message in [((), "takes a file of questions, or --heads"),
                                   (("heads", "--heads"), "takes a file of questions, or --heads"),
                                   (("heads", "--of", "A"), "--of requires --heads"),
                                   (("--heads", "--together"), "--together requires --of"),
                                   (("--heads", "--of", "C"), 'no metamodel "C"; did you mean A or B?')]:
            done = self.evopath("batch", "small.json", *arguments)
            self.assertEqual(done.returncode, 2)
            self.assertIn(message, done.stderr)

    def test_heads_of_metamodels_that_move_together(self):
        chance = random.Random(SEED)
        met = set()
        for case in range(60):
            versions = {name: chance.randint(2, 9) for name in "ABCD"}
            hops = [(name, *chance.sample(range(1, count + 1), 2)) for name, count in versions.items()
                    for _ in range(chance.randint(1, 9))]
            hops = sorted({*hops}, key=hops.index)
            write_catalogue(self.folder / "c.json", versions, hops)
            ways = {name: chain_ways([hop[1:] for hop in hops if hop[0] == name]) for name in versions}
            names = chance.sample(sorted(ways), chance.randint(1, 4))
            done = self.evopath("batch", "c.json", "--heads", "--together", "--of", ",".join(names), "--timeout", "0")
            rigid = [f'"{name}"' for name in sorted(names) if not ways[name]]
            count = math.prod(len(ways[name]) for name in names)
            met.add(bool(rigid))
            with self.subTest(case=case, names=names, hops=hops):
                if rigid:
                    told = " or ".join(filter(None, [", ".join(rigid[:-1]), rigid[-1]]))
                    self.assertEqual((done.returncode, done.stdout), (2, ""))
                    self.assertIn(f"cannot move together: no hop leads to a newer version of {told}\n", done.stderr)
                    continue
                slowest_first = sorted(names, reverse=True)
                expected = [{side: {name: f"{way[place]}.0.0" for name, way in zip(slowest_first, chosen)}
                             for place, side in enumerate(("from", "to"))}
                            for chosen in itertools.product(*(ways[name] for name in slowest_first))]
                self.assertEqual([json.loads(line)["question"] for line in done.stdout.splitlines()], expected[:256])
                self.assertEqual("left out" in done.stderr, count > 256)
        self.assertEqual(met, {False, True})

    def test_heads_that_are_left_out_are_counted(self):
        names = [f"n{number:02}" for number in range(17)]
        write_catalogue(self.folder / "c.json", {name: 18 for name in names}, [
            (name, tail, 18) for name in names for tail in range(1, 18)])
        for count, told in [(1, None), (2, "33 questions"), (15, "2862423051509815537 questions"),
                            (16, "more than 18446744073709551614 questions"),
                            (17, "more than 18446744073709551614 questions")]:
            done = self.evopath("batch", "c.json", "--heads", "--together", "--of", ",".join(names[:count]),
                                "--timeout", "0")
            asked = [json.loads(line)["question"]["from"] for line in done.stdout.splitlines()]
            self.assertEqual(asked, [{name: f"{number // 17 ** place % 17 + 1}.0.0" for place, name in enumerate(names)
                                      if place < count} for number in range(min(17 ** count, 256))])
            note = f"evopath: {told} left out; of metamodels together at most 256 are asked\n" if told else ""
            self.assertEqual("".join(re.findall(".* left out; .*\n", done.stderr)), note)
        done = self.evopath("batch", "c.json", "--heads", "--of", names[0], "--timeout", "0")
        self.assertIn("evopath: 1 question left out; of one chain at most 16 are asked\n", done.stderr)
        done = self.evopath("diff", "c.json", "c.json")
        self.assertIn("evopath: 17 questions left out; of one chain at most 16 are asked\n", done.stderr)

    def test_limits_and_signals(self):
        done = self.batch("--timeout", "0")
        self.assertEqual(done.returncode, 2)  # some could not be asked
        stopped = [json.loads(line) for line in done.stdout.splitlines()]
        self.assertIn("time", [answer.get("open") for answer in stopped])
        (self.folder / "endless").write_text(200_000 * (self.lines[-1][0] + "\n"), encoding="utf-8")
        with subprocess.Popen([PROGRAM, "batch", "operators.store", "endless", "--output", "a"], cwd=self.folder,
                              stderr=subprocess.PIPE) as process:
            while not (self.folder / "a").exists() or (self.folder / "a").stat().st_size < 5_000:
                self.assertIsNone(process.poll())
            process.send_signal(signal.SIGTERM)
            self.assertEqual(process.wait(), -signal.SIGTERM)
            self.assertIn(b"interrupted", process.stderr.read())
        lines = (self.folder / "a").read_text(encoding="utf-8")
        self.assertTrue(lines.endswith("}\n"))
        self.assertEqual([json.loads(line)["line"] for line in lines.splitlines()],
                         list(range(1, lines.count("\n") + 1)))

    @unittest.skipUnless(shutil.which("parallel"), "GNU parallel is not installed")
    def test_gnu_parallel_runs_the_parts(self):
        line = f"parallel --will-cite -j2 -k '{PROGRAM}' batch operators.store q.jsonl --jobs 1 --part {{}}/3 ::: 1 2 3"
        done = subprocess.run(["bash", "-c", line], cwd=self.folder, check=False, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, encoding="utf-8", timeout=250)
        answers = sorted(done.stdout.splitlines(keepends=True), key=lambda answer: json.loads(answer)["line"])
        self.assertEqual("".join(answers), self.batch().stdout)

    def expect_shared(self, command, variables):
        """Runs a command as each of 16 tasks does, one of them a second time; what all answer is the whole."""
        shutil.copy(self.folder / "q.jsonl", self.folder / "questions.jsonl")
        for task in [*range(16), 3]:
            environment = {**os.environ, **variables(task), "PATH": f"{PROGRAM.parent}{os.pathsep}{os.environ['PATH']}"}
            subprocess.run(command, cwd=self.folder, check=False, env=environment, stderr=subprocess.DEVNULL,
                           timeout=250)
        files = list(self.folder.glob("answers.*.jsonl"))
        self.assertEqual(len(files), 16)
        answers = [line for file in files for line in file.read_text(encoding="utf-8").splitlines(keepends=True)]
        answers.sort(key=lambda answer: json.loads(answer)["line"])
        self.assertEqual("".join(answers), self.batch().stdout)

    def test_an_array_of_jobs_shares_the_work(self):
        self.expect_shared(["bash", EXAMPLES / "array.slurm"],
                           lambda task: {"SLURM_CPUS_PER_TASK": "4", "SLURM_ARRAY_TASK_COUNT": "16",
                                         "SLURM_ARRAY_TASK_ID": str(task + 1)})

    def test_an_indexed_job_shares_the_work(self):
        job = yaml.safe_load((EXAMPLES / "indexed_job.yaml").read_text(encoding="utf-8"))["spec"]
        self.assertEqual((job["completionMode"], job["completions"]), ("Indexed", 16))
        container = job["template"]["spec"]["containers"][0]
        command = [*container["command"], container["args"][0].replace("/data/", f"{self.folder}/")]
        self.expect_shared(command, lambda task: {"JOB_COMPLETION_INDEX": str(task)})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
