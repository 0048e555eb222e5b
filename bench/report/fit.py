"""How fast times grow."""
from __future__ import annotations

from collections.abc import Sequence
from math import log

Point = tuple[int, float]  # number of metamodels, seconds


def exponent(points: Sequence[Point]) -> float | None:
    """The k of the n^k that fits best: least squares over the logarithms of both."""
    if len(points) < 2:
        return None
    xs = [log(n) for n, _ in points]
    ys = [log(seconds) for _, seconds in points]
    mean_x, mean_y = sum(xs) / len(xs), sum(ys) / len(ys)
    covariance = sum((x - mean_x) * (y - mean_y) for x, y in zip(xs, ys))
    return covariance / sum((x - mean_x) ** 2 for x in xs)
