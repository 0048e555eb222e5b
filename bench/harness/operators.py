"""Questions of the catalogue of cluster operators: its own, and those of families joined."""
from __future__ import annotations

import json
from collections.abc import Iterator
from pathlib import Path

from .comparison import compare
from .joined_families import Families, Json, join, with_question
from .programs import Programs
from .results import Comparison
from .settings import Settings

CATALOGUE = Path(__file__).parents[2] / "data" / "operators.json"
LIMIT_OF_ONE_FAMILY = 10.0  # seconds


def compare_operators(programs: Programs, settings: Settings) -> Iterator[Comparison]:
    catalogue = json.loads(CATALOGUE.read_text())
    yield compare(programs, "operators/own", catalogue, settings.operators_limit)
    movable = [
        question
        for question in Families(catalogue).questions()
        if _has_path(programs, with_question(catalogue, question))
    ]
    for most in settings.joined_sizes:
        question = join(movable, most)
        joined = with_question(catalogue, question)
        label = f"operators/joined{len(question.start)}"
        yield compare(programs, label, joined, settings.operators_limit)


def _has_path(programs: Programs, catalogue: Json) -> bool:
    file = programs.work / "operators-family.json"
    file.write_text(json.dumps(catalogue))
    timed = programs.ask_path(file, LIMIT_OF_ONE_FAMILY)
    return bool(timed.steps)
