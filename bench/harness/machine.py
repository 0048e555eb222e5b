"""What the benchmarks run on."""
from __future__ import annotations

import os
import platform
import re
import subprocess
from datetime import date
from pathlib import Path

from .results import Machine


def this_machine(build: Path) -> Machine:
    cache = (build / "CMakeCache.txt").read_text()
    compiler = _cached(cache, "CMAKE_CXX_COMPILER")
    return Machine(
        processor=_first(r"model name\s*: (.*)", Path("/proc/cpuinfo").read_text()),
        cores=os.cpu_count() or 1,
        memory_gib=os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 2**30,
        system=platform.freedesktop_os_release()["PRETTY_NAME"],
        compiler=_first(r"(.*)", _output_of(compiler, "--version")),
        build_type=_cached(cache, "CMAKE_BUILD_TYPE"),
        clingo=_first(r"clingo version (\S+)", _output_of("clingo", "--version")),
        revision=_output_of("git", "describe", "--always", "--dirty").strip(),
        date=date.today().isoformat(),
        load=os.getloadavg()[0],
    )


def _cached(cache: str, variable: str) -> str:
    return _first(rf"^{variable}:\w+=(.*)$", cache)


def _first(pattern: str, text: str) -> str:
    found = re.search(pattern, text, re.MULTILINE)
    return found[1] if found else "unknown"


def _output_of(*command: str) -> str:
    directory = Path(__file__).parent
    return subprocess.run(command, capture_output=True, text=True, cwd=directory).stdout
