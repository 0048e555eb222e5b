"""A catalogue's question by numbers: what clingo is told, and what bounds follow from it."""
from __future__ import annotations

import json
from collections import defaultdict
from dataclasses import dataclass, field
from functools import cache, cached_property
from pathlib import Path
from typing import Any

Version = str

EXPENSIVE_WEIGHT = 1_000_000_000  # of an expensive hop; an ordinary one weighs 1
# What an expensive hop costs here: clingo counts in 32 bits, and no path has as many ordinary hops.
EXPENSIVE_COST = 100_000


def weight_of(cost: int) -> int:
    expensive, ordinary = divmod(cost, EXPENSIVE_COST)
    return expensive * EXPENSIVE_WEIGHT + ordinary


class Unsuitable(Exception):
    """The question cannot be put to clingo in this encoding."""


@dataclass(frozen=True)
class Hop:
    start: Version
    end: Version
    expensive: bool

    @property
    def cost(self) -> int:
        return EXPENSIVE_COST if self.expensive else 1


@dataclass
class Metamodel:
    """One metamodel of the question, with all its versions."""

    name: str
    start: Version
    goal: Version
    versions: list[Version] = field(default_factory=list)
    hops: list[Hop] = field(default_factory=list)
    # For each version the names that it depends on, and which of their versions will do.
    needs: dict[Version, dict[str, list[Version]]] = field(default_factory=dict)

    @cached_property
    def cost_to_goal(self) -> dict[Version, int]:
        """The least cost of hops to the goal, for each version that has a way there."""
        return self._least_to_goal({hop: hop.cost for hop in self.hops})

    @cached_property
    def hops_to_goal(self) -> dict[Version, int]:
        """The least number of hops to the goal, for each version that has a way there."""
        return self._least_to_goal({hop: 1 for hop in self.hops})

    def _least_to_goal(self, lengths: dict[Hop, int]) -> dict[Version, int]:
        least = {self.goal: 0}
        changed = True
        while changed:
            changed = False
            for hop, length in lengths.items():
                if hop.end not in least:
                    continue
                through = length + least[hop.end]
                if hop.start not in least or through < least[hop.start]:
                    least[hop.start] = through
                    changed = True
        return least

    @cached_property
    def useful_hops(self) -> list[Hop]:
        """The hops between versions that can be reached and can reach the goal."""
        reached = {self.start}
        changed = True
        while changed:
            ahead = {hop.end for hop in self.hops if hop.start in reached}
            changed = not ahead <= reached
            reached |= ahead
        return [h for h in self.hops if h.start in reached and h.end in self.cost_to_goal]

    @property
    def useful_versions(self) -> list[Version]:
        met = {self.start, *(hop.start for hop in self.useful_hops)}
        met |= {hop.end for hop in self.useful_hops}
        return [version for version in self.versions if version in met]

    def reduced_cost(self, hop: Hop) -> int:
        """What taking the hop costs beyond the cheapest way to the goal."""
        return hop.cost + self.cost_to_goal[hop.end] - self.cost_to_goal[hop.start]

    def most_hops(self) -> int:
        """The length of the longest way from start to goal."""

        @cache
        def longest_from(version: Version) -> int:
            onward = [longest_from(hop.end) for hop in self.useful_hops if hop.start == version]
            return 1 + max(onward) if onward else 0

        try:
            return longest_from(self.start)
        except RecursionError as error:
            raise Unsuitable(f"{self.name}: its hops form a cycle, or a very long way") from error


@dataclass
class Instance:
    metamodels: list[Metamodel]

    @property
    def is_hopeless(self) -> bool:
        """Whether hops alone, without any dependency, lead some metamodel to no goal."""
        return any(m.start not in m.cost_to_goal for m in self.metamodels)

    @property
    def hop_cost(self) -> int:
        """The least that the hops cost together; steps come on top."""
        return sum(m.cost_to_goal[m.start] for m in self.metamodels)

    @property
    def fewest_steps(self) -> int:
        return max(m.hops_to_goal[m.start] for m in self.metamodels)

    @property
    def most_steps(self) -> int:
        """No path without idle steps is longer."""
        return sum(m.most_hops() for m in self.metamodels)


def read_instance(catalogue: Path) -> Instance:
    return as_instance(json.loads(catalogue.read_text()))


def as_instance(catalogue: dict[str, Any]) -> Instance:
    start, goal = catalogue["question"]["from"], catalogue["question"]["to"]
    if start.keys() != goal.keys():
        raise Unsuitable("the question names other metamodels to reach than to start from")
    metamodels = {name: Metamodel(name, start[name], goal[name]) for name in sorted(start)}
    for entry in catalogue["metamodels"]:
        if entry["name"] in metamodels:
            metamodels[entry["name"]].versions.append(entry["version"])
    for entry in catalogue["hops"]:
        if entry["name"] in metamodels:
            hop = Hop(entry["from"], entry["to"], entry["expensive"])
            metamodels[entry["name"]].hops.append(hop)
    _add_needs(metamodels, catalogue)
    return Instance(list(metamodels.values()))


def _add_needs(metamodels: dict[str, Metamodel], catalogue: dict[str, Any]) -> None:
    dependencies = {(m["name"], m["version"]): m["dependencies"] for m in catalogue["metamodels"]}
    for metamodel in metamodels.values():
        for version in metamodel.useful_versions:
            needs: dict[str, list[Version]] = defaultdict(list)
            for need in dependencies[metamodel.name, version]:
                if need["name"] not in metamodels:
                    raise Unsuitable(
                        f"{metamodel.name} {version} needs {need['name']}, not asked for"
                    )
                if need["name"] in needs:
                    raise Unsuitable(f"{metamodel.name} {version} needs {need['name']} twice")
                needs[need["name"]] = matching_versions(
                    metamodels[need["name"]].versions, need["range"]
                )
            metamodel.needs[version] = dict(needs)


def matching_versions(versions: list[Version], wanted: list[str] | str) -> list[Version]:
    if isinstance(wanted, str):
        return [version for version in versions if version == wanted]
    lower, upper = _semantic(wanted[0]), _semantic(wanted[1])
    assert lower is not None and upper is not None
    semantic = [(version, _semantic(version)) for version in versions]
    return [version for version, number in semantic if number and lower <= number < upper]


def _semantic(version: Version) -> tuple[int, ...] | None:
    """The numbers of a semantic version; nothing for a text version."""
    parts = version.split(".")
    return tuple(map(int, parts)) if all(part.isdecimal() for part in parts) else None
