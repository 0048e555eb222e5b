"""The facts that plan.lp reasons about."""
from __future__ import annotations

from collections.abc import Iterator

from .instance import Instance, Metamodel


def facts(instance: Instance, steps: int) -> str:
    """Metamodels and versions are numbered; clingo reads numbers faster than texts."""
    places = {metamodel.name: m for m, metamodel in enumerate(instance.metamodels)}
    numbers = [
        {version: v for v, version in enumerate(metamodel.versions)}
        for metamodel in instance.metamodels
    ]

    def facts_of(m: int, metamodel: Metamodel) -> Iterator[str]:
        number = numbers[m]
        start, goal = number[metamodel.start], number[metamodel.goal]
        yield f"mm({m}). init({m},{start}). goal({m},{goal})."
        for hop in metamodel.useful_hops:
            cost, ordinary = metamodel.reduced_cost(hop), int(not hop.expensive)
            yield f"hop({m},{number[hop.start]},{number[hop.end]},{cost},{ordinary})."
        for version, needs in metamodel.needs.items():
            for name, admitted in needs.items():
                need = f"{m},{number[version]},{places[name]}"
                yield f"needs({need})."
                for other in admitted:
                    yield f"allowed({need},{numbers[places[name]][other]})."

    lines = [f"#const k={steps}."]
    for m, metamodel in enumerate(instance.metamodels):
        lines += facts_of(m, metamodel)
    return "\n".join(lines)
