"""What goes wrong, each with its parts as fields."""

from ._model import Progress


class EvopathError(Exception):
    """The base of all exceptions of this package."""


class InvalidArgument(EvopathError, ValueError):
    """An argument, or a row, that cannot be: an empty name, a reversed range."""


class InconsistentData(EvopathError):
    """A repository has contradicted itself, or its metamodels depend on themselves."""


class CatalogueError(EvopathError):
    """A catalogue that cannot be read, or is unsound."""

    def __init__(self, message: str, file: str, place: str, reason: str) -> None:
        super().__init__(message)
        self.file = file  #: empty when there is none
        self.place = place  #: a JSON pointer, or a line and column, or empty
        self.reason = reason

    def __reduce__(self) -> tuple[object, ...]:
        return type(self), (self.args[0], self.file, self.place, self.reason)


class UnknownVersion(EvopathError, LookupError):
    """A selection names a metamodel or version that is not there."""

    def __init__(self, message: str, name: str, version: str) -> None:
        super().__init__(message)
        self.name = name
        self.version = version

    def __reduce__(self) -> tuple[object, ...]:
        return type(self), (self.args[0], self.name, self.version)


class CannotBeLinked(EvopathError):
    """The answer depends on a version whose dependencies cannot all be met."""


class TooManyCombinations(EvopathError):
    """There are more combinations of hops than were to be tried."""


class SearchStopped(EvopathError):
    """A limit was reached: whether there is a path is open."""

    def __init__(
        self, message: str, stage: int, least_proven: int, least_found: int | None
    ) -> None:
        super().__init__(message)
        self.progress = Progress.of(stage, least_proven, least_found)  #: how far it had come
        self._parts = stage, least_proven, least_found

    def __reduce__(self) -> tuple[object, ...]:
        return type(self), (self.args[0], *self._parts)


class TimedOut(SearchStopped, TimeoutError):
    """The timeout has passed."""


class MemoryUsedUp(SearchStopped):
    """The search needs more memory than it was allowed."""
