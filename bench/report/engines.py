"""The path finder beside engines that try everything."""
from __future__ import annotations

from harness.results import Measurement

from .markdown import counted, duration, section, significant, table, times
from .view import View, ratio

EXHAUSTIVE = """
The exhaustive engine is part of the path finder, which gives it small questions, up to a budget.
Here it runs alone and without a budget, on every catalogue of the families where it can finish
within seconds.
"""

PRODUCT_GRAPH = """
The textbook way: build the graph of all consistent baselines and all lockstep moves between them,
and have Boost.Graph search it (`dijkstra_shortest_paths_no_color_map` on a
`compressed_sparse_row_graph`). It gets the catalogue as numbers, asks no application and links
nothing, and knows only catalogues without linked variants. Its least weight has to be that of the
path.
"""


def engines(view: View) -> str:
    return section(
        "Trying everything",
        EXHAUSTIVE,
        _exhaustive_table(view),
        PRODUCT_GRAPH,
        _product_graph_table(view),
        _product_graph_note(view),
    )


def _exhaustive_table(view: View) -> str:
    def row(label: str, measurement: Measurement) -> list[str]:
        counters = measurement.counters
        return [
            label,
            duration(counters["exhaustive_seconds"]),
            duration(counters["path_seconds"]),
            times(ratio(measurement, "exhaustive_seconds", "path_seconds")),
            "yes" if counters["within_budget"] else "no",
        ]

    header = ["question", "exhaustive engine", "findPath", "advantage", "within the budget"]
    return table(header, (row(*entry) for entry in sorted(view.group("Exhaustive").items())))


def _both(measurement: Measurement) -> float:
    return measurement.counters["build_seconds"] + measurement.counters["search_seconds"]


def _product_graph_table(view: View) -> str:
    def row(label: str, measurement: Measurement) -> list[str]:
        counters = measurement.counters
        return [
            label,
            significant(counters["vertices"]),
            significant(counters["edges"]),
            duration(counters["build_seconds"]),
            duration(counters["search_seconds"]),
            duration(counters["path_seconds"]),
            times(_both(measurement) / counters["path_seconds"]),
        ]

    header = ["question", "baselines", "moves", "building", "searching", "findPath", "advantage"]
    return table(header, (row(*entry) for entry in sorted(view.group("ProductGraph").items())))


def _product_graph_note(view: View) -> str:
    graphs = list(view.group("ProductGraph").values())
    smaller = [each for each in graphs if _both(each) < each.counters["path_seconds"]]
    if not smaller:
        return ""
    most = max(each.counters["edges"] for each in smaller)
    return f"""
        The product graph is the faster one for {len(smaller)} of
        {counted(len(graphs), "question")}, with up to {significant(most)} moves: numbers in a list
        are cheaper than what the exhaustive engine does, which asks the application about each
        baseline, makes a real baseline of each move, and could tell of each in a trace. Where
        dependencies do not keep it small, though, every metamodel multiplies the moves: in
        `uniform` by five.
    """
