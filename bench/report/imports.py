"""Catalogues of other programs."""
from __future__ import annotations

from .markdown import duration, section, significant, table
from .view import View

TEXT = """
`evopath import --from` makes stores of large samples, which `bench/harness/imports.py` writes. They hold, as real files
do, much beside what counts, such as descriptions. Memory grows with the catalogue, not with the files.
"""


def imports(view: View) -> str:
    header = ["format", "files", "size", "versions", "hops", "time", "peak of memory", "store"]
    rows = [
        [
            each.name,
            f"{each.files:,}",
            _mebibytes(each.bytes),
            f"{each.versions:,}",
            f"{each.hops:,}",
            duration(each.seconds),
            _mebibytes(each.peak_bytes),
            _mebibytes(each.store_bytes),
        ]
        for each in view.results.imports
    ]
    return section("Catalogues of other programs", TEXT, table(header, rows))


def _mebibytes(count: int) -> str:
    return f"{significant(count / 2**20)} MiB"
