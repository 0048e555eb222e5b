"""What was aimed at, beside what was measured."""
from __future__ import annotations

from collections.abc import Callable, Iterable
from dataclasses import dataclass

from .fit import exponent
from .markdown import NOT_MEASURED, listed, table, times
from .view import SPREAD_FAMILIES, View, ratio, ratio_to_floor

NOISE = 1.1  # what lies within a tenth counts as equal


@dataclass(frozen=True)
class Row:
    target: str
    measured: str = NOT_MEASURED
    is_met: bool | None = None  # none: not measured, or not all of it

    def cells(self) -> list[str]:
        results = {True: "met", False: "**missed**", None: "not measured"}
        return [self.target, self.measured, results[self.is_met]]


def each_at_most(
    target: str,
    values: dict[str, float],
    limit: float,
    show: Callable[[float], str] = times,
) -> Row:
    """A target for several values, all of which are shown."""
    if not values:
        return Row(target)
    shown = ", ".join(f"{name} {show(value)}" for name, value in values.items())
    return Row(target, shown, max(values.values()) <= limit)


def floor_ratios(view: View, families: Iterable[str], n: int) -> dict[str, float]:
    return {f: ratio_to_floor(view.family(f)[n]) for f in families if n in view.family(f)}


def exhaustive_row(view: View) -> Row:
    target = (
        "uniform, n = 9: at least 1,000 times faster than the exhaustive engine without a budget"
    )
    measured = view.group("Exhaustive").get("uniform/9")
    if measured is None:
        return Row(target)
    factor = ratio(measured, "exhaustive_seconds", "path_seconds")
    return Row(target, times(factor), factor >= 1000)


def small_row(view: View) -> Row:
    ratios = [
        ratio(measurement, "path_seconds", "exhaustive_seconds")
        for measurement in view.group("Exhaustive").values()
        if measurement.counters["within_budget"]
    ]
    target = "questions within the exhaustive engine's budget: no slower than that engine alone"
    if not ratios:
        return Row(target)
    shown = f"{min(ratios):.2f} to {max(ratios):.2f} of its time ({len(ratios)} questions)"
    return Row(target, shown, max(ratios) <= NOISE)


def growth_row(view: View) -> Row:
    fitted = {f: exponent(view.points(f, "path_seconds")) for f in SPREAD_FAMILIES}
    values = {family: value for family, value in fitted.items() if value is not None}
    return each_at_most("growth with n from 16 to 1,000: n^2 at most", values, 2.0, "{:.2f}".format)


def clingo_row(view: View, n: int) -> Row:
    advantages = {}
    for family in SPREAD_FAMILIES:
        comparison = view.comparison(f"{family}/{n}")
        if comparison and comparison.path.is_settled:
            # The limit, where clingo met it: the advantage is at least this.
            advantages[family] = comparison.clingo.seconds / comparison.path.seconds
    target = f"the six families, n = {n:,}: faster than clingo"
    if not advantages:
        return Row(target)
    shown = ", ".join(f"{family} {times(value)}" for family, value in advantages.items())
    is_met = len(advantages) == len(SPREAD_FAMILIES) and min(advantages.values()) > 1
    return Row(target, shown, is_met)


def random_row(view: View, n: int, wanted: int, limit: float) -> Row:
    target = f"random, n = {n}: {wanted} of 50 seeds within {limit:g} s"
    seeds = view.random(n)
    if not seeds:
        return Row(target)
    settled = sum(each.path.is_settled and each.path.seconds <= limit for each in seeds)
    is_met = settled >= wanted if len(seeds) == 50 else None
    return Row(target, f"{settled} of {len(seeds)}", is_met)


def cached_row(view: View) -> Row:
    values = {
        label: ratio(measurement, "cached_seconds", "copy_seconds")
        for label, measurement in view.group("Cached").items()
    }
    target = "a question asked again: twice the time of hashing its baselines and copying the path"
    return each_at_most(target, values, 2.0)


def trace_row(view: View) -> Row:
    values = {
        "both loops": ratio(measurement, "trace_seconds", "empty_seconds")
        for measurement in view.group("Trace").values()
    }
    target = "a trace point that is off: no slower than one load and one branch"
    return each_at_most(target, values, NOISE, "{:.2f}x".format)


def python_row(view: View) -> Row:
    values = {
        each.label.split("/")[0]: each.python_seconds / each.cxx_seconds
        for each in view.results.python
        if each.label.endswith("/64")
    }
    target = "the six families, n = 64: through Python in twice the time of C++ at most"
    return each_at_most(target, values, 2.0)


def rows(view: View) -> list[Row]:
    return [
        exhaustive_row(view),
        each_at_most(
            f"{listed(SPREAD_FAMILIES)}, n = 64: three times the floor at most",
            floor_ratios(view, SPREAD_FAMILIES, 64),
            3.0,
        ),
        growth_row(view),
        each_at_most(
            "blocked, n = 64: three times the floor at most",
            floor_ratios(view, ["blocked"], 64),
            3.0,
        ),
        clingo_row(view, 64),
        clingo_row(view, 1000),
        random_row(view, 16, 47, 1),
        random_row(view, 24, 45, 10),
        small_row(view),
        cached_row(view),
        trace_row(view),
        python_row(view),
    ]


def targets(view: View) -> str:
    return table(["target", "measured", ""], (row.cells() for row in rows(view)))
