"""Compares random catalogues, and holds what is said against asking each of them, and against every set of differences.

usage: evopath_diff_test.py EVOPATH DATA
"""

import copy
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
CASES = int(os.environ.get("TARN_RANDOM_CASES", 80))
NAMES = "ABC"
VERSIONS = "1.0.0", "2.0.0-rc.1", "2.0.0", "tau", "3.0.0"  # in which hops go


def random_catalogue(chance):
    """Versions by name and version, and hops by name and both versions: what is written of each."""
    versions, hops = {}, {}
    for name in NAMES:
        there = [version for version in VERSIONS if version in ("1.0.0", "3.0.0") or chance.random() < 0.6]
        for place, version in enumerate(there):
            versions[name, version] = random_version(chance, name, version)
            for before in there[:place]:
                if chance.random() < (0.85 if before == there[place - 1] else 0.2):
                    hops[name, before, version] = {"expensive": chance.random() < 0.15}
    return versions, hops


def random_version(chance, name, version):
    row = {"dependencies": random_needs(chance, name)}
    if version == "tau" and chance.random() < 0.8:
        row["semver"] = "2.5.0"
    return row


def random_needs(chance, name):
    """Mostly of the names before; those of names behind make cycles."""
    needs = []
    for other in NAMES:
        if other != name and chance.random() < (0.45 if other < name else 0.15):
            needs.append({"name": other, "range": random_range(chance), "optional": chance.random() < 0.4})
            if chance.random() < 0.2:
                needs[-1]["note"] = "told"
    return needs


def random_range(chance, mayUnite=True):
    kind = chance.random()
    if mayUnite and kind < 0.3:
        return {"anyOf": [random_range(chance, False) for _ in range(chance.randint(2, 3))]}  # of one is that one
    if kind < 0.5:
        return chance.choice([*VERSIONS, "2.5.0"])
    return list(chance.choice([each for each in itertools.combinations(
        ("1.0.0", "2.0.0-rc.1", "2.0.0", "2.5.0", "3.0.0", "4.0.0"), 2)]))


def changed(chance, catalogue):
    """Another one, a few rows of which differ, be it only in notes."""
    versions, hops = copy.deepcopy(catalogue)
    for _ in range(chance.randint(1, 5)):
        name, version = chance.choice(sorted(versions))
        needs = versions[name, version]["dependencies"]
        action = chance.randrange(11)
        if action == 0 and version != "1.0.0":  # some version of each name stays
            del versions[name, version]
        elif action == 1:
            added = chance.choice(VERSIONS)
            if (name, added) not in versions:
                place = VERSIONS.index(added)
                versions[name, added] = random_version(chance, name, added)
                hops.update({(name, before, added): {"expensive": False} for before in VERSIONS[:place]})
                hops.update({(name, added, after): {"expensive": False} for after in VERSIONS[place + 1:]})
        elif action == 2 or (action in (3, 4, 5, 6) and not needs):
            versions[name, version]["dependencies"] = random_needs(chance, name)
        elif action == 3:
            need = chance.choice(needs)
            need["optional"] = not need["optional"]
        elif action == 4:
            chance.choice(needs)["range"] = random_range(chance)
        elif action == 5:
            chance.choice(needs)["note"] = "told otherwise"
        elif action == 6:
            needs.remove(chance.choice(needs))
        elif action == 7 and hops:
            del hops[chance.choice(sorted(hops))]
        elif action == 8 and hops:
            hop = hops[chance.choice(sorted(hops))]
            hop["expensive"] = not hop["expensive"]
        elif action == 9:
            versions[name, version]["note"] = "told"
            if hops:
                hops[chance.choice(sorted(hops))]["note"] = "told"
        elif action == 10 and (name, "tau") in versions:
            semver = chance.choice([None, "1.5.0", "2.5.0"])
            versions[name, "tau"].pop("semver", None)
            versions[name, "tau"].update({"semver": semver} if semver else {})
    return sound((versions, hops))


def simple(versions, hops):
    """A catalogue by plain numbers: what each version needs, as a range by name, and which hops are expensive."""
    return ({(name, f"{number}.0.0"): {"dependencies": [
        {"name": needed, "range": [f"{lower}.0.0", f"{upper}.0.0"]} for needed, (lower, upper) in needs.items()]}
             for (name, number), needs in versions.items()},
            {(name, f"{source}.0.0", f"{target}.0.0"): {"expensive": expensive}
             for (name, source, target), expensive in hops.items()})


def sound(catalogue):
    versions, hops = catalogue
    return versions, {(name, source, target): row for (name, source, target), row in hops.items()
                      if (name, source) in versions and (name, target) in versions}


def text_of(catalogue):
    versions, hops = catalogue
    return json.dumps({
        "metamodels": [{"name": name, "version": version, **row} for (name, version), row in versions.items()],
        "hops": [{"name": name, "from": source, "to": target, **row} for (name, source, target), row in hops.items()]})


def row_of(rows, key, withNotes=False):
    """A row in which the optional dependencies come last, for their place among the others does not count."""
    row = copy.deepcopy(rows.get(key))
    if row and "dependencies" in row:
        row["dependencies"].sort(key=lambda need: need.get("optional", False))
    for each in [] if withNotes or not row else [row, *row.get("dependencies", [])]:
        each.pop("note", None)
    return row


def differences(former, present):
    """Keys of the rows that differ in more than notes: a hop of a version that only one has goes with that."""
    versions = {key for key in {*former[0], *present[0]} if row_of(former[0], key) != row_of(present[0], key)}
    both = former[0].keys() & present[0].keys()
    return versions | {key for key in {*former[1], *present[1]} if row_of(former[1], key) != row_of(present[1], key)
                       and (key[0], key[1]) in both and (key[0], key[2]) in both}


def mixed(worse, better, taken):
    """The worse catalogue with these rows as the better one has them."""
    versions = {key: (better if key in taken else worse)[0].get(key) for key in [*worse[0], *better[0]]}
    versions = {key: row for key, row in versions.items() if row is not None}
    told = differences(worse, better)
    hops = {}
    for key in [*worse[1], *better[1]]:
        source = (better if key in taken else worse) if key in told else (worse if key in worse[1] else better)
        if key in source[1]:
            hops[key] = source[1][key]
    return sound((versions, hops))


def key_of(difference):
    return tuple(difference[field] for field in ("name", "version", "from", "to") if field in difference)


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
        if "depends on" in done.stderr and not done.stdout:  # on a name without a version: no catalogue
            return [float("inf")] * len(questions)
        lines = [json.loads(line) for line in done.stdout.splitlines()]
        self.assertEqual(len(lines), len(questions), done.stderr)
        return [self.weight_beside_unlinkable(question) if "error" in line else line.get("weight", float("inf"))
                for question, line in zip(questions, lines)]

    def weight_beside_unlinkable(self, question):
        """Of the path that the explanation shows, in which versions that cannot be linked take no part."""
        sides = [argument for side in ("from", "to") for argument in (
            f"--{side}", ",".join(f"{name}={version}" for name, version in question[side].items()))]
        done = self.evopath("path", "asked.json", *sides, "--json")
        told = json.loads(done.stdout) if done.stdout else {"explanation": {"kind": "nothing"}}
        if told["explanation"]["kind"] != "path-beside-unlinkable":
            return float("inf")
        return sum(step["weight"] for step in told["explanation"]["steps"])

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
            known = {*former[0], *present[0]}
            pick = lambda name, *but: chance.choice([version for each, version in sorted(known)
                                                     if each == name and version not in but])
            questions = [{"from": {name: "1.0.0"}, "to": {name: pick(name, "1.0.0")}} for name in NAMES]
            for names in "AB", "ABC", "ABC":
                source = {name: pick(name) if chance.random() < 0.2 else "1.0.0" for name in names}
                questions.append({"from": source, "to": {
                    name: pick(name, source[name]) for name in chance.choice([names[:1], names[1:], names])}})
            questions = [each for each in questions if any(all(
                entry in catalogue[0] for side in each.values() for entry in side.items())
                                                           for catalogue in (former, present))]
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
                self.assertEqual(done.returncode, int(bool(told["content"]["differences"])))
                self.assertEqual({key_of(each) for each in told["content"]["differences"]},
                                 {key for part in (0, 1) for key in {*former[part], *present[part]}
                                  if row_of(former[part], key, True) != row_of(present[part], key, True)})
                self.assertEqual({key_of(each) for each in told["content"]["differences"] if "note" in each["text"]},
                                 {key for part in (0, 1) for key in {*former[part], *present[part]}
                                  if row_of(former[part], key) == row_of(present[part], key)
                                  and row_of(former[part], key, True) != row_of(present[part], key, True)})
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
        former = simple({(name, number): {} for name in "AB" for number in (1, 2, 3)}, {
            (name, number, number + 1): False for name in "AB" for number in (1, 2)})
        (self.folder / "f.json").write_text(text_of(former), encoding="utf-8")
        question = {side: {name: f"{number}.0.0" for name in "AB"} for side, number in (("from", 1), ("to", 3))}
        done = self.evopath("diff", "f.json", "--without", "A=2.0,B=2.0", "--questions", "-", "--json",
                            input=json.dumps(question))
        answer, = json.loads(done.stdout)["answers"]
        self.assertEqual([key_of(each) for each in answer["through"]], [("A", "2.0.0"), ("B", "2.0.0")])
        self.assertEqual(answer["proof"], "smallest")

    def test_needs_that_do_not_link(self):
        """An optional need, and one that closes a cycle, are reasons like any other; notes are none."""
        versions = {(name, version): {"dependencies": []} for name in "AB" for version in ("1.0.0", "2.0.0")}
        hops = {("A", "1.0.0", "2.0.0"): {"expensive": False}}
        need = {"name": "B", "range": {"anyOf": ["3.0.0", ["2.0.0", "3.0.0"]]}}
        for more, rest in ({"optional": True}, []), ({}, [{"name": "A", "range": "2.0.0"}]):
            former, present = copy.deepcopy(versions), copy.deepcopy(versions)
            former["B", "2.0.0"]["dependencies"] = present["B", "2.0.0"]["dependencies"] = rest
            present["A", "2.0.0"]["dependencies"] = [{**need, **more}]
            present["A", "1.0.0"]["note"] = "told"
            for file, rows in ("f.json", former), ("p.json", present):
                (self.folder / file).write_text(text_of((rows, hops)), encoding="utf-8")
            question = json.dumps({"from": {"A": "1.0.0", "B": "1.0.0"}, "to": {"A": "2.0.0"}})
            for files, change in (("f.json", "p.json"), "lost"), (("p.json", "f.json"), "gained"):
                done = self.evopath("diff", *files, "--questions", "-", "--json", input=question)
                answer, = json.loads(done.stdout)["answers"]
                self.assertEqual((answer["change"], answer["proof"]), (change, "smallest"))
                self.assertEqual([key_of(each) for each in answer["through"]], [("A", "2.0.0")])

    def test_hops_that_stand_twice_or_name_an_equivalent(self):
        """Of equal hops the least counts; a hop goes with the version that it means, not with one like it."""
        def write(file, hops):
            versions = {("A", "one"): {"dependencies": [], "semver": "1.0.0"}}
            versions.update({("A", version): {"dependencies": []} for version in ("1.0.0", "2.0.0", "3.0.0")})
            versions["A", "two"] = {"dependencies": [], "semver": "2.0.0"}
            rows = json.loads(text_of((versions, {})))
            rows["hops"] = [{"name": "A", "from": source, "to": target, "expensive": expensive}
                            for source, target, expensive in hops]
            (self.folder / file).write_text(json.dumps(rows), encoding="utf-8")

        dear, plain = ("1.0.0", "2.0.0", True), ("1.0.0", "2.0.0", False)
        onwards = [("2.0.0", "3.0.0", False), ("two", "3.0.0", False)]
        write("dear.json", [dear, *onwards])
        for hops in [dear, plain], [plain, dear]:
            write("both.json", [*hops, *onwards])
            told = json.loads(self.evopath("diff", "both.json", "dear.json", "--json").stdout)
            answer, = told["answers"]
            self.assertEqual((answer["change"], answer["proof"]), ("dearer", "smallest"))
            self.assertEqual([each["text"] for each in answer["through"]], ["hop of A 1.0.0 -> 2.0.0, made expensive"])
        told = json.loads(self.evopath("diff", "both.json", "--without", "A=2.0.0", "--json").stdout)
        self.assertEqual(told["content"]["hops"]["removed"], 2)
        answer, = told["answers"]
        self.assertEqual((answer["change"], answer["proof"]), ("lost", "smallest"))
        self.assertEqual([key_of(each) for each in answer["through"]], [("A", "2.0.0")])

    def test_words_and_statuses(self):
        self.validator.check_schema(SCHEMA)
        former = simple({("A", 1): {}, ("A", 2): {}, ("A", 3): {}, ("B", 1): {"A": (2, 3)}, ("C", 1): {"B": (1, 2)}},
                        {("A", 1, 2): False, ("A", 2, 3): False})
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
        unlinkable = simple({("A", 1): {}, ("B", 1): {"A": (2, 3)}, ("C", 1): {"B": (1, 2)}}, {})
        (self.folder / "u.json").write_text(text_of(unlinkable), encoding="utf-8")
        told = json.loads(self.evopath("diff", "u.json", "--without", "B=1.0", "--json").stdout)
        self.assertEqual(told["unlinkable"], [])  # C could not be linked before
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
