"""Catalogues of other programs, as large as they come, read by evopath import."""
from __future__ import annotations

import json
import shutil
from collections.abc import Iterator
from pathlib import Path
from typing import Callable

from .programs import Programs
from .results import ImportMeasurement
from .settings import Settings

PADDING = "x" * 4000  # what real files hold beside what counts: descriptions, icons, readmes


def measure_imports(programs: Programs, settings: Settings) -> Iterator[ImportMeasurement]:
    for name, make in SAMPLES.items():
        yield _measure(programs, name, make, settings.import_share)


def _measure(programs: Programs, name: str, make: Callable, share: float) -> ImportMeasurement:
    folder = programs.work / "import"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    make(folder, share)
    files = [file for file in folder.rglob("*") if file.is_file()]
    store = programs.work / "import.store"
    store.unlink(missing_ok=True)
    report = programs.measure_import(name, folder, store)
    measured = ImportMeasurement(
        name=name,
        files=len(files),
        bytes=sum(file.stat().st_size for file in files),
        versions=report["versions"],
        hops=report["hops"],
        seconds=report["seconds"],
        peak_bytes=report["peak_bytes"],
        store_bytes=store.stat().st_size,
    )
    print(f"import of {name}: {measured}", flush=True)
    shutil.rmtree(folder)
    store.unlink()
    return measured


def _operators(folder: Path, share: float) -> None:
    """One file: packages with forty bundles each in two channels, all needing one of another package."""
    with (folder / "catalogue.json").open("w") as out:
        for package in range(int(1200 * share)):
            name = f"package-{package}"
            versions = [f"{n // 10}.{n % 10}.0" for n in range(10, 50)]
            entries = [{"name": f"{name}.v{versions[0]}"}] + [
                {"name": f"{name}.v{after}", "replaces": f"{name}.v{before}", "skipRange": f"<{after}"}
                for before, after in zip(versions, versions[1:])
            ]
            for channel in ("stable", "fast"):
                _line(out, schema="olm.channel", package=name, name=channel, entries=entries)
            for version in versions:
                properties = [{"type": "olm.package", "value": {"packageName": name, "version": version}}]
                if package > 0:
                    need = {"packageName": f"package-{package // 2}", "versionRange": f">={version}"}
                    properties.append({"type": "olm.package.required", "value": need})
                properties.append({"type": "olm.csv.metadata", "value": {"description": PADDING}})
                _line(out, schema="olm.bundle", package=name, name=f"{name}.v{version}", properties=properties)


def _npm(folder: Path, share: float) -> None:
    """Packuments of a hundred versions each, with peers in two packages before them."""
    for package in range(int(400 * share)):
        versions = {}
        for number in range(100):
            version = f"{number // 20}.{number % 20}.0"
            major = number // 20
            peers = {f"package-{package // half}": f"^{major}.0.0 || ^{major + 1}.0.0" for half in (2, 3)}
            peers.pop(f"package-{package}", None)
            versions[version] = {"name": f"package-{package}", "version": version, "peerDependencies": peers,
                                 "dist": {"tarball": PADDING[:400], "signatures": [{"sig": PADDING[:200]}]},
                                 "scripts": {"test": PADDING[:300]}}
        (folder / f"package-{package}.json").write_text(
            json.dumps({"name": f"package-{package}", "readme": PADDING, "versions": versions}))


def _postgresql(folder: Path, share: float) -> None:
    """Extensions of twenty update scripts each, which are not read, with requirements."""
    for extension in range(int(1000 * share)):
        needed = f"requires = 'extension_{extension // 2}'\n" if extension > 0 else ""
        (folder / f"extension_{extension}.control").write_text(f"comment = 'one of many'\n{needed}")
        for number in range(20):
            (folder / f"extension_{extension}--1.{number}--1.{number + 1}.sql").touch()


def _graph(folder: Path, share: float) -> None:
    """Two thousand releases, from each of which a hundred later ones can be reached."""
    count = int(2000 * share)
    releases = [f"4.{number // 50}.{number % 50}" for number in range(count)]
    edges = [[start, end] for start in range(count) for end in range(start + 1, min(start + 101, count))]
    risks = [{"name": "Risk", "message": PADDING[:200], "url": "https://example.com"}]
    conditional = [{"edges": [{"from": releases[0], "to": each}], "risks": risks} for each in releases[101:]]
    (folder / "graph.json").write_text(json.dumps({
        "nodes": [{"version": each, "payload": PADDING[:100]} for each in releases],
        "edges": edges, "conditionalEdges": conditional}))


def _stops(folder: Path, share: float) -> None:
    """Three thousand releases with a stop in every fifth minor version."""
    count = int(3000 * share)
    (folder / "product.json").write_text(json.dumps({
        "versions": [f"{n // 200}.{n // 10 % 20}.{n % 10}" for n in range(count)],
        "stops": [{"major": n // 20, "minor": n % 20} for n in range(0, count // 10, 5)]}))


def _table(folder: Path, share: float) -> None:
    """A row for each of three hundred thousand versions, and for each hop."""
    names, versions = int(3000 * share), 100
    with (folder / "versions.csv").open("w") as out:
        out.write("name,version,needs\n")
        for name in range(names):
            for version in range(versions):
                need = f"name-{name // 2} >={version}.0.0" if name > 0 else ""
                out.write(f"name-{name},{version}.0.0,{need}\n")
    with (folder / "hops.csv").open("w") as out:
        out.write("name,from,to\n")
        for name in range(names):
            for version in range(versions - 1):
                out.write(f"name-{name},{version}.0.0,{version + 1}.0.0\n")


def _line(out, **fields) -> None:
    out.write(json.dumps(fields) + "\n")


SAMPLES: dict[str, Callable[[Path, float], None]] = {
    "operators": _operators,
    "npm": _npm,
    "postgresql": _postgresql,
    "graph": _graph,
    "stops": _stops,
    "table": _table,
}
