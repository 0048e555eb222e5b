"""Putting one question to the path finder and to clingo."""
from __future__ import annotations

import json
from collections.abc import Iterator
from pathlib import Path
from typing import Any

from make_catalogue import FAMILIES, make_catalogue
from peers.clingo.instance import as_instance
from peers.clingo.planner import Inquiry

from .programs import Programs
from .results import Answer, Comparison
from .settings import Settings

SHORT = 1.0  # seconds; what takes less is asked several times, and the least time is taken
ROUNDS = 3


class Contradiction(Exception):
    """The path finder and clingo have answered differently."""


def compare(programs: Programs, label: str, catalogue: dict[str, Any], limit: float) -> Comparison:
    file = programs.work / f"{label.replace('/', '-')}.json"
    file.write_text(json.dumps(catalogue))
    timed = programs.ask_path(file, limit)
    if timed.answer.is_settled and timed.answer.seconds < SHORT:
        timed = programs.ask_path(file, limit, ROUNDS)
    comparison = Comparison(
        label=label,
        metamodels=len(catalogue["question"]["from"]),
        limit=limit,
        path=timed.answer,
        clingo=_ask_clingo(catalogue, limit),
        steps=timed.steps,
        floor_seconds=timed.floor_seconds,
    )
    _show(comparison)
    if comparison.path.contradicts(comparison.clingo):
        raise Contradiction(f"{label}: {comparison.path} but clingo: {comparison.clingo}")
    return comparison


def _ask_clingo(catalogue: dict[str, Any], limit: float) -> Answer:
    instance = as_instance(catalogue)
    answer = Inquiry(instance, limit).run()
    if answer.seconds >= SHORT:
        return answer
    again = (Inquiry(instance, limit).run() for _ in range(ROUNDS - 1))
    return min([answer, *again], key=lambda each: each.seconds)


def _show(comparison: Comparison) -> None:
    def text(answer: Answer) -> str:
        return f"{answer.outcome.value} {answer.weight or ''} {answer.seconds:.4f} s"

    path, clingo = text(comparison.path), text(comparison.clingo)
    print(f"{comparison.label:20}  path finder: {path:35} clingo: {clingo}", flush=True)


def compare_families(programs: Programs, settings: Settings) -> Iterator[Comparison]:
    for family in FAMILIES:
        for n in settings.clingo_sizes:
            catalogue = make_catalogue(family, n)
            yield compare(programs, f"{family}/{n}", catalogue, settings.clingo_limit)


def compare_random(programs: Programs, settings: Settings) -> Iterator[Comparison]:
    for questions in settings.random:
        for seed in questions.seeds:
            catalogue = make_catalogue("random", questions.metamodels, seed=seed)
            label = f"random/{questions.metamodels}/seed{seed}"
            yield compare(programs, label, catalogue, questions.limit)
