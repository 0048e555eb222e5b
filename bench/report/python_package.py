"""The Python package beside C++."""
from __future__ import annotations

from harness.results import PythonComparison

from .markdown import duration, section, table, times
from .view import View

WHAT = """
The questions of the families again, asked of a catalogue that has not been asked anything before: in
C++, which gets two selections and hands out a path, and in Python, which gets two dictionaries of
texts. *Steps read* is with every step and hop as an object of Python, which are made when a program
looks at them first. Processes for C++ and for Python take turns.
"""


def python_package(view: View) -> str:
    if not view.results.python:
        return section("From Python", "Not measured: a run has to be told to.")
    return section(
        "From Python",
        WHAT,
        table(
            ["question", "C++", "Python", "ratio", "Python, steps read", "ratio"],
            map(_cells, view.results.python),
        ),
    )


def _cells(each: PythonComparison) -> list[str]:
    return [
        each.label,
        duration(each.cxx_seconds),
        duration(each.python_seconds),
        times(each.python_seconds / each.cxx_seconds),
        duration(each.python_read_seconds),
        times(each.python_read_seconds / each.cxx_seconds),
    ]
