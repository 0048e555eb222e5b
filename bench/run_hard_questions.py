#!/usr/bin/env python3
"""Ask hard questions of the path finder, and the random ones of clingo as well; print tables.

Every question is asked in a process of its own, the short ones several times, and the least time
counts. clingo is asked with its default strategy and with --opt-strategy=usc for plans of as many
steps as the path has, and the better one counts. Fails when weights differ.
"""
from __future__ import annotations

import argparse
import json
import tempfile
from collections.abc import Callable, Sequence
from pathlib import Path
from statistics import median
from typing import Any

from harness.child_process import MemoryLimit, ProgramFailed, TimeLimit, run_limited
from make_catalogue import FAMILIES, make_catalogue
from peers.clingo.instance import as_instance
from peers.clingo.planner import Inquiry
from report.markdown import duration, significant, table, times

SEEDS = {
    16: range(1, 51),
    24: range(1, 51),
    32: range(1, 51),
    64: range(201, 231),
    128: range(1, 11),
    256: range(1, 11),
    1000: range(1, 6),
    4000: range(1, 2),
}
PEER_LIMIT = 20.0  # seconds
PEER_OPTIONS = ((), ("--opt-strategy=usc",))
HARD_FAMILIES = ("dear", "both_ways", "ring")
HARD_SIZES = (16, 64, 256, 1000)
ROUNDS = 3  # of which the least time counts

Report = dict[str, Any]


class Asker:
    def __init__(self, build: Path, limit: float) -> None:
        self.program = build / "bench" / "bench_question"
        self.limit = limit

    def ask(self, catalogue: Report, *options: str) -> Report | None:
        """What bench_question reports; nothing when a limit was met."""
        with tempfile.NamedTemporaryFile("w", suffix=".json") as file:
            json.dump(catalogue, file)
            file.flush()
            command = [self.program, file.name, "--without-floor", *options]
            try:
                report = json.loads(run_limited(command, seconds=self.limit).output)
                if report["path_seconds"] < self.limit / ROUNDS / 4:
                    again = run_limited([*command, "--rounds", str(ROUNDS)], seconds=self.limit)
                    report = {**json.loads(again.output), "peak_bytes": report["peak_bytes"]}
                return report
            except (TimeLimit, MemoryLimit, ProgramFailed) as failure:
                print(f"<!-- {type(failure).__name__}: {str(failure)[-200:]} -->", flush=True)
                return None


def ask_peer(catalogue: Report, steps: int, weight: int) -> float | None:
    """The seconds of the faster strategy; nothing when neither ends within its limit."""
    taken = []
    for options in PEER_OPTIONS:
        inquiry = Inquiry(as_instance(catalogue), PEER_LIMIT, options)
        try:
            found = inquiry.least_weight_of(steps)
        except (TimeLimit, MemoryLimit):
            continue
        if found != weight:
            raise SystemExit(f"the path weighs {weight}, but clingo's plan {found}")
        taken.append(inquiry.seconds)
    return min(taken, default=None)


def random_row(asker: Asker, n: int, seeds: Sequence[int], with_peer: bool) -> list[str]:
    settled, peers, ratios, asked = [], [], [], 0
    for seed in seeds:
        catalogue = make_catalogue("random", n, seed=seed)
        report = asker.ask(catalogue)
        if report is None:
            continue
        settled.append(report)
        if with_peer:
            asked += 1
            seconds = ask_peer(catalogue, report["steps"], report["weight"])
            # A peer that does not end within its limit takes the limit at least.
            peers.append(seconds if seconds is not None else PEER_LIMIT)
            ratios.append(peers[-1] / report["path_seconds"])
    return [
        f"{n:,}",
        f"{len(settled)} of {len(seeds)}",
        *spread(settled),
        duration(median(peers)) if peers else "–",
        f"{sum(seconds < PEER_LIMIT for seconds in peers)} of {asked}",
        times(median(ratios)) if ratios else "–",
        times(min(ratios)) if ratios else "–",
    ]


def spread(reports: Sequence[Report]) -> list[str]:
    if not reports:
        return ["–"] * 3
    seconds = [report["path_seconds"] for report in reports]
    peak = max(report["peak_bytes"] for report in reports)
    return [duration(median(seconds)), duration(max(seconds)), f"{significant(peak / 2**20)} MiB"]


def family_row(asker: Asker, family: str, n: int, seeds: Sequence[int], *options: str) -> list[str]:
    reports = [asker.ask(make_catalogue(family, n, seed=seed), *options) for seed in seeds]
    settled = [report for report in reports if report is not None]
    return [family, f"{n:,}", f"{len(settled)} of {len(seeds)}", *spread(settled)]


def show(header: Sequence[str], rows: Sequence[Callable[[], list[str]]]) -> None:
    """Each row as soon as it is measured."""
    print(table(header, []), flush=True)
    for row in rows:
        print("| " + " | ".join(row()) + " |", flush=True)
    print()


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, required=True, help="the build folder")
    parser.add_argument("--sizes", type=int, nargs="*", default=list(SEEDS), help="of random")
    parser.add_argument("--seeds", type=int, default=50, help="at most so many for each size")
    parser.add_argument("--limit", type=float, default=60.0, help="seconds for each question")
    parser.add_argument("--no-peer", action="store_true", help="without clingo")
    parser.add_argument("--only", choices=["random", "hard", "forced"], help="one table alone")
    args = parser.parse_args()
    asker = Asker(args.build.absolute(), args.limit)
    told = ["settled", "median", "slowest", "peak of memory"]
    if args.only in (None, "random"):
        peer = ["clingo, median", "clingo settles", "median advantage", "least advantage"]
        show(
            ["n", *told, *peer],
            [
                lambda n=n: random_row(asker, n, SEEDS[n][: args.seeds], not args.no_peer)
                for n in args.sizes
            ],
        )
    if args.only in (None, "hard"):
        show(
            ["family", "n", *told],
            [
                lambda f=f, n=n: family_row(asker, f, n, range(1, 2 if f == "ring" else 6))
                for f in HARD_FAMILIES
                for n in HARD_SIZES
            ],
        )
    if args.only in (None, "forced"):
        show(
            ["family, learning alone", "n", *told],
            [lambda f=f: family_row(asker, f, 1000, [1], "--learning") for f in FAMILIES],
        )


if __name__ == "__main__":
    main()
