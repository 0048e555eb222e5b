#!/usr/bin/env python3
"""Ask hard questions of the path finder, and the random ones of clingo as well.

Prints tables, and writes them with what they mean where --document says, which takes most of an hour
for all of them: bench/report/hard_run.md is a part of docs/benchmarks.md. Every question is asked in a process of its own, the short ones several times, and the least time
counts. clingo is asked with its default strategy and with --opt-strategy=usc for plans of as many
steps as the path has, and the better one counts. Fails when weights differ.
"""
from __future__ import annotations

import argparse
import json
import tempfile
from collections.abc import Callable, Iterable, Iterator, Sequence
from pathlib import Path
from statistics import median
from typing import Any

from harness.child_process import MemoryLimit, ProgramFailed, TimeLimit, run_limited
from harness.joined_families import Families, FamilyQuestion, heads_of, with_question
from harness.machine import this_machine
from make_catalogue import FAMILIES, make_catalogue
from peers.clingo.instance import as_instance
from peers.clingo.planner import Inquiry
from report.markdown import duration, listed, paragraph, significant, table, times

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
PEER_OPTIONS = ((), ("--opt-strategy=usc",))
OPERATORS = Path(__file__).parents[1] / "data" / "operators.json"
HARD_FAMILIES = ("dear", "both_ways", "detours", "ring")
HARD_SIZES = (16, 64, 256, 1000)
ROUNDS = 3  # of which the least time counts

INTRODUCTION = """
Written by `bench/run_hard_questions.py` from its run of {date}, revision {revision}, which began with
{load:.1f} busy processes on the machine. Times of the path finder are processor time, without the
floor, and the least of up to three counts.
"""
RANDOM = """
`random`, with {limit:g} s for each question; seeds {seeds}. Beside it clingo, which is told how many
steps the path has, and plans no others: the better of its default strategy and `--opt-strategy=usc`,
{peer_limit:g} s each, start and grounding included, where the path finder's time leaves out the start
and the reading. So asked, clingo is much nearer than above, where it finds the number of steps out for
itself. Where it does not end, its limit counts.
"""
RANDOM_ALONE = "`random`, with {limit:g} s for each question; seeds {seeds}."
JOINED = """
Families of the catalogue of cluster operators joined (see above), the largest first, with {limit:g} s
for each question: all their metamodels named, and only the heads, those that no other needs.
"""
HARD = """
Families made to hurt (see `bench/make_catalogue.py`), with {hard_limit:g} s for each question and
seeds 1 to 5 (`ring` has no seeds).
"""
FORCED = "Planning by learning alone, from the start, with {limit:g} s for each question:"

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


def ask_peer(catalogue: Report, steps: int, weight: int, limit: float) -> float | None:
    """The seconds of the faster strategy; nothing when neither ends within its limit."""
    taken = []
    for options in PEER_OPTIONS:
        inquiry = Inquiry(as_instance(catalogue), limit, options)
        try:
            found = inquiry.least_weight_of(steps)
        except (TimeLimit, MemoryLimit):
            continue
        if found != weight:
            raise SystemExit(f"the path weighs {weight}, but clingo's plan {found}")
        taken.append(inquiry.seconds)
    return min(taken, default=None)


def random_row(
    asker: Asker, n: int, seeds: Sequence[int], peer_limit: float | None
) -> list[str]:
    settled, peers, ratios, asked = [], [], [], 0
    for seed in seeds:
        catalogue = make_catalogue("random", n, seed=seed)
        report = asker.ask(catalogue)
        if report is None:
            continue
        settled.append(report)
        if peer_limit is not None:
            asked += 1
            seconds = ask_peer(catalogue, report["steps"], report["weight"], peer_limit)
            # A peer that does not end within its limit takes the limit at least.
            peers.append(seconds if seconds is not None else peer_limit)
            ratios.append(peers[-1] / report["path_seconds"])
    alone = [f"{n:,}", f"{len(settled)} of {len(seeds)}", *spread(settled)]
    if peer_limit is None:
        return alone
    return [
        *alone,
        duration(median(peers)) if peers else "–",
        f"{sum(seconds < peer_limit for seconds in peers)} of {asked}",
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


def joined_rows(asker: Asker) -> Iterator[Callable[[], list[str]]]:
    catalogue = json.loads(OPERATORS.read_text())
    movable = [
        question
        for question in Families(catalogue).questions()
        if (asker.ask(with_question(catalogue, question)) or {}).get("steps")
    ]
    for count in sorted({1, 2, 5, len(movable)}):
        joined = FamilyQuestion({}, {})
        for question in movable[:count]:
            joined.start.update(question.start)
            joined.goal.update(question.goal)
        for named, question in (("all", joined), ("heads", heads_of(catalogue, joined))):
            yield lambda c=count, n=named, q=question: joined_row(asker, catalogue, c, n, q)


def joined_row(
    asker: Asker, catalogue: Report, count: int, named: str, question: FamilyQuestion
) -> list[str]:
    report = asker.ask(with_question(catalogue, question))
    weight = f"{report['weight']:,}" if report else "–"
    median_and_peak = spread([report] if report else [])[1:]
    return [str(count), named, str(len(question.start)), weight, *median_and_peak]


class Journal:
    """What is told, as soon as it is known; and all of it in the end."""

    def __init__(self) -> None:
        self.blocks = ["## Hard questions by themselves"]

    def say(self, text: str, **values: object) -> None:
        self._add(paragraph(text.format(**values)))

    def show(self, header: Sequence[str], rows: Iterable[Callable[[], list[str]]]) -> None:
        print(table(header, []), flush=True)
        measured = []
        for row in rows:
            measured.append(row())
            print("| " + " | ".join(measured[-1]) + " |", flush=True)
        print()
        self.blocks.append(table(header, measured))

    def _add(self, block: str) -> None:
        print(block + "\n", flush=True)
        self.blocks.append(block)


def spans(sizes: Sequence[int], seeds: int) -> str:
    """Which seeds are asked: "1 to 50 of n = 16"."""
    asked = [(n, SEEDS[n][:seeds]) for n in sizes]
    return listed([f"{span[0]} to {span[-1]} of n = {n:,}" for n, span in asked])


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, required=True, help="the build folder")
    parser.add_argument("--sizes", type=int, nargs="*", default=list(SEEDS), help="of random")
    parser.add_argument("--seeds", type=int, default=50, help="at most so many for each size")
    parser.add_argument("--limit", type=float, default=60.0, help="seconds for each question")
    parser.add_argument("--hard-limit", type=float, default=10.0, help="of the hard families")
    parser.add_argument("--peer-limit", type=float, default=20.0, help="of clingo, each strategy")
    parser.add_argument("--no-peer", action="store_true", help="without clingo")
    parser.add_argument(
        "--only", choices=["random", "joined", "hard", "forced"], help="one table alone"
    )
    parser.add_argument("--document", type=Path, help="where to write all that is printed")
    args = parser.parse_args()
    limits = {name: vars(args)[name] for name in ("limit", "hard_limit", "peer_limit")}
    asker = Asker(args.build.absolute(), args.limit)
    told = ["settled", "median", "slowest", "peak of memory"]
    journal = Journal()
    journal.say(INTRODUCTION, **vars(this_machine(args.build)))
    if args.only in (None, "random"):
        peer = ["clingo, median", "clingo settles", "median advantage", "least advantage"]
        peer_limit = None if args.no_peer else args.peer_limit
        seeds = spans(args.sizes, args.seeds)
        journal.say(RANDOM_ALONE if args.no_peer else RANDOM, **limits, seeds=seeds)
        journal.show(
            ["n", *told, *([] if args.no_peer else peer)],
            (
                lambda n=n: random_row(asker, n, SEEDS[n][: args.seeds], peer_limit)
                for n in args.sizes
            ),
        )
    if args.only in (None, "joined"):
        journal.say(JOINED, **limits)
        header = ["families", "named", "metamodels", "weight", "findPath", "peak of memory"]
        journal.show(header, joined_rows(asker))
    if args.only in (None, "hard"):
        hard = Asker(args.build.absolute(), args.hard_limit)
        journal.say(HARD, **limits)
        journal.show(
            ["family", "n", *told],
            (
                lambda f=f, n=n: family_row(hard, f, n, range(1, 2 if f == "ring" else 6))
                for f in HARD_FAMILIES
                for n in HARD_SIZES
            ),
        )
    if args.only in (None, "forced"):
        journal.say(FORCED, **limits)
        journal.show(
            ["family, learning alone", "n", *told],
            (lambda f=f: family_row(asker, f, 1000, [1], "--learning") for f in FAMILIES),
        )
    if args.document:
        args.document.write_text("\n\n".join(journal.blocks) + "\n")


if __name__ == "__main__":
    main()
