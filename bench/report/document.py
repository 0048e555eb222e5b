"""The document about one run of the benchmarks. Every number in it comes from the run."""
from __future__ import annotations

from pathlib import Path

from harness.comparison import ROUNDS, SHORT
from harness.results import Machine, Results

from .batches import batches
from .clingo import clingo, operators
from .engines import engines
from .families import families
from .hard_questions import hard_questions
from .imports import imports
from .markdown import counted, listed, paragraph, section, table
from .operations import operations
from .python_package import python_package
from .stores import stores
from .targets import rows, targets
from .view import View

HARD_RUN = Path(__file__).with_name("hard_run.md")  # of a run of its own

FAMILIES = """
The families of catalogues are those of `bench/make_catalogue.py`. Each has n metamodels; the
question moves them from their first versions to their last ones.
"""

FAMILY_TABLE = {
    "uniform": "3 versions each, no dependencies",
    "ragged": "2 to 6 versions each, no dependencies",
    "chain": "4 versions each; each metamodel needs exactly the same version of the one before it",
    "irrelevant": "3 versions each, no dependencies; only the first three metamodels move",
    "early": "ragged; the last metamodel's only hop must go together with the first one's first",
    "core": "ragged over one core metamodel; each needs a range of core versions that slides up",
    "random": "random ranges around a hidden way, some hops expensive or skipping a version",
    "blocked": "ragged; the last metamodel cannot stand beside a version that the first must pass",
}

FLOOR = """
The **floor** of a question is the time that any search needs that asks the application once: for
each version between the sources and the targets it asks for the metamodel and for its hops, and
links it, which asks for the candidates of its dependencies. The floor does nothing else. Combining
the question's selections into baselines, searching, and making the steps of the answer are not in
it.
"""

ROUNDS_OF_PROGRAM = """
Each question is asked of a new repository every time, so that linking counts; making the repository
from the parsed catalogue does not. Floor and path, and likewise every other pair that is compared,
are measured in turns in one process, each many times in two repetitions that are interleaved with
those of all other benchmarks; only engines that try everything get a single repetition. **The least
time of each counts**: what others do on the machine only ever adds to a time. For the same reason,
what takes more than some milliseconds is measured in processor time. But for the questions on two
threads, everything here has one thread and waits for nothing.
"""

ANSWERS = """
Every answer that is timed is checked. The least weight is known by construction for all families
but random, where it has to be that of the product graph, or, on larger catalogues, that of clingo
where clingo has one; blocked must have no path. A wrong answer fails the run.
"""


def document(results: Results) -> str:
    view = View(results)
    all_rows = rows(view)
    met = sum(row.is_met is True for row in all_rows)
    blocks = [
        "# Benchmarks",
        paragraph(
            f"Written by `scripts/bench.sh` from its run of {results.machine.date};"
            f" every number is of that run, which took {results.minutes:.0f} minutes."
        ),
        section("Targets", f"{met} of {counted(len(all_rows), 'target')} are met.", targets(view)),
        section("Machine", _machine_table(results.machine)),
        section(
            "Method",
            FAMILIES,
            table(["family", "what it is"], FAMILY_TABLE.items()),
            FLOOR,
            ROUNDS_OF_PROGRAM,
            _processes(results),
            ANSWERS,
        ),
        families(view),
        engines(view),
        clingo(view),
        operators(view),
        hard_questions(view),
        operations(view),
        python_package(view),
        stores(view),
        imports(view),
        batches(view),
        HARD_RUN.read_text().rstrip(),
    ]
    return "\n\n".join(blocks) + "\n"


def _processes(results: Results) -> str:
    limits = sorted({f"{each.limit:g} s" for each in results.families})
    return f"""
        Beside clingo, a question is asked in a process of its own with a limit on its time
        ({listed(limits)} for the families) and 8 GiB of memory, since a search cannot be
        interrupted. What takes less than {SHORT:g} s is asked {ROUNDS} times, of clingo as well,
        and the least time counts.
    """


def _machine_table(machine: Machine) -> str:
    cells = [
        ["processor", f"{machine.processor}, {counted(machine.cores, 'core')}"],
        ["memory", f"{machine.memory_gib:.0f} GiB"],
        ["system", machine.system],
        ["compiler", f"{machine.compiler}, {machine.build_type} build"],
        ["clingo", machine.clingo],
        ["revision", machine.revision],
        ["date", machine.date],
        ["busy processes before the run", f"{machine.load:.1f}"],
    ]
    return table(["", ""], cells)
