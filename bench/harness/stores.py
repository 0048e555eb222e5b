"""Large catalogues in both of their forms."""
from __future__ import annotations

import json
import subprocess
import sys
from collections.abc import Iterator
from pathlib import Path

from .programs import Programs
from .results import StoreComparison
from .settings import LargeCatalogue, Settings

MAKER = Path(__file__).parents[2] / "scripts" / "make_large_catalogue.py"
FAMILY = 1  # the one that is asked about
ROUNDS = 2  # of what takes seconds; the least time counts


def compare_stores(programs: Programs, settings: Settings) -> Iterator[StoreComparison]:
    for catalogue in settings.stores:
        yield _compare(programs, catalogue)


def _compare(programs: Programs, catalogue: LargeCatalogue) -> StoreComparison:
    json_file, store = (programs.work / f"large.{form}" for form in ("json", "store"))
    subprocess.run(
        [sys.executable, MAKER, json_file, str(catalogue.metamodels), str(catalogue.versions)],
        check=True,
    )
    reads = [programs.measure_store("read", json_file) for _ in range(ROUNDS)]
    imports = [programs.measure_store("import", json_file, store) for _ in range(ROUNDS)]
    adds = [_add(programs, store, number) for number in range(ROUNDS)]
    asked = programs.measure_store("ask", json_file, store, FAMILY, catalogue.versions)
    comparison = StoreComparison(
        metamodels=catalogue.metamodels,
        versions=catalogue.versions,
        json_bytes=json_file.stat().st_size,
        store_bytes=store.stat().st_size,
        read_seconds=min(each["seconds"] for each in reads),
        read_peak_bytes=min(each["peak_bytes"] for each in reads),
        import_seconds=min(each["seconds"] for each in imports),
        import_peak_bytes=min(each["peak_bytes"] for each in imports),
        add_seconds=min(each["seconds"] for each in adds),
        add_peak_bytes=min(each["peak_bytes"] for each in adds),
        open_seconds=asked["opening"],
        open_and_ask_seconds=asked["opening_and_asking"],
        ask_store_seconds=asked["in_store"],
        ask_memory_seconds=asked["in_memory"],
    )
    print(f"store of {catalogue.metamodels} metamodels: {comparison}", flush=True)
    for file in (json_file, store):
        file.unlink()
    return comparison


def _add(programs: Programs, store: Path, number: int) -> dict[str, float]:
    """Adds one version of a new metamodel."""
    addition = programs.work / "addition.json"
    version = {"name": f"addition-{number}", "version": "1.0.0", "dependencies": []}
    addition.write_text(json.dumps({"metamodels": [version], "hops": []}))
    return programs.measure_store("add", addition, store)
