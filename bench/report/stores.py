"""Catalogues in stores beside catalogues in JSON files."""
from __future__ import annotations

from harness.results import StoreComparison

from .markdown import duration, section, significant, table, times
from .view import View

WHAT = """
Catalogues of `scripts/make_large_catalogue.py`: families of ten metamodels in which each version
needs the version of the same number of the three before it. The question takes one family from its
first versions to its last ones. Each form is read, and each store made, in a process of its own,
whose peak of memory counts.
"""

MAKING = """
*Reading* brings the JSON form into memory, as every question to it has to; *importing* makes a
store of it, once for all questions to come. *Adding* one version copies the store.
"""

ASKING = """
*Opened and asked* is what a user waits for who asks one question: the JSON form is read for it, the
store is opened. *The question alone* is asked of a new repository that has been opened before.
"""

MIB = 2**20


def stores(view: View) -> str:
    rows = view.results.stores
    return section(
        "Stores",
        WHAT,
        MAKING,
        table(
            [
                "versions",
                "JSON file",
                "store",
                "reading",
                "importing",
                "ratio",
                "memory, reading",
                "memory, importing",
                "ratio",
                "adding",
                "ratio to importing",
            ],
            map(_making, rows),
        ),
        ASKING,
        table(
            [
                "versions",
                "opening the store",
                "opened and asked, JSON",
                "store",
                "ratio",
                "the question alone, in memory",
                "store",
                "ratio",
            ],
            map(_asking, rows),
        ),
    )


def _making(each: StoreComparison) -> list[str]:
    return [
        _size(each),
        _mebibytes(each.json_bytes),
        _mebibytes(each.store_bytes),
        duration(each.read_seconds),
        duration(each.import_seconds),
        times(each.import_seconds / each.read_seconds),
        _mebibytes(each.read_peak_bytes),
        _mebibytes(each.import_peak_bytes),
        times(each.import_peak_bytes / each.read_peak_bytes),
        duration(each.add_seconds),
        times(each.add_seconds / each.import_seconds),
    ]


def _asking(each: StoreComparison) -> list[str]:
    from_json = each.read_seconds + each.ask_memory_seconds
    return [
        _size(each),
        duration(each.open_seconds),
        duration(from_json),
        duration(each.open_and_ask_seconds),
        times(each.open_and_ask_seconds / from_json),
        duration(each.ask_memory_seconds),
        duration(each.ask_store_seconds),
        times(each.ask_store_seconds / each.ask_memory_seconds),
    ]


def _size(each: StoreComparison) -> str:
    return f"{each.metamodels:,} x {each.versions:,}"


def _mebibytes(size: int) -> str:
    return f"{significant(size / MIB)} MiB"
