"""What a run of the benchmarks yields, and how it is kept between measuring and reporting."""
from __future__ import annotations

import json
from dataclasses import asdict, dataclass, field
from enum import Enum
from pathlib import Path
from typing import Any


class Outcome(str, Enum):
    PATH = "path"
    NO_PATH = "no path"
    TIME_LIMIT = "time limit"
    MEMORY_LIMIT = "memory limit"


@dataclass(frozen=True)
class Answer:
    """What somebody made of a question within a limit."""

    outcome: Outcome
    seconds: float  # until the limit was met, if it was
    weight: int | None = None

    @property
    def is_settled(self) -> bool:
        return self.outcome in (Outcome.PATH, Outcome.NO_PATH)

    def contradicts(self, other: Answer) -> bool:
        both_settled = self.is_settled and other.is_settled
        return both_settled and (self.outcome, self.weight) != (other.outcome, other.weight)


@dataclass(frozen=True)
class Comparison:
    """One question, answered by the path finder and by clingo, each in processes of its own."""

    label: str  # such as "uniform/64", "random/16/seed3" or "operators/own"
    metamodels: int
    limit: float  # seconds for each
    path: Answer
    clingo: Answer
    steps: int | None = None  # of the path
    floor_seconds: float | None = None

    @property
    def family(self) -> str:
        return self.label.split("/")[0]


@dataclass(frozen=True)
class Measurement:
    """One benchmark of the benchmark program."""

    name: str
    seconds: float  # for one round
    counters: dict[str, float]


@dataclass(frozen=True)
class StoreComparison:
    """One large catalogue as a JSON file and as a store."""

    metamodels: int
    versions: int  # of each metamodel
    json_bytes: int
    store_bytes: int
    read_seconds: float  # the JSON form
    read_peak_bytes: int
    import_seconds: float
    import_peak_bytes: int
    add_seconds: float  # one version to the store
    add_peak_bytes: int
    open_seconds: float  # the store
    open_and_ask_seconds: float
    ask_store_seconds: float  # one question alone
    ask_memory_seconds: float


@dataclass(frozen=True)
class PythonComparison:
    """One question, asked in C++ and through the Python package."""

    label: str  # such as "uniform/64"
    cxx_seconds: float
    python_seconds: float  # until there is a path
    python_read_seconds: float  # until all its steps have been looked at


@dataclass
class ImportMeasurement:
    """A large catalogue of another program, made a store."""

    name: str  # of the format
    files: int
    bytes: int
    versions: int
    hops: int
    seconds: float
    peak_bytes: int
    store_bytes: int


@dataclass
class BatchComparison:
    """The same questions asked in a batch, or one by one."""

    form: str  # of the catalogue
    questions: int
    jobs: int  # at a time; none where each had a process of its own
    seconds: float
    one_by_one_seconds: float


@dataclass(frozen=True)
class Machine:
    processor: str
    cores: int
    memory_gib: float
    system: str
    compiler: str
    build_type: str
    clingo: str
    revision: str
    date: str
    load: float  # average number of busy processes in the minute before the run


@dataclass
class Results:
    machine: Machine
    minutes: float = 0.0  # that the run took
    measurements: list[Measurement] = field(default_factory=list)
    families: list[Comparison] = field(default_factory=list)
    random: list[Comparison] = field(default_factory=list)
    operators: list[Comparison] = field(default_factory=list)
    stores: list[StoreComparison] = field(default_factory=list)
    python: list[PythonComparison] = field(default_factory=list)
    imports: list[ImportMeasurement] = field(default_factory=list)
    batches: list[BatchComparison] = field(default_factory=list)

    def save(self, file: Path) -> None:
        file.write_text(json.dumps(asdict(self), indent=1))

    @staticmethod
    def load(file: Path) -> Results:
        stored = json.loads(file.read_text())
        return Results(
            machine=Machine(**stored["machine"]),
            minutes=stored["minutes"],
            measurements=[Measurement(**entry) for entry in stored["measurements"]],
            families=[_comparison(entry) for entry in stored["families"]],
            random=[_comparison(entry) for entry in stored["random"]],
            operators=[_comparison(entry) for entry in stored["operators"]],
            stores=[StoreComparison(**entry) for entry in stored["stores"]],
            python=[PythonComparison(**entry) for entry in stored["python"]],
            imports=[ImportMeasurement(**entry) for entry in stored["imports"]],
            batches=[BatchComparison(**entry) for entry in stored["batches"]],
        )


def _answer(stored: dict[str, Any]) -> Answer:
    return Answer(Outcome(stored["outcome"]), stored["seconds"], stored["weight"])


def _comparison(stored: dict[str, Any]) -> Comparison:
    answers = {who: _answer(stored[who]) for who in ("path", "clingo")}
    return Comparison(**{**stored, **answers})
