"""Which sequence of lockstep version steps brings a model from one set of metamodel versions to
another.

    >>> catalogue = evopath.Catalogue.load("data/operators.json")
    >>> path = catalogue.find_path({"limitador-operator": "0.6.0"}, {"limitador-operator": "0.8.0"})
    >>> path.weight
    4
"""

from ._catalogue import Catalogue, Repository, Selection, check
from ._errors import (CannotBeLinked, CatalogueError, EvopathError, InconsistentData,
                      InvalidArgument, MemoryUsedUp, SearchStopped, TimedOut, TooManyCombinations,
                      UnknownVersion)
from ._model import (Alternatives, Dependency, Explanation, Finding, Hop, Metamodel, NamedVersion,
                     Path, Progress, Step, VersionRange)
from ._native import version as __version__

__all__ = [
    "Alternatives", "CannotBeLinked", "Catalogue", "CatalogueError", "Dependency", "EvopathError",
    "Explanation", "Finding", "Hop", "InconsistentData", "InvalidArgument", "MemoryUsedUp",
    "Metamodel", "NamedVersion", "Path", "Progress", "Repository", "SearchStopped", "Selection",
    "Step", "TimedOut", "TooManyCombinations", "UnknownVersion", "VersionRange", "__version__",
    "check",
]
