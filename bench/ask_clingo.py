#!/usr/bin/env python3
"""Ask clingo for the least weight of any path that answers a catalogue's question.

usage: ask_clingo.py CATALOGUE [--limit SECONDS] [CLINGO-OPTION...]
"""
from __future__ import annotations

import argparse
from pathlib import Path

from peers.clingo.instance import read_instance
from peers.clingo.planner import Inquiry


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("catalogue", type=Path)
    parser.add_argument("--limit", type=float, default=60.0, help="seconds")
    args, options = parser.parse_known_args()
    inquiry = Inquiry(read_instance(args.catalogue), args.limit, tuple(options))
    answer = inquiry.run()
    weight = "" if answer.weight is None else f", least weight {answer.weight}"
    horizons = ", ".join(map(str, inquiry.horizons))
    print(f"{answer.outcome.value}{weight}, {answer.seconds:.3f} s, steps asked for: {horizons}")


if __name__ == "__main__":
    main()
