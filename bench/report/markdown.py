"""Numbers, lists and tables as text."""
from __future__ import annotations

from collections.abc import Iterable, Sequence
from textwrap import fill

from harness.results import Answer, Outcome

UNITS = ((1.0, "s"), (1e-3, "ms"), (1e-6, "µs"), (1e-9, "ns"))
NOT_MEASURED = "–"
WIDTH = 115  # of a paragraph


def significant(value: float, digits: int = 3) -> str:
    """Plain notation, with thousands set off."""
    rounded = float(f"{value:.{digits}g}")
    if abs(rounded) >= 10 ** (digits - 1):
        return f"{rounded:,.0f}"
    return f"{rounded:.{digits}g}"


def duration(seconds: float | None) -> str:
    if seconds is None:
        return NOT_MEASURED
    factor, unit = next((each for each in UNITS if seconds >= each[0]), (1e-9, "ns"))
    return f"{significant(seconds / factor)} {unit}"


def times(ratio: float | None) -> str:
    """0.034x, 0.97x, 1.0x, 4.8x, 57x, 2,340x"""
    if ratio is None:
        return NOT_MEASURED
    if 0.1 <= ratio < 9.95:
        return f"{ratio:.1f}x" if ratio >= 0.995 else f"{ratio:.2f}x"
    return f"{significant(ratio, 2 if ratio < 100 else 3)}x"


def answer_time(answer: Answer) -> str:
    """How long an answer took, or what kept it away."""
    if answer.outcome is Outcome.TIME_LIMIT:
        return f"> {answer.seconds:g} s"
    if answer.outcome is Outcome.MEMORY_LIMIT:
        return "out of memory"
    return duration(answer.seconds)


def counted(number: int, noun: str) -> str:
    return f"{number} {noun}" if number == 1 else f"{number} {noun}s"


def listed(parts: Sequence[str]) -> str:
    """'a, b and c'."""
    if len(parts) < 2:
        return "".join(parts)
    return f"{', '.join(parts[:-1])} and {parts[-1]}"


def table(header: Sequence[str], rows: Iterable[Sequence[str]]) -> str:
    lines = [header, ["---"] * len(header), *rows]
    return "\n".join(f"| {' | '.join(line)} |" for line in lines)


def paragraph(text: str) -> str:
    return fill(" ".join(text.split()), WIDTH, break_long_words=False, break_on_hyphens=False)


def section(title: str, *blocks: str) -> str:
    """Tables stay as they are, everything else becomes a paragraph."""
    written = (block if block.startswith("|") else paragraph(block) for block in blocks)
    return "\n\n".join([f"## {title}", *(block for block in written if block)])
