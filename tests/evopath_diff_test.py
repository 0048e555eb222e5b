"""Compares random catalogues, and holds what is said against asking each of them, and against every set of differences.

usage: evopath_diff_test.py EVOPATH DATA
"""

import itertools
import json
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import unittest

import jsonschema

PROGRAM, DATA = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
SCHEMA = json.loads((DATA / "diff.schema.json").read_text(encoding="utf-8"))
SEED = int(os.environ.get("TARN_RANDOM_SEED", random.randrange(1 << 32)))
CASES = int(os.environ.get("TARN_RANDOM_CASES", 40))
NAMES = "ABC"


def random_catalogue(chance):
    """Versions by name, and hops; each name may need those before it."""
    versions, hops = {}, {}
    for place, name in enumerate(NAMES):
        for number in range(1, chance.randint(3, 4) + 1):
            needs = {NAMES[chance.randrange(place)]: random_range(chance)} if place and chance.random() < 0.6 else {}
            versions[name, number] = needs
            if number > 1:
                hops[name, number - 1, number] = chance.random() < 0.1
    return versions, hops


def random_range(chance):
    lower = chance.randint(1, 3)
    return lower, lower + chance.randint(1, 3)


def changed(chance, catalogue):
    """Another one, a few rows of which differ."""
    versions, hops = dict(catalogue[0]), dict(catalogue[1])
    for _ in range(chance.randint(1, 7)):
        name, number = chance.choice(sorted(versions))
        action = chance.randrange(6)
        if action == 0 and (name, number + 1) in versions:  # some version of each name stays
            del versions[name, number]
        elif action == 1:
            versions[name, 5] = {}
            hops[name, number, 5] = False
        elif action == 2 and name != "A":
            versions[name, number] = {"A": random_range(chance)} if chance.random() < 0.7 else {}
        elif hops and action == 3:
            del hops[chance.choice(sorted(hops))]
        elif hops and action == 4:
            hop = chance.choice(sorted(hops))
            hops[hop] = not hops[hop]
        elif action == 5 and (name, number + 2) in versions:
            hops[name, number, number + 2] = False
    return sound((versions, hops))


def sound(catalogue):
    versions, hops = catalogue
    return versions, {(name, source, target): expensive for (name, source, target), expensive in hops.items()
                      if (name, source) in versions and (name, target) in versions}


def text_of(catalogue):
    versions, hops = catalogue
    return json.dumps({
        "metamodels": [{"name": name, "version": f"{number}.0.0", "dependencies": [
            {"name": needed, "range": [f"{lower}.0.0", f"{upper}.0.0"]} for needed, (lower, upper) in needs.items()]}
                       for (name, number), needs in versions.items()],
        "hops": [{"name": name, "from": f"{source}.0.0", "to": f"{target}.0.0", "expensive": expensive}
                 for (name, source, target), expensive in hops.items()]})


def differences(former, present):
    """Keys of the rows that differ: a hop of a version that only one has goes with that."""
    versions = {key for key in {*former[0], *present[0]} if former[0].get(key) != present[0].get(key)}
    both = former[0].keys() & present[0].keys()
    return versions | {key for key in {*former[1], *present[1]} if former[1].get(key) != present[1].get(key)
                       and (key[0], key[1]) in both and (key[0], key[2]) in both}


def mixed(worse, better, taken):
    """The worse catalogue with these rows as the better one has them."""
    versions = {key: (better if key in taken else worse)[0].get(key) for key in [*worse[0], *better[0]]}
    versions = {key: needs for key, needs in versions.items() if needs is not None}
    told = differences(worse, better)
    hops = {}
    for key in [*worse[1], *better[1]]:
        source = (better if key in taken else worse) if key in told else (worse if key in worse[1] else better)
        if key in source[1]:
            hops[key] = source[1][key]
    return sound((versions, hops))


def key_of(difference):
    number = lambda field: int(difference[field].split(".")[0])
    if "version" in difference:
        return difference["name"], number("version")
    return difference["name"], number("from"), number("to")


class Diff(unittest.TestCase):
    """What comparisons say."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.folder = pathlib.Path(scratch.name)
        self.validator = jsonschema.Draft202012Validator(SCHEMA)

    def evopath(self, *arguments, **options):
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, check=False, encoding="utf-8", timeout=250,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)

    def answers(self, catalogue, questions):
        """The weight of each answer; infinite where there is none, or a version is not known."""
        (self.folder / "asked.json").write_text(text_of(catalogue), encoding="utf-8")
        done = self.evopath("batch", "asked.json", "-", "--jobs", "1", input="".join(
            json.dumps(question) + "\n" for question in questions))
        lines = [json.loads(line) for line in done.stdout.splitlines()]
        self.assertEqual(len(lines), len(questions), done.stderr)
        return [self.weight_beside_unlinkable(question) if "error" in line else line.get("weight", float("inf"))
                for question, line in zip(questions, lines)]

    def weight_beside_unlinkable(self, question):
        """Of a path under conditions, in which versions that cannot be linked take no part."""
        sides = [argument for side in ("from", "to") for argument in (
            f"--{side}", ",".join(f"{name}={version}" for name, version in question[side].items()))]
        done = self.evopath("path", "asked.json", *sides, "--direction", "forward", "--json", "--no-explain")
        return json.loads(done.stdout)["weight"] if done.returncode == 0 else float("inf")

    def check_cause(self, answer, former, present):
        """That the differences suffice, and that no fewer do where that is said."""
        isWorse = answer["change"] in ("lost", "dearer")
        worse, better = (present, former) if isWorse else (former, present)
        wanted = self.answers(better, [answer["question"]])[0]
        taken = {key_of(each) for each in answer["through"]}
        self.assertLessEqual(self.answers(mixed(worse, better, taken), [answer["question"]])[0], wanted, answer)
        self.assertEqual(answer["proof"], "smallest")
        for fewer in itertools.chain.from_iterable(
                itertools.combinations(sorted(differences(worse, better)), size) for size in range(len(taken))):
            self.assertGreater(self.answers(mixed(worse, better, set(fewer)), [answer["question"]])[0], wanted, answer)

    def test_random_catalogues(self):
        print(f"TARN_RANDOM_SEED={SEED}")
        chance = random.Random(SEED)
        met = set()
        for case in range(CASES):
            former = random_catalogue(chance)
            present = changed(chance, former)
            if chance.random() < 0.5:
                former, present = present, former
            questions = [{"from": {name: "1.0.0"}, "to": {name: f"{chance.randint(2, 4)}.0.0"}} for name in NAMES]
            questions.append({"from": {name: "1.0.0" for name in "AB"}, "to": {name: "2.0.0" for name in "AB"}})
            questions = [each for each in questions if all(
                (name, int(version[0])) in former[0] for side in each.values() for name, version in side.items())]
            for file, catalogue in ("former", former), ("present", present):
                (self.folder / f"{file}.json").write_text(text_of(catalogue), encoding="utf-8")
            lines = "".join(json.dumps(each) + "\n" for each in questions)
            done = self.evopath("diff", "former.json", "present.json", "--questions", "-", "--json", "--content",
                                input=lines)
            with self.subTest(case=case, former=text_of(former), present=text_of(present)):
                self.assertIn(done.returncode, (0, 1), done.stderr)
                told = json.loads(done.stdout)
                self.validator.validate(told)
                self.assertEqual(self.evopath("diff", "former.json", "present.json", "--questions", "-", "--json",
                                              "--content", "--jobs", "1", input=lines).stdout, done.stdout)
                self.assertEqual(done.returncode, int(former != present))
                self.assertEqual({key_of(each) for each in told["content"]["differences"]},
                                 {key for part in (0, 1) for key in {*former[part], *present[part]}
                                  if former[part].get(key) != present[part].get(key)})
                weights = zip(questions, self.answers(former, questions), self.answers(present, questions))
                expected = {json.dumps(question, sort_keys=True): (before, after)
                            for question, before, after in weights if before != after}
                self.assertEqual({json.dumps(each["question"], sort_keys=True): tuple(
                    each[side].get("weight", float("inf")) for side in ("former", "present"))
                                  for each in told["answers"]}, expected)
                for answer in told["answers"]:
                    met.add(answer["change"])
                    self.check_cause(answer, former, present)
        self.assertTrue(CASES < 40 or {"lost", "gained"} <= met, met)

    def test_several_differences_together(self):
        former = {(name, number): {} for name in "AB" for number in (1, 2, 3)}, {
            (name, number, number + 1): False for name in "AB" for number in (1, 2)}
        (self.folder / "f.json").write_text(text_of(former), encoding="utf-8")
        question = {side: {name: f"{number}.0.0" for name in "AB"} for side, number in (("from", 1), ("to", 3))}
        done = self.evopath("diff", "f.json", "--without", "A=2.0,B=2.0", "--questions", "-", "--json",
                            input=json.dumps(question))
        answer, = json.loads(done.stdout)["answers"]
        self.assertEqual([key_of(each) for each in answer["through"]], [("A", 2), ("B", 2)])
        self.assertEqual(answer["proof"], "smallest")

    def test_words_and_statuses(self):
        self.validator.check_schema(SCHEMA)
        former = {("A", 1): {}, ("A", 2): {}, ("A", 3): {}, ("B", 1): {"A": (2, 3)}, ("C", 1): {"B": (1, 2)}}, {
            ("A", 1, 2): False, ("A", 2, 3): False}
        (self.folder / "f.json").write_text(text_of(former), encoding="utf-8")
        self.evopath("import", "f.json", "f.store")
        done = self.evopath("diff", "f.json", "f.store")
        self.assertEqual((done.returncode, done.stdout),
                         (0, "The catalogues hold the same.\n1 question: all answered as before.\n"))
        done = self.evopath("diff", "f.store", "--without", "A=2.0", "--content")
        self.assertEqual((done.returncode, done.stdout), (1, """\
Versions: 0 added, 1 removed, 0 changed; hops: 0 added, 2 removed, 0 changed.
  A 2.0.0, removed
  hop of A 1.0.0 -> 2.0.0, removed
  hop of A 2.0.0 -> 3.0.0, removed
Lost: A 1.0.0 -> A 3.0.0
  before weight 4, now no path
  through A 2.0.0, removed
Can no longer be linked:
  B 1.0.0
  C 1.0.0
1 question: 1 lost.
"""))
        done = self.evopath("diff", "f.json", "--without", "A=1.0,A=2.0")
        self.assertIn("the name A stands twice", done.stderr)
        done = self.evopath("diff", "f.json", "--without", "B=1.0", "--json")
        told = json.loads(done.stdout)
        self.validator.validate(told)
        self.assertEqual(told["unlinkable"], [{"name": "C", "version": "1.0.0"}])
        (self.folder / "q").write_text('\n{"from": {"A": "1.0.0"}, "to": {"A": "9.0.0"}}\n', encoding="utf-8")
        for arguments, message in [(("f.json",), "diff: takes a second catalogue, or --without"),
                                   (("f.json", "f.store", "--without", "A=1.0"), "takes a second"),
                                   (("f.json", "--without", "A=9.0"), 'no version 9.0.0 of metamodel "A"'),
                                   (("f.json", "f.store", "--questions", "q"), 'no version 9.0.0 of metamodel "A"'),
                                   (("f.json", "f.store", "--questions", "f.json"), "f.json: line 1: ")]:
            done = self.evopath("diff", *arguments)
            self.assertEqual(done.returncode, 2, done.stdout)
            self.assertIn(message, done.stderr)
        for limit, left in ("--timeout", (0, 1, [])), ("--question-timeout", (1, 0, ["open"])):
            done = self.evopath("diff", "f.json", "--without", "A=2.0", limit, "0", "--json")
            self.assertEqual(done.returncode, 3, done.stderr)
            told = json.loads(done.stdout)
            self.validator.validate(told)
            self.assertEqual((told["questions"], told["unasked"], [each["change"] for each in told["answers"]]), left)
        done = self.evopath("diff", "f.json", "--without", "A=2.0", "--timeout", "0")
        self.assertIn("Ended early: 1 question not asked.\n", done.stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
