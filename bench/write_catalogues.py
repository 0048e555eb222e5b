#!/usr/bin/env python3
"""Write the catalogues that the benchmarks ask, one JSON file each, into a folder.

usage: write_catalogues.py FOLDER

A file's name says what it holds: uniform-64.json, uniform-64-versions10.json, random-8-seed2.json.
"""
from __future__ import annotations

import json
import sys
from collections.abc import Iterator
from pathlib import Path
from typing import Any

from make_catalogue import FAMILIES, make_catalogue

SIZES = (4, 8, 9, 16, 32, 64, 128, 256, 1000)
VERSION_COUNTS = (10, 30, 100)  # of uniform; three at every size
SMALL_RANDOM_SIZES = (4, 8)  # larger ones may take long, and are asked one process each
SMALL_RANDOM_SEEDS = (1, 2, 3)


def catalogues() -> Iterator[tuple[str, dict[str, Any]]]:
    for family in FAMILIES:
        for n in SIZES:
            yield f"{family}-{n}", make_catalogue(family, n)
    yield "uniform-2", make_catalogue("uniform", 2)  # which trying everything settles
    for versions in VERSION_COUNTS:
        yield f"uniform-64-versions{versions}", make_catalogue("uniform", 64, versions=versions)
    for n in SMALL_RANDOM_SIZES:
        for seed in SMALL_RANDOM_SEEDS:
            yield f"random-{n}-seed{seed}", make_catalogue("random", n, seed=seed)


def main() -> None:
    folder = Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for name, catalogue in catalogues():
        (folder / f"{name}.json").write_text(json.dumps(catalogue))


if __name__ == "__main__":
    main()
