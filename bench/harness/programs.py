"""The benchmark programs of a build, run as child processes."""
from __future__ import annotations

import json
import os
import re
import shutil
import subprocess
import sys
from collections import defaultdict
from dataclasses import dataclass
from functools import cached_property
from pathlib import Path
from typing import Any

from .child_process import MemoryLimit, TimeLimit, run_limited, run_measured
from .results import Answer, Measurement, Outcome
from .settings import BenchmarkRun

GRACE = 1.0  # seconds for starting, reading and the floor
STORE_LIMIT = 300.0  # seconds for each measurement of a store; they take some at most
SECONDS_PER = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


@dataclass(frozen=True)
class TimedPath:
    answer: Answer
    steps: int | None = None
    floor_seconds: float | None = None


@dataclass(frozen=True)
class Programs:
    build: Path
    work: Path  # a folder for files on the way

    @property
    def catalogues(self) -> Path:
        return self.build / "bench" / "catalogues"

    def ask_path(self, catalogue: Path, limit: float, rounds: int = 1) -> TimedPath:
        """The catalogue's question in a process of its own, `limit` seconds for each round."""
        program = self.build / "bench" / "bench_question"
        try:
            done = run_limited(
                [program, catalogue, "--rounds", str(rounds)], seconds=limit * rounds + GRACE
            )
        except TimeLimit:
            return TimedPath(Answer(Outcome.TIME_LIMIT, limit))
        except MemoryLimit:
            return TimedPath(Answer(Outcome.MEMORY_LIMIT, limit))
        report = json.loads(done.output)
        seconds, weight = report["path_seconds"], report["weight"]
        if seconds > limit:
            return TimedPath(Answer(Outcome.TIME_LIMIT, limit))
        outcome = Outcome.NO_PATH if weight is None else Outcome.PATH
        return TimedPath(Answer(outcome, seconds, weight), report["steps"], report["floor_seconds"])

    @cached_property
    def python_package(self) -> Path:
        """The Python package of the build, put together in a folder to import it from."""
        folder = self.work / "python"
        shutil.rmtree(folder, ignore_errors=True)
        command = ["cmake", "--install", self.build, "--component", "python", "--prefix", folder]
        environment = {**os.environ, "DESTDIR": ""}
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, env=environment)
        return folder

    def ask_python(self, catalogue: Path, rounds: int) -> dict[str, float]:
        """The catalogue's question, asked through the Python package."""
        asker = Path(__file__).parents[1] / "ask_python.py"
        command = [sys.executable, asker, self.python_package, catalogue, str(rounds)]
        return json.loads(run_limited(command, seconds=STORE_LIMIT).output)

    def measure_store(self, what: str, *arguments: object) -> dict[str, float]:
        """What bench_store tells; fails when an answer was wrong."""
        program = self.build / "bench" / "bench_store"
        command = [program, what, *map(str, arguments)]
        return json.loads(run_limited(command, seconds=STORE_LIMIT).output)

    def measure_import(self, form: str, source: Path, store: Path) -> dict[str, float]:
        """What evopath says of an import, and what it takes."""
        program = self.build / "tools" / "evopath" / "evopath"
        done = run_measured([program, "import", "--from", form, source, store])
        told = re.match(r"Imported (\d+) versions? of metamodels? and (\d+) hops?\.\n$", done.output)
        if told is None:
            raise RuntimeError(f"evopath import --from {form} says: {done.output}")
        versions, hops = map(int, told.groups())
        return {"versions": versions, "hops": hops, "seconds": done.seconds, "peak_bytes": done.peak_bytes}

    def run_benchmarks(self, run: BenchmarkRun) -> list[Measurement]:
        """Shows the program's own report on the way; fails when an answer was wrong."""
        output = self.work / "google_benchmark.json"
        subprocess.run(
            [
                self.build / "bench" / "pathfinder_benchmarks",
                f"--benchmark_filter={run.filter}",
                f"--benchmark_repetitions={run.repetitions}",
                f"--benchmark_min_time={run.min_seconds}",
                "--benchmark_enable_random_interleaving=true",
                "--benchmark_display_aggregates_only=true",
                f"--benchmark_out={output}",
            ],
            check=True,
        )
        return _least_of_repetitions(json.loads(output.read_text()))


def _least_of_repetitions(report: dict[str, Any]) -> list[Measurement]:
    repetitions = defaultdict(list)
    for run in report["benchmarks"]:
        if run["run_type"] == "iteration":
            repetitions[_plain_name(run["run_name"])].append(run)
    return [_least(name, runs) for name, runs in repetitions.items()]


def _plain_name(run_name: str) -> str:
    return run_name.replace("/manual_time", "").replace("/real_time", "")


def _least(name: str, runs: list[dict[str, Any]]) -> Measurement:
    """Times are the least of all; a rate, the greatest; what is counted never differs."""
    seconds = min(run["real_time"] * SECONDS_PER[run["time_unit"]] for run in runs)
    counters = {}
    for key in runs[0].keys() - STANDARD_FIELDS:
        values = [run[key] for run in runs]
        counters[key] = min(values) if key.endswith("_seconds") else max(values)
    return Measurement(name, seconds, counters)


STANDARD_FIELDS = {
    "name",
    "family_index",
    "per_family_instance_index",
    "run_name",
    "run_type",
    "repetitions",
    "repetition_index",
    "threads",
    "iterations",
    "real_time",
    "cpu_time",
    "time_unit",
}
