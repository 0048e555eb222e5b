"""The families beside their floor, and how their times grow."""
from __future__ import annotations

from .fit import exponent
from .markdown import NOT_MEASURED, duration, section, significant, table, times
from .view import ALL_FAMILIES, GROWTH_FROM, View, ratio_to_floor

INTRODUCTION = """
Every cell shows the time of `findPath`, and in brackets how many times the floor that is.
"""

VERSIONS = """
The same with more versions: uniform, 64 metamodels, all of which move from the first version to the
last.
"""

GROWTH = f"""
How the times grow with the number n of metamodels: the k of the n^k that fits best to the points
from n = {GROWTH_FROM} on (least squares over logarithms).
"""

LINKING = """
In `chain` every metamodel links all those before it, so that linking alone fills lists whose length
grows with n^2: its floor shows it.
"""


def families(view: View) -> str:
    return section(
        "Questions beside their floor",
        INTRODUCTION,
        _floor_table(view),
        _budget_note(view),
        VERSIONS,
        _versions_table(view),
        GROWTH,
        _growth_table(view),
        LINKING,
    )


def _floor_table(view: View) -> str:
    measured = {family: view.family(family) for family in ALL_FAMILIES}
    sizes = sorted({n for paths in measured.values() for n in paths})

    def cell(family: str, n: int) -> str:
        path = measured[family].get(n)
        if path is None:
            return NOT_MEASURED
        return f"{duration(path.counters['path_seconds'])} ({times(ratio_to_floor(path))})"

    header = ["family", *(f"n = {n:,}" for n in sizes)]
    return table(header, ([family, *(cell(family, n) for n in sizes)] for family in measured))


def _budget_note(view: View) -> str:
    """Why a larger question can take less time, where one does."""
    slower = [
        family
        for family in ALL_FAMILIES
        if {9, 16} <= view.family(family).keys()
        and view.family(family)[9].counters["path_seconds"]
        > view.family(family)[16].counters["path_seconds"]
    ]
    if not slower:
        return ""
    return f"""
        In {len(slower)} of {len(ALL_FAMILIES)} families the question of 9 metamodels takes longer
        than that of 16. The exhaustive engine tries small questions first, up to a budget of
        combinations. Of 9 metamodels it can try some, and gives up when the budget is spent; of 16
        the first look shows that there are too many.
    """


def _versions_table(view: View) -> str:
    paths = view.group("Path")
    versions = {3: paths.get("uniform/64")}
    for label, measurement in paths.items():
        if label.startswith("uniform/64/versions"):
            versions[int(label.removeprefix("uniform/64/versions"))] = measurement
    rows = [
        [str(count), duration(path.counters["path_seconds"]), times(ratio_to_floor(path))]
        for count, path in sorted(versions.items())
        if path is not None
    ]
    return table(["versions", "findPath", "times the floor"], rows)


def _growth_table(view: View) -> str:
    def text(family: str, counter: str) -> str:
        fitted = exponent(view.points(family, counter))
        return NOT_MEASURED if fitted is None else f"n^{significant(fitted)}"

    rows = (
        [family, text(family, "path_seconds"), text(family, "floor_seconds")]
        for family in ALL_FAMILIES
    )
    return table(["family", "findPath", "floor"], rows)
