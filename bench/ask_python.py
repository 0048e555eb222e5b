#!/usr/bin/env python3
"""Times the question of a catalogue, asked through the Python package, and prints JSON.

usage: ask_python.py PACKAGE CATALOGUE ROUNDS      PACKAGE is the folder that evopath is imported from
"""
from __future__ import annotations

import json
import sys
from time import perf_counter


def measure(catalogue_file: str, rounds: int) -> dict[str, float | None]:
    """The least times of a question to a catalogue that has not been asked anything before."""
    import evopath

    asking, reading, weight = [], [], None
    for _ in range(rounds):
        catalogue = evopath.Catalogue.load(catalogue_file)
        source, target = catalogue.question
        begin = perf_counter()
        path = catalogue.find_path(source, target)
        asked = perf_counter()
        steps = path and path.steps
        read = perf_counter()
        asking.append(asked - begin)
        reading.append(read - begin)
        weight = sum(step.weight for step in steps) if steps is not None else None
    return {"ask_seconds": min(asking), "ask_and_read_seconds": min(reading), "weight": weight}


if __name__ == "__main__":
    package, catalogue, rounds = sys.argv[1:]
    sys.path.insert(0, package)
    print(json.dumps(measure(catalogue, int(rounds))))
