"""What the path finder is made of, each by itself."""
from __future__ import annotations

from .markdown import duration, section, significant, table, times
from .view import View, ratio

LINKING = """
A whole depends on some parts, each at any of its versions: 3x10 stands for three parts of ten
versions, which make a thousand linked variants. *Linking* makes them on a new repository. *A
selection* combines the whole alone, which then is linked already, into one baseline for each
variant. *Alternatives* combines all variants with all versions of the parts, of which most do not
agree.
"""

CACHE = """
A question between baselines that has been asked before, beside hashing the two baselines and
copying the path, which no cache of copies can do without.
"""

THREADS = """
The same asked by one thread and by two at once, and the answer destroyed every time. Here all time
counts that passes, and what else the machine does shows.
"""

TRACE = """
A trace point whose level is off, in a loop, beside the same loop with one load and one branch.
"""

VERSIONS = """
Reading and comparing versions, for one version each.
"""


def operations(view: View) -> str:
    return section(
        "Operations by themselves",
        LINKING,
        _linking_table(view),
        CACHE,
        _cache_table(view),
        THREADS,
        _thread_table(view),
        TRACE,
        _trace_table(view),
        VERSIONS,
        _version_table(view),
    )


def _linking_table(view: View) -> str:
    groups = [view.group(name) for name in ("Link", "CombineSelection", "CombineAlternatives")]
    rows = [
        [
            shape,
            significant(linked.counters["results"], 4),
            *(duration(group[shape].seconds) for group in groups),
        ]
        for shape, linked in groups[0].items()
    ]
    return table(["parts", "variants", "linking", "a selection", "alternatives"], sorted(rows))


def _cache_table(view: View) -> str:
    rows = [
        [
            label,
            duration(each.counters["cached_seconds"]),
            duration(each.counters["copy_seconds"]),
            times(ratio(each, "cached_seconds", "copy_seconds")),
        ]
        for label, each in sorted(view.group("Cached").items())
    ]
    return table(["question", "findPath", "hashing and copying", "ratio"], rows)


def _thread_table(view: View) -> str:
    measured = view.group("CachedOnThreads")
    rows = []
    for label in sorted({name.rsplit("/", 1)[0] for name in measured}):
        one, two = (measured[f"{label}/threads:{count}"].counters["questions"] for count in (1, 2))
        rows.append([label, significant(one), significant(two), times(two / one)])
    header = ["question", "answers a second, one thread", "two threads", "ratio"]
    return table(header, rows)


def _trace_table(view: View) -> str:
    rows = [
        [
            duration(each.counters["trace_seconds"]),
            duration(each.counters["empty_seconds"]),
            f"{ratio(each, 'trace_seconds', 'empty_seconds'):.3f}",
        ]
        for each in view.group("Trace").values()
    ]
    return table(["trace point", "load and branch", "ratio"], rows)


def _version_table(view: View) -> str:
    rows = [
        [name.replace("_", " "), duration(1 / each.counters["items_per_second"])]
        for name, each in view.group("Version").items()
    ]
    return table(["operation", "time"], sorted(rows))
