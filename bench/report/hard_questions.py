"""Where the time stops being polynomial."""
from __future__ import annotations

from statistics import median

from harness.results import Answer, Comparison, Outcome

from .clingo import who_wins
from .markdown import NOT_MEASURED, answer_time, counted, duration, listed, section, table
from .view import View

INTRODUCTION = """
The question has planning with constraints inside, and no engine can be fast on all of it. The
`random` family shows where that begins: every metamodel depends on ranges of up to two others,
woven around a hidden way through, with some hops that are expensive and some that skip a version.
Each seed is asked in a process of its own, with a limit on its time and 8 GiB of memory.
"""

WHY = """
Planning backward looks at one metamodel at a time. That leads straight to the answer where
dependencies delay a hop or tie some together. Where many ranges interlock, the bounds promise less
than has to be paid in the end, and the search that learns takes over: like clingo, it notes after
each refutation which few decisions were to blame, and never tries these together again
(see [search.md](search.md)).
"""

LISTED_IN_FULL = 32  # metamodels, and more: every seed gets a line


def hard_questions(view: View) -> str:
    return section(
        "Where it stops being polynomial",
        INTRODUCTION,
        _summary_table(view),
        _how_it_looks(view),
        who_wins(view.results.random),
        WHY,
        "The seeds that one of the two did not settle, and all of the larger questions:",
        _seed_table(view),
    )


def _summary_table(view: View) -> str:
    def cells(answers: list[Answer]) -> list[str]:
        settled = [answer for answer in answers if answer.is_settled]
        slowest = max((answer.seconds for answer in settled), default=None)
        return [f"{len(settled)} of {len(answers)}", _median(answers), duration(slowest)]

    rows = []
    for n in view.random_sizes():
        seeds = view.random(n)
        limit = f"{seeds[0].limit:g} s"
        paths = cells([each.path for each in seeds])
        rows.append([str(n), limit, *paths, *cells([each.clingo for each in seeds])])
    who = [
        "findPath settles",
        "median",
        "slowest settled",
        "clingo settles",
        "median",
        "slowest settled",
    ]
    return table(["n", "limit", *who], rows)


def _median(answers: list[Answer]) -> str:
    """The limit counts for what was not settled."""
    middle = median(answer.seconds for answer in answers)
    settled = sum(answer.is_settled for answer in answers)
    return duration(middle) if 2 * settled > len(answers) else f"> {duration(middle)}"


def _how_it_looks(view: View) -> str:
    unsettled = [each for each in view.results.random if not each.path.is_settled]
    if not unsettled:
        return """
            To a user: every one of these questions was answered within its limit. That is a fact
            about these catalogues and no promise: larger or more tightly woven ones exist that are
            not.
        """
    shares = listed([_share(view, n) for n in view.random_sizes()])
    starved = sum(each.path.outcome is Outcome.MEMORY_LIMIT for each in unsettled)
    memory = f"; {starved} of them ran out of memory" if starved else ""
    return f"""
        To a user: most questions are answered at once, and now and then one is not answered in any
        time that one would wait. Beyond the limit were {shares}{memory}. A host that must answer
        in bounded time and memory sets limits (`SearchLimits`).
    """


def _share(view: View, n: int) -> str:
    seeds = view.random(n)
    unsettled = sum(not each.path.is_settled for each in seeds)
    return f"{unsettled} of {counted(len(seeds), 'question')} with {n} metamodels"


def _seed_table(view: View) -> str:
    def is_shown(each: Comparison) -> bool:
        settled = each.path.is_settled and each.clingo.is_settled
        return not settled or each.metamodels >= LISTED_IN_FULL

    def row(each: Comparison) -> list[str]:
        weight = each.path.weight if each.path.weight is not None else each.clingo.weight
        known = NOT_MEASURED if weight is None else f"{weight:,}"
        return [
            each.label,
            known,
            duration(each.floor_seconds),
            answer_time(each.path),
            answer_time(each.clingo),
        ]

    header = ["question", "least weight", "floor", "findPath", "clingo"]
    return table(header, (row(each) for each in view.results.random if is_shown(each)))
