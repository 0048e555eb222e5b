"""Many questions in one process, beside a process for each."""
from __future__ import annotations

import json
import os
import subprocess
import time
from collections.abc import Iterator
from pathlib import Path

from .programs import Programs
from .results import BatchComparison
from .settings import Settings

CATALOGUE = Path(__file__).parents[2] / "data" / "operators.json"
ROUNDS = 3  # in turns; the least time counts


def compare_batches(programs: Programs, settings: Settings) -> Iterator[BatchComparison]:
    """The ways from heads to heads in the real catalogue, all time that passes counted."""
    evopath = programs.build / "tools" / "evopath" / "evopath"
    store = programs.work / "batch.store"
    store.unlink(missing_ok=True)
    subprocess.run([evopath, "import", CATALOGUE, store], check=True, stdout=subprocess.DEVNULL)
    heads = subprocess.run([evopath, "batch", store, "--heads"], check=True, capture_output=True, text=True).stdout
    answers = [json.loads(line) for line in heads.splitlines()][: settings.batch_questions]
    questions = [answer["question"] for answer in answers]
    file = programs.work / "batch.jsonl"
    file.write_text("".join(json.dumps(question) + "\n" for question in questions))
    for form, catalogue in ("JSON", CATALOGUE), ("store", store):
        asked = {
            0: lambda: [_ask(evopath, catalogue, question) for question in questions],
            **{jobs: lambda jobs=jobs: _batch(evopath, catalogue, file, jobs) for jobs in (1, os.cpu_count())},
        }
        seconds = {jobs: [] for jobs in asked}
        for _ in range(ROUNDS):
            for jobs, ask in asked.items():
                begin = time.monotonic()
                if ask() != [answer["found"] for answer in answers]:
                    raise RuntimeError("asked again, questions between heads are answered otherwise")
                seconds[jobs].append(time.monotonic() - begin)
        for jobs in asked:
            measured = BatchComparison(form, len(questions), jobs, min(seconds[jobs]), min(seconds[0]))
            print(f"batch: {measured}", flush=True)
            yield measured
    store.unlink()


def _batch(evopath: Path, catalogue: Path, questions: Path, jobs: int) -> list[bool]:
    done = subprocess.run([evopath, "batch", catalogue, questions, "--jobs", str(jobs)], check=True,
                          capture_output=True, text=True)
    return [json.loads(line)["found"] for line in done.stdout.splitlines()]


def _ask(evopath: Path, catalogue: Path, question: dict[str, dict[str, str]]) -> bool:
    sides = [argument for side in ("from", "to") for argument in (
        f"--{side}", ",".join(f"{name}={version}" for name, version in question[side].items()))]
    done = subprocess.run([evopath, "path", catalogue, *sides, "--json", "--no-explain"], check=False,
                          capture_output=True, text=True)
    return json.loads(done.stdout)["found"]
