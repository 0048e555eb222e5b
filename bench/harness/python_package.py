"""Questions asked through the Python package, beside the same in C++."""
from __future__ import annotations

from collections.abc import Iterator

from .comparison import Contradiction
from .programs import Programs
from .results import PythonComparison
from .settings import Settings

FAMILIES = ("uniform", "ragged", "chain", "irrelevant", "early", "core")
LIMIT = 10.0  # seconds for a question, of which each takes some milliseconds at most


def compare_python(programs: Programs, settings: Settings) -> Iterator[PythonComparison]:
    """The question of each family, by turns in C++ and in Python; the least time of each counts."""
    for family in FAMILIES:
        yield _compare(programs, f"{family}/{settings.python_size}", settings)


def _compare(programs: Programs, label: str, settings: Settings) -> PythonComparison:
    file = programs.catalogues / f"{label.replace('/', '-')}.json"
    cxx, python = [], []
    for _ in range(settings.python_turns):
        cxx.append(programs.ask_path(file, LIMIT, settings.python_rounds).answer)
        python.append(programs.ask_python(file, settings.python_rounds))
    if {answer.weight for answer in cxx} != {answer["weight"] for answer in python}:
        raise Contradiction(f"{label}: {cxx} but in Python: {python}")
    comparison = PythonComparison(
        label=label,
        cxx_seconds=min(answer.seconds for answer in cxx),
        python_seconds=min(answer["ask_seconds"] for answer in python),
        python_read_seconds=min(answer["ask_and_read_seconds"] for answer in python),
    )
    print(f"through Python: {comparison}", flush=True)
    return comparison
