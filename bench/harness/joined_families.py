"""Questions of a catalogue's independent families, joined into one.

A family is a set of metamodels that depend on one another, directly or through others, and on
nothing else. Joined into one question, families move independently, but for the steps, which they
share.

A family starts from the lowest versions that can stand together and goes to the highest ones within
reach that can: metamodels are decided one after the other, those that depend on others first. The
family that the catalogue's own question is about takes part with that question. Families take part
when they have a path on their own that is not empty.
"""
from __future__ import annotations

from collections import defaultdict
from collections.abc import Iterable, Iterator
from dataclasses import dataclass
from typing import Any

from peers.clingo.instance import matching_versions

Json = dict[str, Any]


@dataclass(frozen=True)
class FamilyQuestion:
    start: dict[str, str]
    goal: dict[str, str]


class Families:
    """The families of one catalogue."""

    def __init__(self, catalogue: Json) -> None:
        self._question = catalogue["question"]
        self._versions: dict[str, list[str]] = defaultdict(list)
        self._needs: dict[tuple[str, str], list[Json]] = {}
        self._onward: dict[tuple[str, str], list[str]] = defaultdict(list)
        for entry in catalogue["metamodels"]:
            self._versions[entry["name"]].append(entry["version"])
            self._needs[entry["name"], entry["version"]] = entry["dependencies"]
        for hop in catalogue["hops"]:
            self._onward[hop["name"], hop["from"]].append(hop["to"])

    def questions(self) -> Iterator[FamilyQuestion]:
        """One for each family whose versions can stand together, the largest families first."""
        for names in sorted(self._families(), key=lambda names: (-len(names), names)):
            question = self._question_about(names)
            if question:
                yield question

    def _families(self) -> list[list[str]]:
        family_of = {name: [name] for name in self._versions}
        for (name, _), needs in self._needs.items():
            for need in needs:
                one, other = family_of[name], family_of[need["name"]]
                if one is not other:
                    one += other
                    family_of.update((moved, one) for moved in other)
        return [sorted(names) for name, names in family_of.items() if name == min(names)]

    def _question_about(self, names: list[str]) -> FamilyQuestion | None:
        if self._question["from"].keys() <= set(names):
            return FamilyQuestion(self._question["from"], self._question["to"])
        start = self._first_consistent({name: self._versions[name] for name in names})
        if start is None:
            return None
        goal = self._first_consistent(
            {name: self._within_reach(name, version)[::-1] for name, version in start.items()}
        )
        return FamilyQuestion(start, goal) if goal else None

    def _within_reach(self, name: str, start: str) -> list[str]:
        reached = [start]
        for version in reached:
            reached += [next for next in self._onward[name, version] if next not in reached]
        return [version for version in self._versions[name] if version in reached]

    def _first_consistent(self, candidates: dict[str, list[str]]) -> dict[str, str] | None:
        """Goes back on earlier decisions where later ones leave no candidate."""
        undecided = self._dependents_first(sorted(candidates))
        chosen: dict[str, str] = {}

        def decide_from(place: int) -> bool:
            if place == len(undecided):
                return True
            name = undecided[place]
            for version in self._admitted(name, candidates[name], chosen):
                chosen[name] = version
                if decide_from(place + 1):
                    return True
                del chosen[name]
            return False

        return chosen if decide_from(0) else None

    def _admitted(self, name: str, versions: list[str], chosen: dict[str, str]) -> list[str]:
        for dependent, version in chosen.items():
            for need in self._needs[dependent, version]:
                if need["name"] == name:
                    versions = matching_versions(versions, need["range"])
        return versions

    def _dependents_first(self, names: list[str]) -> list[str]:
        ordered: list[str] = []  # dependencies first

        def visit(name: str) -> None:
            if name in ordered:
                return
            for version in self._versions[name]:
                for need in self._needs[name, version]:
                    visit(need["name"])
            ordered.append(name)

        for name in names:
            visit(name)
        return ordered[::-1]


def join(questions: Iterable[FamilyQuestion], most: int) -> FamilyQuestion:
    """Takes one family after the other, as long as no more than `most` metamodels are in it."""
    joined = FamilyQuestion({}, {})
    for question in questions:
        if len(joined.start) + len(question.start) <= most:
            joined.start.update(question.start)
            joined.goal.update(question.goal)
    return joined


def heads_of(catalogue: Json, question: FamilyQuestion) -> FamilyQuestion:
    """The same, naming only metamodels that no other one needs."""
    needed = {
        need["name"] for entry in catalogue["metamodels"] for need in entry["dependencies"]
    }

    def unneeded(selection: dict[str, str]) -> dict[str, str]:
        return {name: version for name, version in selection.items() if name not in needed}

    return FamilyQuestion(unneeded(question.start), unneeded(question.goal))


def with_question(catalogue: Json, question: FamilyQuestion) -> Json:
    return {**catalogue, "question": {"from": question.start, "to": question.goal}}
