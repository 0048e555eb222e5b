"""Looking things up among what was measured."""
from __future__ import annotations

from dataclasses import dataclass

from harness.results import Comparison, Measurement, Results

SPREAD_FAMILIES = ("uniform", "ragged", "chain", "irrelevant", "early", "core")
ALL_FAMILIES = (*SPREAD_FAMILIES, "blocked")
GROWTH_FROM = 16  # smaller questions are settled by the exhaustive engine


@dataclass(frozen=True)
class View:
    results: Results

    def group(self, name: str) -> dict[str, Measurement]:
        """The benchmarks whose names begin with `name`, by the rest of their names."""
        prefix = f"{name}/"
        return {
            measurement.name.removeprefix(prefix): measurement
            for measurement in self.results.measurements
            if measurement.name.startswith(prefix)
        }

    def family(self, name: str) -> dict[int, Measurement]:
        """The paths of one family by number of metamodels."""
        prefix = f"{name}/"
        return {
            int(label.removeprefix(prefix)): measurement
            for label, measurement in self.group("Path").items()
            if label.startswith(prefix) and label.count("/") == 1
        }

    def points(self, family: str, counter: str) -> list[tuple[int, float]]:
        """What growth is fitted to."""
        return [
            (n, measurement.counters[counter])
            for n, measurement in sorted(self.family(family).items())
            if n >= GROWTH_FROM
        ]

    def comparison(self, label: str) -> Comparison | None:
        return next((each for each in self.results.families if each.label == label), None)

    def random_sizes(self) -> list[int]:
        return sorted({each.metamodels for each in self.results.random})

    def random(self, metamodels: int) -> list[Comparison]:
        return [each for each in self.results.random if each.metamodels == metamodels]


def ratio(measurement: Measurement, numerator: str, denominator: str) -> float:
    return measurement.counters[numerator] / measurement.counters[denominator]


def ratio_to_floor(measurement: Measurement) -> float:
    return ratio(measurement, "path_seconds", "floor_seconds")
