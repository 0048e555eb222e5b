#!/usr/bin/env python3
"""Write the document about a run of the benchmarks.

usage: write_document.py RESULTS.json DOCUMENT.md
"""
from __future__ import annotations

import sys
from pathlib import Path

from harness.results import Results
from report.document import document


def main() -> None:
    results, target = map(Path, sys.argv[1:])
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_text(document(Results.load(results)))


if __name__ == "__main__":
    main()
