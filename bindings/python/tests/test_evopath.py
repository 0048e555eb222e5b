"""The package as it is installed from its wheel. Answers are held against those of the tool."""

import contextlib
import copy
import doctest
import gc
import itertools
import json
import os
import pathlib
import pickle
import random
import re
import signal
import subprocess
import sys
import tempfile
import threading
import unittest
import weakref

import evopath
from evopath import Catalogue, Dependency, Hop, Metamodel, NamedVersion, Step, VersionRange

DATA = pathlib.Path(__file__).parents[3] / "data" / "operators.json"
SHAPES = [
    Metamodel("shape", "1.0.0"), Metamodel("shape", "2.0.0"),
    Metamodel("drawing", "1.0.0", (Dependency("shape", "1.0.0", "2.0.0"),)),
    Metamodel("drawing", "2.0.0", (Dependency("shape", "2.0.0"),)),
    Metamodel("drawing", "preview", (Dependency("shape", "1.0.0"),), semver="0.9.0"),
]
HOPS = [Hop("shape", "1.0.0", "2.0.0", True), Hop("drawing", "1.0.0", "2.0.0"),
        Hop("drawing", "preview", "1.0.0")]
OLD, NEW = {"drawing": "preview"}, {"drawing": "2.0.0"}


class Host(evopath.Repository):
    """Answers from rows, all of a name or no more than was asked for; a call can be made to fail."""

    def __init__(self, metamodels, hops, failing=0, exact=False):
        self.metamodels, self.hops, self.failing, self.calls = metamodels, hops, failing, 0
        self.exact = exact

    def called(self):
        self.calls += 1
        if self.calls == self.failing:
            raise ZeroDivisionError(f"call {self.calls}")

    def find_metamodels(self, name, ranges):
        self.called()
        return (row for row in self.metamodels if row.name == name and (
            ranges is None or not self.exact
            or any(lies_in(row.version, each.lower, each.upper) for each in ranges)))

    def find_hops(self, name, source):
        self.called()
        return [hop for hop in self.hops
                if hop.name == name and (not self.exact or source in (None, hop.source))]

    def list_names(self):
        self.called()
        return {row.name for row in self.metamodels}


class Telling(Host):
    """Tells of requirements, by name and version, when it is asked."""

    def __init__(self, metamodels, hops, required, failing=0):
        super().__init__(metamodels, hops, failing)
        self.required = required

    def find_requirements(self, name, version):
        self.called()
        return self.required[name, version]


def lies_in(version, lower, upper):
    """Of versions such as "2.0.0" that have one digit before the first point."""
    return lower <= version < upper if upper else version == lower


def interlocked(count):
    """Names that can only move together, each with a version that has to be gone around."""
    names = [f"n{number:02}" for number in range(count)]
    metamodels, hops = [], []
    for number, name in enumerate(names):
        for version in range(1, 7):
            needed = [Dependency(names[number - 1], f"{version}.0.0")] if number else []
            metamodels.append(Metamodel(name, f"{version}.0.0", tuple(needed)))
            hops += [Hop(name, f"{version}.0.0", f"{version + 1}.0.0")] if version < 6 else []
    return metamodels, hops, {n: "1.0.0" for n in names}, {n: "6.0.0" for n in names}


class Enough(Exception):
    """What a callback raises that has seen enough."""


def tangled():
    """A catalogue and a question whose explanation takes minutes."""
    generator = random.Random(0)
    names = [f"n{number:02}" for number in range(64)]
    rows, hops = [], []
    for position, name in enumerate(names):
        others = generator.sample(names[:position], min(position, 3))
        for version in range(1, 9):
            rows.append(Metamodel(name, f"{version}.0.0", tuple(
                Dependency(other, f"{max(1, version - 1)}.0.0", f"{version + 1}.0.0")
                for other in others)))
            hops += [Hop(name, f"{version}.0.0", f"{version + by}.0.0")
                     for by in (1, 2) if version + by < 9 and generator.random() < 0.7]
    return (Catalogue.from_rows(rows, hops), {name: "1.0.0" for name in names},
            {name: "8.0.0" for name in names})


def learnable():
    """A catalogue and a question that the search that learns answers."""
    generator = random.Random(7)
    names = [f"n{number:02}" for number in range(40)]
    rows, hops = [], []
    for position, name in enumerate(names):
        others = generator.sample(names[:position], min(position, 3))
        for version in range(1, 9):
            rows.append(Metamodel(name, f"{version}.0.0", tuple(
                Dependency(other, f"{max(1, version - 1)}.0.0", f"{version + 2}.0.0")
                for other in others)))
            hops += [Hop(name, f"{version}.0.0", f"{version + by}.0.0", generator.random() < 0.3)
                     for by in (1, 2) if version + by < 9]
    return (Catalogue.from_rows(rows, hops), {name: "1.0.0" for name in names},
            {name: "8.0.0" for name in names})


def random_generator():
    """Other questions in every run."""
    seed = int(os.environ.get("TARN_RANDOM_SEED", random.randrange(2**32)))
    print(f"TARN_RANDOM_SEED={seed}", file=sys.stderr)
    return random.Random(seed)


def split(metamodels):
    """The rows without what does not link, and that by name and version."""
    def admitted(needed):
        ranges = [VersionRange(needed.lower, needed.upper), *needed.others]
        return [row for row in metamodels if row.name == needed.name
                and any(lies_in(row.version, each.lower, each.upper) for each in ranges)]

    def leads_back(row, needed):
        met, waiting = set(), admitted(needed)
        while waiting:
            if (other := waiting.pop()) not in met:
                met.add(other)
                waiting += [each for more in other.dependencies if not more.optional
                            for each in admitted(more)]
        return row in met

    required = {(row.name, row.version): [needed for needed in row.dependencies
                                          if needed.optional or leads_back(row, needed)]
                for row in metamodels}
    return [Metamodel(row.name, row.version, [
        needed for needed in row.dependencies if needed not in required[row.name, row.version]])
        for row in metamodels], required


def random_rows(generator, optional=None):
    """A small catalogue and a question; some names depend on those before them, or, so many of them
    if that is there, on any."""
    names = "ABCDE"[:generator.randint(1, 5)]
    metamodels, hops = [], []
    for position, name in enumerate(names):
        for version in range(1, 5):
            needed = []
            for other in names[:position] if optional is None else names.replace(name, ""):
                if generator.random() < 0.5:
                    lower = max(1, version - generator.randint(0, 1))
                    others = [VersionRange(f"{generator.randint(1, 4)}.0.0")
                              for _ in range(generator.choice((0, 0, 1, 2)))]
                    needed.append(Dependency(other, f"{lower}.0.0", f"{lower + 2}.0.0", others,
                                             generator.random() < (optional or 0)))
            metamodels.append(Metamodel(name, f"{version}.0.0", tuple(needed)))
        for source, target in itertools.permutations(range(1, 5), 2):
            if abs(target - source) == 1 and generator.random() < 0.8:
                hops.append(Hop(name, f"{source}.0.0", f"{target}.0.0", generator.random() < 0.1))
    generator.shuffle(hops)
    source = {name: f"{generator.randint(1, 4)}.0.0" for name in names}
    target = {name: f"{generator.randint(1, 4)}.0.0" for name in names
              if generator.random() < 0.7} or dict(source)
    return metamodels, hops, source, target


def json_of(metamodels, hops):
    return {"metamodels": [{"name": row.name, "version": row.version, "dependencies": [
                {"name": needed.name, "range": {"anyOf": [
                    [needed.lower, needed.upper], *(other.lower for other in needed.others)]}
                 if needed.others else [needed.lower, needed.upper],
                 "optional": needed.optional}
                for needed in row.dependencies]} for row in metamodels],
            "hops": [hop.to_dict() for hop in hops]}


def printed(*arguments):
    """What the tool prints."""
    return subprocess.run([sys.executable, "-m", "evopath", *arguments], check=False,
                          capture_output=True, text=True).stdout


def in_any_order(steps):
    """Steps as the tool lists them, so that lists in any order compare."""
    return sorted(json.dumps(step, sort_keys=True) for step in steps)


def written(selection):
    return ",".join(f"{name}={version}" for name, version in selection.items())


class Answers(unittest.TestCase):
    def test_values(self):
        catalogue = Catalogue.from_rows(SHAPES, HOPS)
        path = catalogue.find_path(OLD, NEW)
        first, last = (Step(2, (Hop("drawing", "preview", "1.0.0"),)),
                       Step(1_000_000_002, (Hop("drawing", "1.0.0", "2.0.0"), HOPS[0])))
        self.assertEqual((list(path), path.weight), ([first, last], 1_000_000_004))
        again = Host(SHAPES, HOPS).find_path(OLD, NEW)
        self.assertEqual((path, hash(path)), (again, hash(again)))
        self.assertNotEqual(path, catalogue.find_path({"drawing": "1.0.0"}, NEW))
        with self.assertRaises(AttributeError):
            path.steps[0].weight = 1
        for form in ("text", "json", "svg", "html", "dot", "mermaid"):
            self.assertIn("drawing", path.render(form))
        self.assertEqual(json.loads(path.render("json")), path.to_dict())
        self.assertTrue(path._repr_svg_().startswith("<svg"))
        self.assertTrue(path._repr_html_().startswith("<iframe"))
        for value in (first, path, SHAPES[2], catalogue.explain(OLD, NEW), *catalogue.steps(OLD)):
            for same in (copy.copy(value), copy.deepcopy(value), pickle.loads(pickle.dumps(value))):
                self.assertEqual((same, hash(same), repr(same)), (value, hash(value), repr(value)))
        for form in ("json", "svg", "text"):
            self.assertEqual(pickle.loads(pickle.dumps(path)).render(form), path.render(form))
        host = Host(SHAPES, HOPS)
        host.find_path(OLD, NEW)
        other = copy.copy(host)
        other.hops = []
        self.assertIsNone(other.find_path(OLD, NEW), "a copy answers for itself")
        self.assertEqual(pickle.loads(pickle.dumps(host)).find_path(OLD, NEW), path)
        idle = catalogue.find_path(NEW, NEW)
        self.assertTrue(idle, "there is nothing to do")
        self.assertEqual((idle.steps, idle.weight), ((), 0))
        self.assertIn("drawing", idle.render("svg"))
        self.assertIsNone(catalogue.find_path(NEW, OLD))
        self.assertIsNone(catalogue.question)

    def test_answers_are_those_of_the_tool(self):
        generator = random_generator()
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder, "catalogue.json")
            for _ in range(int(os.environ.get("TARN_RANDOM_CASES", 25))):
                optional = generator.choice((None, 0, 0.5, 1))
                metamodels, hops, source, target = random_rows(generator, optional)
                linking, required = split(metamodels)
                hosts = [Telling(linking, hops, required)]
                if all(needed.optional for each in required.values() for needed in each):
                    hosts += [Host(metamodels, hops), Host(metamodels, hops, exact=True)]
                file.write_text(json.dumps(json_of(metamodels, hops)), encoding="utf-8")
                ends = ("--from", written(source), "--to", written(target), "--json")
                answer = json.loads(printed("path", str(file), *ends))
                listing = [json.loads(line) for line in printed(
                    "steps", str(file), "--at", written(source), "--all", "--json").splitlines()]
                for asked in (Catalogue.load(file), Catalogue.from_rows(metamodels, hops), *hosts):
                    with self.subTest(file=file.read_text(), ends=ends):
                        self.compare(asked, source, target, answer, listing)

    def compare(self, asked, source, target, told, listing):
        explanation = asked.explain(source, target)
        try:
            path = asked.find_path(source, target)
        except evopath.CannotBeLinked:
            path = None
        if path is None:
            self.assertFalse(told["found"])
            self.assertEqual(told["explanation"], explanation.to_dict())
        else:
            self.assertEqual(path.to_dict(), told)
            steps = [step.to_dict() for step in path]
            self.assertEqual([told["weight"], *({key: step[key] for key in mine}
                                                for step, mine in zip(told["steps"], steps))],
                             [path.weight, *steps])
            self.assertEqual(len(told["steps"]), len(steps))
            self.assertEqual(explanation.kind, "path")
        with contextlib.suppress(evopath.CannotBeLinked):  # the tool lists the others
            baselines = [each.to_dict() for each in asked.steps(source)]
            listed = [{"baseline": each["metamodels"], **step} for each in baselines
                      for step in each["steps"]]
            self.assertEqual(in_any_order(listing), in_any_order(listed))

    def test_conditions(self):
        generator = random_generator()
        ways = 0
        for _ in range(16 * int(os.environ.get("TARN_RANDOM_CASES", 25))):
            metamodels, hops, source, target = random_rows(generator)
            avoided = [(row.name, row.version) for row in generator.sample(metamodels, 2)]
            pinned = generator.sample(sorted(source), generator.randint(0, 1))
            kept = generator.choice(metamodels)
            conditions = {
                "avoid": {name: [at for other, at in avoided if other == name]
                          for name, _ in avoided},
                "pin": {**dict.fromkeys(pinned), **({} if pinned else {kept.name: kept.version})}}
            left = [row for row in metamodels if (row.name, row.version) not in avoided]
            allowed = [hop for hop in hops if hop.name not in conditions["pin"]
                       or conditions["pin"][hop.name] not in (None, hop.source)]
            allowed = [hop for hop in allowed if not {(hop.name, hop.source), (hop.name, hop.target)}
                       & set(avoided)]
            if not set(source.items()).isdisjoint(avoided) or source == target:
                continue
            with self.subTest(json=json_of(metamodels, hops), **conditions, ends=(source, target)):
                try:
                    expected = Catalogue.from_rows(left, allowed).find_path(source, target)
                except evopath.CannotBeLinked:
                    continue  # the path keeps clear of what is left without a version to link
                except evopath.UnknownVersion:
                    expected = None
                for asked in (Catalogue.from_rows(metamodels, hops), Host(metamodels, hops)):
                    path = asked.find_path(source, target, **conditions)
                    self.assertEqual(path, expected)
                ways += path is not None and len(path.steps) > 0
        self.assertGreater(ways, 0)
        catalogue = Catalogue.from_rows(SHAPES, HOPS)
        self.assertIsNone(catalogue.find_path(OLD, NEW, pin=["shape"]))
        for conditions, said in (({"avoid": {"x": "1"}}, "avoid[\"x\"]"),
                                 ({"pin": {"shape": "7"}}, "pin[\"shape\"]")):
            with self.assertRaisesRegex(evopath.InvalidArgument, re.escape(said)):
                catalogue.find_path(OLD, NEW, **conditions)

    def test_checks(self):
        with tempfile.TemporaryDirectory() as folder:
            file = pathlib.Path(folder, "catalogue.json")
            file.write_text(json.dumps(json_of(SHAPES[:1] * 2, HOPS[:1])), encoding="utf-8")
            found = evopath.check(file)
            told = json.loads(printed("check", str(file), "--json"))["findings"]
            self.assertEqual([finding.to_dict() for finding in found], told)
            grave = evopath.check(file, severity="error")
            self.assertEqual({finding.severity for finding in grave}, {"error"})
            self.assertEqual({*found, *grave}, set(found))

    def test_threads(self):
        catalogue = Catalogue.load(DATA)
        answers = []
        threads = [threading.Thread(
            target=lambda: answers.append(catalogue.find_path(*catalogue.question)))
            for _ in range(8)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(({path.weight for path in answers}, len(answers)), ({27}, 8))
        host = Host(*interlocked(4)[:2])
        threads = [threading.Thread(target=host.find_path, args=interlocked(4)[2:])
                   for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()


class Pages(unittest.TestCase):
    def test_sessions_print_what_is_shown(self):
        project = DATA.parents[1]
        for page in ("README.md", "docs/python.md"):
            blocks = re.findall("^```python\n(.*?)^```", (project / page).read_text("utf-8"),
                                re.DOTALL | re.MULTILINE)
            self.assertTrue(blocks, page)
            session = doctest.DocTestParser().get_doctest("".join(blocks), {}, page, page, 0)
            with contextlib.chdir(project):
                result = doctest.DocTestRunner().run(session)
            self.assertEqual(result.failed, 0)


class Failures(unittest.TestCase):
    def test_errors_have_fields(self):
        catalogue = Catalogue.from_rows(SHAPES, HOPS)
        with self.assertRaises(evopath.UnknownVersion) as unknown:
            catalogue.find_path({"shape": "7.0.0"}, {"shape": "2.0.0"})
        self.assertEqual((unknown.exception.name, unknown.exception.version), ("shape", "7.0.0"))
        with self.assertRaises(evopath.CatalogueError) as unsound:
            Catalogue.from_rows(SHAPES, [*HOPS, Hop("shape", "1.0.0", "9.0.0")])
        self.assertTrue(unsound.exception.place.startswith("/hops/3"), unsound.exception.place)
        with self.assertRaises(evopath.CatalogueError) as missing:
            Catalogue.load("no/such.json")
        self.assertEqual(missing.exception.file, "no/such.json")
        with self.assertRaises(evopath.TooManyCombinations):
            catalogue.steps(OLD, limit=0)
        for error in (unknown.exception, unsound.exception,
                      evopath.TimedOut("late", 1, 2, None)):
            again = pickle.loads(pickle.dumps(error))
            self.assertEqual((type(again), str(again)), (type(error), str(error)))

    def test_garbage_is_refused(self):
        catalogue = Catalogue.from_rows(SHAPES, HOPS)
        garbage = [None, 1, 1.5, "", "\0", "\ud800", b"x", [], [1], {}, {1: 2}, {"x": None},
                   {"": "1"}, {"shape": ""}, object(), float("nan"), -1, 2**70, True, (), int]
        refused = (TypeError, ValueError, LookupError, evopath.EvopathError)
        calls = [
            lambda x: catalogue.find_path(x, NEW), lambda x: catalogue.find_path(OLD, x),
            lambda x: catalogue.find_path(OLD, NEW, timeout=x),
            lambda x: catalogue.find_path(OLD, NEW, memory=x),
            lambda x: catalogue.find_path(OLD, NEW, avoid=x),
            lambda x: catalogue.find_path(OLD, NEW, avoid={"shape": x}),
            lambda x: catalogue.find_path(OLD, NEW, pin=x),
            lambda x: catalogue.find_path(OLD, NEW, pin={"shape": x}),
            lambda x: catalogue.find_path(OLD, NEW, progress=x),
            lambda x: catalogue.find_path(OLD, NEW, better_path=x),
            lambda x: catalogue.find_direction(x, NEW),
            lambda x: catalogue.explain(x, NEW), lambda x: catalogue.explain(OLD, NEW, budget=x),
            lambda x: catalogue.steps(x), lambda x: catalogue.steps(OLD, direction=x),
            lambda x: catalogue.steps(OLD, limit=x), lambda x: Catalogue(x), Catalogue.load,
            evopath.check, lambda x: evopath.check(DATA, severity=x),
            lambda x: Catalogue.from_rows(x, HOPS), lambda x: Catalogue.from_rows(SHAPES, x),
            lambda x: Catalogue.from_rows([x], []), lambda x: Catalogue.from_rows([], [x]),
            lambda x: Catalogue.from_rows([Metamodel(x, "1.0.0")], []),
            lambda x: Catalogue.from_rows([Metamodel("a", x)], []),
            lambda x: Catalogue.from_rows([Metamodel("a", "b", semver=x)], []),
            lambda x: Catalogue.from_rows([Metamodel("a", "b", (x,))], []),
            lambda x: Catalogue.from_rows([Metamodel("a", "b", x)], []),
            lambda x: Catalogue.from_rows([Metamodel("a", "b", (Dependency("a", x),))], []),
            lambda x: Catalogue.from_rows([Metamodel("a", "b", (Dependency("a", "1", x),))], []),
            lambda x: Catalogue.from_rows(
                [Metamodel("a", "b", (Dependency("a", "1", None, x),))], []),
            lambda x: Catalogue.from_rows(
                [Metamodel("a", "b", (Dependency("a", "1", None, (VersionRange(x, x),)),))], []),
            lambda x: catalogue.find_path(OLD, NEW).render(x), evopath.Path,
            lambda x: Host([x], HOPS).find_path(OLD, NEW),
            lambda x: Host(SHAPES, [Hop("drawing", x, x)]).find_path(OLD, NEW),
            lambda x: Telling(SHAPES, HOPS, dict.fromkeys(split(SHAPES)[1], x)).find_path(OLD, NEW),
            lambda x: Telling(SHAPES, HOPS, dict.fromkeys(split(SHAPES)[1], [Dependency(x, x)])
                              ).find_path(OLD, NEW),
        ]
        refusals = 0
        for call, value in itertools.product(calls, garbage):
            try:
                call(value)
            except refused as error:
                refusals += 1
                self.assertNotIn("incompatible", str(error), "Python's own words")
            except AttributeError as error:  # a test's host looks at its rows
                self.assertIn("name", str(error))
        self.assertGreater(refusals, len(calls) * len(garbage) // 2)
        self.assertEqual(catalogue.find_path(OLD, NEW).weight, 1_000_000_004)

    def test_every_call_of_a_host_may_fail(self):
        """An answer that depends on the call ends with what it raised, any other is given. Then the
        same host answers as ever."""
        generator = random_generator()
        for rows in ((SHAPES, HOPS, OLD, NEW), random_rows(generator, 0.5)):
            metamodels, hops, source, target = rows
            metamodels, required = split(metamodels)
            for ask in (lambda host: host.find_path(source, target),
                        lambda host: host.steps(source), lambda host: host.explain(source, target),
                        lambda host: host.explain({"drawin": "1"}, target)):
                def outcome(host):
                    try:
                        return ask(host)
                    except evopath.CannotBeLinked as error:
                        return str(error)
                quiet = Telling(metamodels, hops, required)
                expected = outcome(quiet)
                raised = 0
                stride = 1 + quiet.calls // 10
                for failing in range(generator.randint(1, stride), quiet.calls + 1, stride):
                    host = Telling(metamodels, hops, required, failing)
                    with self.subTest(rows=rows, failing=failing):
                        try:
                            self.assertEqual(outcome(host), expected)
                        except ZeroDivisionError as error:
                            raised += 1
                            self.assertEqual(str(error), f"call {failing}")
                        self.assertEqual(outcome(host), expected)
                if hops is HOPS:
                    self.assertGreater(raised, 0)

    def test_a_path_is_looked_at_while_it_is_planned(self):
        """A host may look at the very path that it is asked for more of."""
        class Looking(Host):
            path = look = seen = None

            def called(self):
                super().called()
                if self.path is not None:
                    path, self.path = self.path, None
                    self.seen = self.look(path)

        looks = (str, lambda path: path.render("json"), pickle.dumps)
        quiet = Host(SHAPES, HOPS).find_path(OLD, NEW)
        for look, looked in itertools.product(looks, (*looks, lambda path: path.steps)):
            host = Looking(SHAPES, HOPS)
            path = host.find_path(OLD, NEW)
            host.path, host.look = path, looked
            self.assertEqual(look(path), look(quiet))
            self.assertEqual(host.seen, looked(quiet))

    def test_limits(self):
        metamodels, hops, source, target = interlocked(14)
        catalogue = Catalogue.from_rows(metamodels, hops)
        told = []
        for ask in (catalogue.find_path, catalogue.explain):
            with self.assertRaises(evopath.TimedOut) as late:
                ask(source, target, timeout=0)
            self.assertIsInstance(late.exception.progress, evopath.Progress)

            def refuse(progress):
                told.append(progress)
                raise KeyError("enough")
            with self.assertRaisesRegex(KeyError, "enough"):
                ask(source, target, progress=refuse)
        self.assertEqual({type(progress) for progress in told}, {evopath.Progress})
        self.assertTrue(catalogue.find_path(source, target, timeout=1e300, memory=2**64 - 1))

    def test_better_paths(self):
        """Paths met on the way are true ones, each lighter than those before; what a callback
        raises ends the search, and a limit leaves the last one."""
        catalogue, source, target = learnable()
        self.assertEqual(catalogue.find_direction(source, target), "forward")
        self.assertEqual(catalogue.find_direction(target, source), "backward")
        told = []
        answer = catalogue.find_path(source, target, better_path=told.append)
        weights = [path.weight for path in told]
        self.assertTrue(told)
        self.assertEqual(weights, sorted(set(weights), reverse=True))
        self.assertGreaterEqual(weights[-1], answer.weight)
        held = dict(source)
        for step in told[0].steps:
            held.update((hop.name, hop.target) for hop in step.hops)
        self.assertEqual(held, target)

        def stop(path):
            raise Enough(path.weight)
        catalogue.forget_paths()
        with self.assertRaisesRegex(Enough, str(weights[0])):
            catalogue.find_path(source, target, better_path=stop)
        told.clear()
        path = catalogue.find_path(source, target, avoid={"n00": "2.0.0"},
                                   better_path=told.append)
        self.assertGreaterEqual(path.weight, answer.weight)
        self.assertEqual(told, [])

    def test_interrupt(self):
        """Ctrl-C ends a search that would take minutes, in callbacks and between them; a handler
        that raises nothing does not."""
        self.interrupt(KeyboardInterrupt, signal.default_int_handler, during_callback=True)
        self.interrupt(KeyboardInterrupt, signal.default_int_handler, during_callback=False)
        handled = []
        self.interrupt(Enough, lambda *_: handled.append("signal"), during_callback=False,
                       until=lambda: handled)

    def interrupt(self, expected, handler, during_callback, until=lambda: False):
        catalogue, source, target = tangled()
        searching = threading.Event()

        def tell(progress):
            if until():
                raise Enough
            if during_callback:
                signal.raise_signal(signal.SIGINT)
            searching.set()

        def send():
            searching.wait()
            os.kill(os.getpid(), signal.SIGINT)
        # The thread that waits goes on when the callback has returned to the search, not before.
        interval, former = sys.getswitchinterval(), signal.signal(signal.SIGINT, handler)
        sys.setswitchinterval(1000)
        sender = threading.Thread(target=send)
        try:
            if not during_callback:
                sender.start()
            with self.assertRaises(expected):
                catalogue.explain(source, target, budget=10**6, timeout=600, progress=tell)
            if not during_callback:
                sender.join()
        finally:
            sys.setswitchinterval(interval)
            signal.signal(signal.SIGINT, former)

    def test_nothing_leaks(self):
        host = Host(SHAPES, HOPS)
        host.find_path(OLD, NEW)
        gone = weakref.ref(host)
        gc.disable()
        try:
            del host
            self.assertIsNone(gone(), "no cycle keeps it")
        finally:
            gc.enable()

        def ask(failing):
            host = Host(SHAPES, HOPS, failing)
            try:
                hash(host.find_path(OLD, NEW, progress=lambda progress: None))
                host.find_path({"": ""}, NEW)
            except (ZeroDivisionError, ValueError):
                pass

        def blocks(rounds):
            for failing in itertools.chain.from_iterable(itertools.repeat(range(6), rounds)):
                ask(failing)
            sys._clear_type_cache()  # which holds names of attributes
            gc.collect()
            return sys.getallocatedblocks()
        before = blocks(20)
        counts = [sys.getrefcount(each) for each in (evopath.InvalidArgument, Step, Hop)]
        self.assertLess(blocks(100) - before, 50, "less than one a round")
        self.assertEqual(counts, [sys.getrefcount(each)
                                  for each in (evopath.InvalidArgument, Step, Hop)])


if __name__ == "__main__":
    unittest.main()
