#!/usr/bin/env python3
"""Writes a large JSON catalogue: families of metamodels in which each version needs the version of
the same number of the three before it in its family.

usage: make_large_catalogue.py FILE [METAMODELS [VERSIONS [DEPENDENCIES]]]    (1000, 200 and 3)
"""

import sys

FAMILY = 10


def main(file, metamodels=1000, versions=200, dependencies=3):
    # The first of all metamodels need nothing; they stand before every family.
    roots = [f"root-{number}" for number in range(dependencies)]
    members = [f"family-{number // FAMILY}-{number % FAMILY}" for number in range(metamodels - dependencies)]

    def needed(number):
        start = number - number % FAMILY
        return (roots + members[start:number])[-dependencies:] if dependencies else []

    needs = {name: [] for name in roots}
    needs.update({name: needed(number) for number, name in enumerate(members)})
    with open(file, "w", encoding="utf-8") as out:
        out.write('{"metamodels":[')
        separator = "\n"
        for name, others in needs.items():
            for version in range(1, versions + 1):
                listed = ",".join(f'{{"name":"{other}","range":"{version}.0.0"}}' for other in others)
                out.write(f'{separator}{{"name":"{name}","version":"{version}.0.0","dependencies":[{listed}]}}')
                separator = ",\n"
        out.write('],\n"hops":[')
        separator = "\n"
        for name in needs:
            for version in range(1, versions):
                out.write(f'{separator}{{"name":"{name}","from":"{version}.0.0","to":"{version + 1}.0.0",'
                          '"expensive":false}')
                separator = ",\n"
        out.write("]}\n")


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(sys.argv[1], *map(int, sys.argv[2:]))
