"""Asks for an explanation that takes minutes; to be interrupted from outside."""

import random
import signal
import sys

import evopath
from evopath import Dependency, Hop, Metamodel

GENERATOR = random.Random(0)
NAMES = [f"n{number:02}" for number in range(64)]
ROWS, HOPS = [], []
for position, name in enumerate(NAMES):
    others = GENERATOR.sample(NAMES[:position], min(position, 3))
    for version in range(1, 9):
        ROWS.append(Metamodel(name, f"{version}.0.0", tuple(
            Dependency(other, f"{max(1, version - 1)}.0.0", f"{version + 1}.0.0")
            for other in others)))
        HOPS += [Hop(name, f"{version}.0.0", f"{version + by}.0.0")
                 for by in (1, 2) if version + by < 9 and GENERATOR.random() < 0.7]

if sys.argv[1] == "quiet":
    signal.signal(signal.SIGINT, lambda *_: None)
catalogue = evopath.Catalogue.from_rows(ROWS, HOPS)
print("searching", flush=True)
try:
    catalogue.explain({name: "1.0.0" for name in NAMES}, {name: "8.0.0" for name in NAMES},
                      budget=10**6, timeout=3 if sys.argv[1] == "quiet" else None)
except (KeyboardInterrupt, evopath.SearchStopped) as error:
    print(type(error).__name__)
