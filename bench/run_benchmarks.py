#!/usr/bin/env python3
"""Run the benchmarks of a build; fail when an answer was wrong.

What was measured goes to BUILD/bench/run/results.json, from which write_document.py can write the
document again.
"""
from __future__ import annotations

import argparse
import time
from pathlib import Path

from harness.batches import compare_batches
from harness.comparison import compare_families, compare_random
from harness.imports import measure_imports
from harness.machine import this_machine
from harness.operators import compare_operators
from harness.programs import Programs
from harness.python_package import compare_python
from harness.results import Results
from harness.settings import FULL, QUICK, Settings
from harness.stores import compare_stores
from report.document import document


def measure(programs: Programs, settings: Settings, with_python: bool) -> Results:
    begin = time.monotonic()
    results = Results(this_machine(programs.build))
    for run in settings.benchmark_runs:
        results.measurements += programs.run_benchmarks(run)
    results.families += compare_families(programs, settings)
    results.operators += compare_operators(programs, settings)
    results.random += compare_random(programs, settings)
    results.stores += compare_stores(programs, settings)
    if with_python:
        results.python += compare_python(programs, settings)
    results.imports += measure_imports(programs, settings)
    results.batches += compare_batches(programs, settings)
    results.minutes = (time.monotonic() - begin) / 60
    return results


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=Path, required=True, help="the build folder")
    parser.add_argument("--quick", action="store_true", help="small questions, seconds in all")
    parser.add_argument("--python", action="store_true", help="ask through the Python package, too")
    parser.add_argument("--document", type=Path, help="where to write the document, if anywhere")
    args = parser.parse_args()
    work = args.build.absolute() / "bench" / "run"
    work.mkdir(parents=True, exist_ok=True)
    results = measure(Programs(args.build.absolute(), work), QUICK if args.quick else FULL, args.python)
    results.save(work / "results.json")
    if args.document:
        args.document.parent.mkdir(parents=True, exist_ok=True)
        args.document.write_text(document(results))


if __name__ == "__main__":
    main()
