"""The path finder beside clingo on the families and on the real catalogue."""
from __future__ import annotations

from collections.abc import Sequence

from harness.results import Comparison

from .markdown import NOT_MEASURED, answer_time, counted, duration, section, table, times
from .view import View

INTRODUCTION = """
clingo is a solver for planning and constraints that learns from conflicts. It is asked with the
encoding of `bench/peers/clingo/`, which plans a fixed number of steps and has it proven that none
is cheaper; the number of steps is raised until no longer plan can be cheaper. It is given more than
the bare question: for each version the least weight to the goal, worked out before its clock
starts. Its time is that of its processes, start and grounding included, as its user would pay it.
It proves the least weight only, and knows nothing of the order among equal paths, which the path
finder also guarantees. Where both have an answer, the weights have to be equal.
"""

BLOCKED = """
That there is no path, planning of a fixed number of steps can show only for the longest path
possible, which is why `blocked` takes clingo so much longer; another encoding might do better.
"""

OPERATORS = """
`operators/own` is the question that `data/operators.json` comes with. The others join independent
families of its metamodels into one question: families that do not depend on one another, each from
its lowest versions that can stand together to the highest ones within reach, where there is a path,
the largest families first (`bench/harness/joined_families.py`). The number is that of the
metamodels.
"""


def clingo(view: View) -> str:
    return section(
        "Beside clingo",
        INTRODUCTION,
        _table(view.results.families),
        who_wins(view.results.families),
        BLOCKED,
    )


def operators(view: View) -> str:
    return section(
        "A real catalogue",
        OPERATORS,
        _table(view.results.operators),
        who_wins(view.results.operators),
    )


def _table(comparisons: Sequence[Comparison]) -> str:
    def row(each: Comparison) -> list[str]:
        weight = each.path.weight if each.path.weight is not None else each.clingo.weight
        both_settled = each.path.is_settled and each.clingo.is_settled
        return [
            each.label,
            "no path" if weight is None else f"{weight:,}",
            str(each.steps) if each.steps else NOT_MEASURED,
            duration(each.floor_seconds),
            answer_time(each.path),
            answer_time(each.clingo),
            times(each.clingo.seconds / each.path.seconds) if both_settled else "",
        ]

    header = ["question", "weight", "steps", "floor", "findPath", "clingo", "advantage"]
    return table(header, map(row, comparisons))


def who_wins(comparisons: Sequence[Comparison]) -> str:
    """In a sentence or two."""
    both = [each for each in comparisons if each.path.is_settled and each.clingo.is_settled]
    won = [each.clingo.seconds / each.path.seconds for each in both]
    ahead = [factor for factor in won if factor >= 1]
    behind = [1 / factor for factor in won if factor < 1]
    alone = [each for each in comparisons if each.path.is_settled and not each.clingo.is_settled]
    clingo_alone = [
        each for each in comparisons if each.clingo.is_settled and not each.path.is_settled
    ]
    sentences = [f"Both settle {len(both)} of {counted(len(comparisons), 'question')}."]
    if ahead:
        sentences.append(f"The path finder is faster on {len(ahead)} of these, {_span(ahead)}.")
    if behind:
        sentences.append(f"clingo is faster on {len(behind)} of these, {_span(behind)}.")
    if alone:
        sentences.append(f"Only the path finder settles {len(alone)} within the limit.")
    if clingo_alone:
        sentences.append(f"Only clingo settles {len(clingo_alone)} within the limit.")
    return " ".join(sentences)


def _span(factors: Sequence[float]) -> str:
    low, high = times(min(factors)), times(max(factors))
    return f"by {low}" if low == high else f"by {low} to {high}"
