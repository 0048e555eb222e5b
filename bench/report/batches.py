"""Many questions in one process, beside a process for each."""
from __future__ import annotations

from .markdown import duration, section, significant, table, times
from .view import View

TEXT = """
The questions that `evopath batch --heads` asks of `data/operators.json`: by one process of `evopath path --json` after
the other, and by one process of `evopath batch`. All time that passes counts, and what else the machine does shows.
"""


def batches(view: View) -> str:
    header = ["catalogue", "questions", "asked", "time", "questions a second", "advantage"]
    rows = [
        [
            each.form,
            f"{each.questions:,}",
            f"batch, {each.jobs} at a time" if each.jobs else "one by one",
            duration(each.seconds),
            significant(each.questions / each.seconds),
            times(each.one_by_one_seconds / each.seconds),
        ]
        for each in view.results.batches
    ]
    return section("Many questions at once", TEXT, table(header, rows))
