"""Running a program with limits on its time and memory.

Time is processor time, so that what else the machine does makes no difference. The programs run
here have one thread and wait for nothing: on an idle machine it is the time that passes.
"""
from __future__ import annotations

import os
import resource
import signal
import subprocess
import tempfile
import time
from collections.abc import Sequence
from dataclasses import dataclass
from math import ceil
from pathlib import Path

MEMORY_LIMIT = 8 * 2**30
MOST_COMPETITORS = 8  # a program that gets less of the processor than this share is given up


class TimeLimit(Exception):
    """The program was stopped when its time was over."""


class MemoryLimit(Exception):
    """The program gave up for want of memory."""


class ProgramFailed(Exception):
    """The program ended with an exit status that it should not end with."""


@dataclass(frozen=True)
class Finished:
    output: str
    seconds: float


def run_limited(
    command: Sequence[str | Path],
    *,
    seconds: float,
    text: str = "",
    good_statuses: Sequence[int] = (0,),
) -> Finished:
    """Runs a program to its end, `text` being its standard input."""

    def limit_resources() -> None:
        # To the second. When the first limit goes unheeded, the second one kills.
        resource.setrlimit(resource.RLIMIT_CPU, (ceil(seconds), ceil(seconds) + 1))
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))

    begin, used = time.monotonic(), _processor_seconds_of_children()
    try:
        done = subprocess.run(
            command,
            input=text,
            capture_output=True,
            text=True,
            timeout=MOST_COMPETITORS * ceil(seconds),
            preexec_fn=limit_resources,
        )
    except subprocess.TimeoutExpired as expired:
        raise TimeLimit from expired
    taken = min(time.monotonic() - begin, _processor_seconds_of_children() - used)
    # Some programs heed the first limit and end by themselves, with a status of their own.
    is_stopped = done.returncode not in good_statuses and taken > 0.95 * seconds
    if done.returncode == -signal.SIGXCPU or taken > seconds or is_stopped:
        raise TimeLimit
    if "bad_alloc" in done.stderr:
        raise MemoryLimit
    if done.returncode not in good_statuses:
        failure = f"exit status {done.returncode}: {done.stderr[-500:]}"
        raise ProgramFailed(f"{command[0]}: {failure}")
    return Finished(done.stdout, taken)


@dataclass(frozen=True)
class Measured:
    output: str
    seconds: float
    peak_bytes: int


def run_measured(command: Sequence[str | Path]) -> Measured:
    """Runs a program to its end; it must succeed."""
    with tempfile.TemporaryFile("w+") as output:
        process = subprocess.Popen(command, stdout=output, stderr=subprocess.STDOUT)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        output.seek(0)
        told = output.read()
    if process.returncode != 0:
        raise ProgramFailed(f"{command[0]}: exit status {process.returncode}: {told[-500:]}")
    return Measured(told, usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024)


def _processor_seconds_of_children() -> float:
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime
