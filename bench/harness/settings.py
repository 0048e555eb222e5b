"""How much is measured: everything, or just enough to see that measuring still works."""
from __future__ import annotations

from dataclasses import dataclass


@dataclass(frozen=True)
class BenchmarkRun:
    """One run of the benchmark program."""

    filter: str
    repetitions: int
    min_seconds: float  # of measured time, for each benchmark and repetition


@dataclass(frozen=True)
class RandomQuestions:
    metamodels: int
    seeds: range
    limit: float  # seconds for each seed


@dataclass(frozen=True)
class LargeCatalogue:
    metamodels: int
    versions: int  # of each


@dataclass(frozen=True)
class Settings:
    benchmark_runs: tuple[BenchmarkRun, ...]
    clingo_sizes: tuple[int, ...]  # of the families
    clingo_limit: float
    random: tuple[RandomQuestions, ...]
    joined_sizes: tuple[int, ...]  # most metamodels of the questions joined from families
    operators_limit: float
    stores: tuple[LargeCatalogue, ...]
    python_size: int  # metamodels of the questions asked through Python
    python_turns: int
    python_rounds: int  # in each turn
    import_share: float  # of the size of the full samples
    batch_questions: int  # at most


FULL = Settings(
    benchmark_runs=(
        BenchmarkRun("^(Path|Cached|Link|Combine|Trace|Version)", repetitions=2, min_seconds=0.04),
        BenchmarkRun("^(Exhaustive|ProductGraph)/.*uniform", repetitions=1, min_seconds=0.01),
    ),
    clingo_sizes=(4, 64, 1000),
    clingo_limit=40,
    random=(
        RandomQuestions(16, range(1, 51), limit=1),
        RandomQuestions(24, range(1, 51), limit=10),
        RandomQuestions(32, range(1, 11), limit=10),
        RandomQuestions(64, range(1, 6), limit=10),
    ),
    joined_sizes=(10, 14, 20),
    operators_limit=60,
    stores=(LargeCatalogue(100, 50), LargeCatalogue(300, 100), LargeCatalogue(1000, 100), LargeCatalogue(3450, 200)),
    python_size=64,
    python_turns=5,
    python_rounds=20,
    import_share=1,
    batch_questions=1000,
)

QUICK = Settings(
    benchmark_runs=(
        BenchmarkRun("^(Path/.*/|Exhaustive/.*/|ProductGraph/.*/|Cached.*/)4(/|$)", 1, 0.01),
        BenchmarkRun("^(Path/.*/16/|Link|Combine|Trace|Version)", 1, 0.01),
    ),
    clingo_sizes=(4,),
    clingo_limit=10,
    random=(RandomQuestions(16, range(1, 3), limit=1),),
    joined_sizes=(10,),
    operators_limit=10,
    stores=(LargeCatalogue(33, 10),),
    python_size=16,
    python_turns=1,
    python_rounds=2,
    import_share=0.02,
    batch_questions=3,
)
