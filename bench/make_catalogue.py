#!/usr/bin/env python3
"""Write a catalogue of one of the benchmark families, with a question to ask of it, as JSON.

usage: make_catalogue.py FAMILY N [--versions V] [--seed S] > catalogue.json

Every family has N metamodels named M000, M001, ... at versions 1.0.0, 2.0.0, ...; a hop leads from
each version to the next one. The question moves the baseline of all lowest versions to the one
named in "to".

  uniform     3 versions each (or as many as --versions says), no dependencies; all move to the last
  ragged      2 to 6 versions each, no dependencies; all move to the last version
  chain       4 versions each; each metamodel needs exactly the same version of the one before it
  irrelevant  3 versions each, no dependencies; only the first three metamodels move
  early       ragged, and the last metamodel's only hop must be taken together with M000's first one
  core        ragged over one core metamodel: each depends on a range of core versions that slides
              upward
  random      random dependency ranges around a hidden way through, some hops expensive or skipping
              (use --seed)
  blocked     ragged, but neither version of the last metamodel can stand beside M000's middle one:
              no path
  dear        random, but most hops are expensive and most cheap ones skip a version, at whose end
              other metamodels must have come along (use --seed)
  both_ways   random, but each hop leads back as well, at times more cheaply (use --seed)
  detours     4 versions each; all but the last metamodel can hop straight to the last version, and
              each, to pass its second or third version, needs the one before it at one or either of
              these, through a whole chain; some of these hops are expensive (use --seed)
  ring        4 versions each; each metamodel lets the one before it be one version ahead, and the
              last one does not let the first be ahead: all must move at once, but the first has
              only the hop that skips version 2, and the others only those that do not: no path
"""
from __future__ import annotations

import argparse
import json
import random
from collections.abc import Callable, Iterator
from dataclasses import dataclass, field
from typing import Any


@dataclass(frozen=True)
class Need:
    """A dependency on another metamodel, from version `low` up to but without `high`."""

    metamodel: int
    low: int
    high: int


@dataclass(frozen=True)
class Hop:
    metamodel: int
    low: int
    high: int
    expensive: bool


@dataclass
class Design:
    """A catalogue by numbers: metamodels count from 0, versions from 1."""

    counts: list[int]  # of versions, for each metamodel
    needs: dict[tuple[int, int], list[Need]] = field(
        default_factory=dict
    )  # by metamodel and version
    hops: list[Hop] = field(default_factory=list)
    to: list[int] = field(default_factory=list)  # the last version of each, unless given

    def __post_init__(self) -> None:
        self.hops = self.hops or [
            Hop(m, v, v + 1, False) for m, v in self.versions() if v < self.counts[m]
        ]
        self.to = self.to or self.counts

    def versions(self) -> Iterator[tuple[int, int]]:
        return ((m, v) for m, count in enumerate(self.counts) for v in range(1, count + 1))


def ragged_counts(n: int) -> list[int]:
    return [2 + (i * 7) % 5 for i in range(n)]


def uniform(n: int, versions: int = 3) -> Design:
    return Design([versions] * n)


def ragged(n: int) -> Design:
    return Design(ragged_counts(n))


def chain(n: int) -> Design:
    versions = range(1, 5)
    return Design([4] * n, {(m, v): [Need(m - 1, v, v + 1)] for m in range(1, n) for v in versions})


def irrelevant(n: int) -> Design:
    return Design([3] * n, to=[3 if m < 3 else 1 for m in range(n)])


def early(n: int) -> Design:
    counts = [5, *ragged_counts(n)[1:-1], 2]
    return Design(counts, {(n - 1, 1): [Need(0, 1, 2)], (n - 1, 2): [Need(0, 2, 6)]})


def blocked(n: int) -> Design:
    counts = [3, *ragged_counts(n)[1:-1], 2]
    return Design(counts, {(n - 1, 1): [Need(0, 1, 2)], (n - 1, 2): [Need(0, 3, 4)]})


def core(n: int) -> Design:
    counts = [6, *ragged_counts(n)[1:]]

    def end_of_range(m: int, v: int) -> int:
        return 7 if v == counts[m] else v + 3

    needs = {
        (m, v): [Need(0, v, end_of_range(m, v))]
        for m in range(1, n)
        for v in range(1, counts[m] + 1)
    }
    return Design(counts, needs)


def random_design(n: int, seed: int) -> Design:
    # What a seed stands for depends on the order in which the numbers are drawn.
    rng = random.Random(seed)
    epochs = draw_epochs(rng, n)
    design = Design(epochs[-1])
    design.needs = draw_needs(rng, epochs)
    single = [
        Hop(m, v, v + 1, rng.random() < 0.05) for m, v in design.versions() if v < design.counts[m]
    ]
    before_last = [(m, v) for m, v in design.versions() if v + 1 < design.counts[m]]
    skipping = [Hop(m, v, v + 2, rng.random() < 0.5) for m, v in before_last if rng.random() < 0.2]
    design.hops = single + skipping
    return design


def dear(n: int, seed: int) -> Design:
    design = random_design(n, seed)
    rng = random.Random(seed)
    design.hops = [
        Hop(m, v, v + 1, rng.random() < 0.6) for m, v in design.versions() if v < design.counts[m]
    ]
    before_last = [(m, v) for m, v in design.versions() if v + 1 < design.counts[m]]
    design.hops += [Hop(m, v, v + 2, False) for m, v in before_last if rng.random() < 0.6]
    return design


def both_ways(n: int, seed: int) -> Design:
    design = random_design(n, seed)
    rng = random.Random(seed)
    back = [
        Hop(hop.metamodel, hop.high, hop.low, hop.expensive and rng.random() < 0.5)
        for hop in design.hops
    ]
    design.hops += back
    return design


def detours(n: int, seed: int) -> Design:
    rng = random.Random(seed)
    detour = [(2, 3), (3, 4), (2, 4)]
    needs = {(m, v): [Need(m - 1, *rng.choice(detour))] for m in range(1, n) for v in (2, 3)}
    hops = [Hop(m, 1, 4, False) for m in range(n - 1)]
    for m in range(n):
        for v in (2, 3):
            hops += [Hop(m, 1, v, rng.random() < 0.4), Hop(m, v, 4, rng.random() < 0.1)]
    return Design([4] * n, needs, hops)


def ring(n: int) -> Design:
    needs = {
        (m, v): [Need(m - 1, v, v + 2)] for m in range(1, n) for v in range(1, 5)
    }
    for v in range(1, 5):
        needs[n - 1, v] = [*needs[n - 1, v], Need(0, 1, v + 1)] if n > 2 else [Need(0, v, v + 1)]
    single = [Hop(m, v, v + 1, False) for m in range(1, n) for v in range(1, 4)]
    return Design([4] * n, needs, [Hop(0, 1, 3, False), Hop(0, 3, 4, False), *single])


def draw_epochs(rng: random.Random, n: int) -> list[list[int]]:
    """The hidden way through: the versions of all metamodels, at one moment after the other."""
    epochs = [[1] * n]
    for _ in range(rng.randint(3, 6)):
        epochs.append([version + (rng.random() < 0.5) for version in epochs[-1]])
    return epochs


def draw_needs(rng: random.Random, epochs: list[list[int]]) -> dict[tuple[int, int], list[Need]]:
    """Ranges that admit what stood together at some moment, and now and then a version more."""
    needs: dict[tuple[int, int], list[Need]] = {}
    for m in range(1, len(epochs[-1])):
        for other in rng.sample(range(m), min(m, rng.randint(0, 2))):
            for version in range(1, epochs[-1][m] + 1):
                held = [epoch[other] for epoch in epochs if epoch[m] == version]
                low = max(1, min(held) - rng.randint(0, 1))
                high = max(held) + 1 + rng.randint(0, 1)
                needs.setdefault((m, version), []).append(Need(other, low, high))
    return needs


FAMILIES: dict[str, Callable[[int], Design]] = {
    "uniform": uniform,
    "ragged": ragged,
    "chain": chain,
    "irrelevant": irrelevant,
    "early": early,
    "core": core,
    "blocked": blocked,
}

SEEDED: dict[str, Callable[[int, int], Design]] = {
    "random": random_design,
    "dear": dear,
    "both_ways": both_ways,
    "detours": detours,
}


def version_text(number: int) -> str:
    return f"{number}.0.0"


def as_catalogue(design: Design) -> dict[str, Any]:
    names = [f"M{m:03d}" for m in range(len(design.counts))]

    def dependencies(m: int, v: int) -> list[dict[str, Any]]:
        return [
            {
                "name": names[need.metamodel],
                "range": [version_text(need.low), version_text(need.high)],
            }
            for need in design.needs.get((m, v), [])
        ]

    return {
        "metamodels": [
            {"name": names[m], "version": version_text(v), "dependencies": dependencies(m, v)}
            for m, v in design.versions()
        ],
        "hops": [
            {
                "name": names[hop.metamodel],
                "from": version_text(hop.low),
                "to": version_text(hop.high),
                "expensive": hop.expensive,
            }
            for hop in design.hops
        ],
        "question": {
            "from": {name: version_text(1) for name in names},
            "to": {name: version_text(v) for name, v in zip(names, design.to)},
        },
    }


def make_catalogue(family: str, n: int, *, versions: int = 3, seed: int = 1) -> dict[str, Any]:
    if family in SEEDED:
        return as_catalogue(SEEDED[family](n, seed))
    if family == "ring":
        return as_catalogue(ring(n))
    if family == "uniform":
        return as_catalogue(uniform(n, versions))
    return as_catalogue(FAMILIES[family](n))


def main() -> None:
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument("family", choices=[*FAMILIES, *SEEDED, "ring"])
    parser.add_argument("n", type=int)
    parser.add_argument("--versions", type=int, default=3)
    parser.add_argument("--seed", type=int, default=1)
    args = parser.parse_args()
    print(json.dumps(make_catalogue(args.family, args.n, versions=args.versions, seed=args.seed)))


if __name__ == "__main__":
    main()
