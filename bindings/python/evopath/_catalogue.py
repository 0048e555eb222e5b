"""What can be asked: catalogues, and repositories of a program's own."""

from __future__ import annotations

import abc
import json
import math
import os
import weakref
from collections.abc import Callable, Iterable, Mapping
from typing import Any, TypeVar, cast

from . import _native
from ._errors import InvalidArgument
from ._model import (Alternatives, Dependency, Direction, Explanation, Finding, Hop, Metamodel,
                     NamedVersion, Path, Progress, Severity, VersionRange)

Selection = Mapping[str, str]
_RangeTuple = tuple[str, str | None]
_DependencyTuple = tuple[str, list[_RangeTuple], bool]
_MetamodelTuple = tuple[str, str, str | None, list[_DependencyTuple]]
_HopTuple = tuple[str, str, str, bool]
_Row = TypeVar("_Row", Metamodel, Hop, Dependency, VersionRange)


def _text(value: object, what: str) -> str:
    if not isinstance(value, str):
        raise TypeError(f"{what} must be a str, not {type(value).__name__}")
    try:
        value.encode("utf-8")
    except UnicodeEncodeError as error:
        raise InvalidArgument(f"{what} is no Unicode text: {value!r}") from error
    return value


def _optional_text(value: object, what: str) -> str | None:
    return None if value is None else _text(value, what)


def _whole(value: object, what: str) -> int:
    if isinstance(value, bool) or not isinstance(value, int):
        raise TypeError(f"{what} must be an int, not {type(value).__name__}")
    if not 0 <= value < 2**64:
        raise InvalidArgument(f"{what} must be from 0 up to but without 2**64, not {value}")
    return value


def _choice(value: object, what: str, choices: tuple[str, ...]) -> str:
    if _text(value, what) not in choices:
        raise InvalidArgument(f"{what} must be one of {', '.join(choices)}, not {value!r}")
    return cast(str, value)


def _selection(selection: Selection, what: str) -> dict[str, str]:
    """As a plain dictionary; the library looks at what is in it."""
    if type(selection) is dict:
        return selection
    if not isinstance(selection, Mapping):
        raise TypeError(f"{what} must be a mapping of names to versions, "
                        f"not {type(selection).__name__}")
    return dict(selection.items())


def _rows(rows: Iterable[_Row], kind: type[_Row], what: str) -> list[_Row]:
    if isinstance(rows, (str, bytes)) or not isinstance(rows, Iterable):
        raise TypeError(f"{what} must be an iterable of {kind.__name__}, "
                        f"not {type(rows).__name__}")
    result = list(rows)
    for number, row in enumerate(result):
        if not isinstance(row, kind):
            raise TypeError(f"{what}[{number}] must be a {kind.__name__}, "
                            f"not {type(row).__name__}")
    return result


def _metamodel_tuples(rows: Iterable[Metamodel], what: str) -> list[_MetamodelTuple]:
    return [_metamodel_tuple(row, f"{what}[{number}]")
            for number, row in enumerate(_rows(rows, Metamodel, what))]


def _metamodel_tuple(row: Metamodel, what: str) -> _MetamodelTuple:
    return (_text(row.name, f"{what}.name"), _text(row.version, f"{what}.version"),
            _optional_text(row.semver, f"{what}.semver"),
            _dependency_tuples(row.dependencies, f"{what}.dependencies"))


def _dependency_tuples(rows: Iterable[Dependency], what: str) -> list[_DependencyTuple]:
    return [(_text(needed.name, f"{what}[{number}].name"),
             _range_tuples(needed, f"{what}[{number}]"), bool(needed.optional))
            for number, needed in enumerate(_rows(rows, Dependency, what))]


def _range_tuples(needed: Dependency, what: str) -> list[_RangeTuple]:
    others = _rows(needed.others, VersionRange, f"{what}.others")
    return [_range_tuple(needed, what),
            *(_range_tuple(other, f"{what}.others[{number}]")
              for number, other in enumerate(others))]


def _range_tuple(bounds: Dependency | VersionRange, what: str) -> _RangeTuple:
    return _text(bounds.lower, f"{what}.lower"), _optional_text(bounds.upper, f"{what}.upper")


def _hop_tuples(rows: Iterable[Hop], what: str) -> list[_HopTuple]:
    return [(_text(hop.name, f"{what}[{number}].name"),
             _text(hop.source, f"{what}[{number}].source"),
             _text(hop.target, f"{what}[{number}].target"), bool(hop.expensive))
            for number, hop in enumerate(_rows(rows, Hop, what))]


_NO_LIMITS = _native.Limits(None, None, None, None)


_Callback = TypeVar("_Callback", bound=Callable[..., object])


def _called(callback: _Callback, what: str) -> _Callback:
    if not callable(callback):
        raise TypeError(f"{what} must be callable, which {type(callback).__name__} is not")
    return callback


def _limits(timeout: float | None, memory: int | None,
            progress: Callable[[Progress], object] | None,
            better_path: Callable[[_native.Path], object] | None = None) -> _native.Limits:
    if timeout is None and memory is None and progress is None and better_path is None:
        return _NO_LIMITS
    if timeout is not None:
        if isinstance(timeout, bool) or not isinstance(timeout, (int, float)):
            raise TypeError(f"timeout must be a number of seconds, not {type(timeout).__name__}")
        if math.isnan(timeout) or timeout < 0:
            raise InvalidArgument(f"timeout must not be negative, as is {timeout!r}")
        timeout = min(float(min(timeout, 10**300)), 1e300)
    if memory is not None:
        memory = _whole(memory, "memory")
    if progress is None:
        return _native.Limits(timeout, memory, None, better_path)
    tell = _called(progress, "progress")

    def told(stage: int, least_proven: int, least_found: int | None) -> None:
        tell(Progress.of(stage, least_proven, least_found))

    return _native.Limits(timeout, memory, told, better_path)


_NO_CONDITIONS = _native.Conditions([], [])


def _conditions(avoid: Mapping[str, str | Iterable[str]] | None,
                pin: Mapping[str, str | None] | Iterable[str] | None) -> _native.Conditions:
    if not avoid and not pin:
        return _NO_CONDITIONS
    if avoid is not None and not isinstance(avoid, Mapping):
        raise TypeError(f"avoid must be a mapping of names to ranges, not {type(avoid).__name__}")
    if isinstance(pin, str) or not isinstance(pin, (Mapping, Iterable, type(None))):
        raise TypeError("pin must be a mapping of names to versions, or several names, "
                        f"not {type(pin).__name__}")
    avoided = []
    for name, ranges in (avoid or {}).items():
        for text in [ranges] if isinstance(ranges, str) else list(ranges):
            avoided.append((_text(name, "avoid: a name"), _text(text, f"avoid[{name!r}]")))
    pinned: list[tuple[str, str | None]] = []
    if isinstance(pin, Mapping):
        pinned = [(_text(name, "pin: a name"), _optional_text(version, f"pin[{name!r}]"))
                  for name, version in pin.items()]
    elif pin is not None:
        pinned = [(_text(name, "pin: a name"), None) for name in pin]
    return _native.Conditions(avoided, pinned)


class _Asked(abc.ABC):
    """What can be asked. Any number of threads may ask the same object at the same time; they do so
    side by side, for the global interpreter lock is not held while the library works."""

    @abc.abstractmethod
    def _repository(self) -> _native.Repository:
        """The library's own."""

    def find_path(self, source: Selection, target: Selection, *,
                  avoid: Mapping[str, str | Iterable[str]] | None = None,
                  pin: Mapping[str, str | None] | Iterable[str] | None = None,
                  timeout: float | None = None, memory: int | None = None,
                  progress: Callable[[Progress], object] | None = None,
                  better_path: Callable[[Path], object] | None = None) -> Path | None:
        """The path of least weight from one selection of versions to another; None: there is none.

        The path keeps clear of the versions in `avoid`, which has for a name a version, a range
        such as ">=1.2 <2", or several of these. It does not move the metamodels in `pin`; one that
        has a version there is not moved once it is at that version.

        `timeout` is in seconds, `memory` in bytes beside what is linked. `progress` is told when the
        stage or a bound of the search has changed, on this thread; what it raises ends the search,
        as Ctrl-C does. `better_path` is told likewise each path that the search meets before it
        knows the answer and that weighs less than those told before, not proven least: something
        to go by if a limit is reached. Paths under conditions are not told.

        Raises UnknownVersion, CannotBeLinked, TimedOut, MemoryUsedUp, and what callbacks raise;
        InvalidArgument for conditions on what is not known.
        """
        told = None
        if better_path is not None:
            tell = _called(better_path, "better_path")
            told = lambda path: tell(Path(path, self))  # noqa: E731
        found = self._repository().find_path(_selection(source, "source"),
                                             _selection(target, "target"),
                                             _limits(timeout, memory, progress, told),
                                             _conditions(avoid, pin))
        return None if found is None else Path(found, self)

    def find_direction(self, source: Selection, target: Selection, *,
                       timeout: float | None = None, memory: int | None = None,
                       progress: Callable[[Progress], object] | None = None) -> str | None:
        """The direction in which `find_path` looks: "forward" or "backward" where all metamodels
        that move from one selection to the other move so, "mixed" otherwise; None where a selection
        is not consistent."""
        return self._repository().find_direction(
            _selection(source, "source"), _selection(target, "target"),
            _limits(timeout, memory, progress))

    def explain(self, source: Selection, target: Selection, *, budget: int = 400,
                timeout: float | None = None, memory: int | None = None,
                progress: Callable[[Progress], object] | None = None) -> Explanation:
        """Why there is no path, and how near one can get, or that there is one. Asks at most about
        `budget` questions about parts of this one; the limits are those of all together."""
        found, text = self._repository().explain(
            _selection(source, "source"), _selection(target, "target"), _whole(budget, "budget"),
            _limits(timeout, memory, progress))
        return Explanation(json.loads(found)["kind"], text, found)

    def steps(self, at: Selection, *, direction: Direction = "any",
              limit: int = 10000) -> tuple[Alternatives, ...]:
        """The steps that leave each baseline of a selection; none where it is not consistent.

        Raises TooManyCombinations, before the first is tried, where there are more combinations of
        hops than `limit`: each metamodel that can move doubles their number or more.
        """
        _choice(direction, "direction", ("forward", "backward", "any"))
        listings = self._repository().steps(_selection(at, "at"), direction,
                                            _whole(limit, "limit"))
        return tuple(
            Alternatives(tuple(NamedVersion(*held) for held in sorted(baseline)),
                         tuple((way, step) for way, steps in groups for step in steps))
            for baseline, groups in listings)

    def forget_paths(self) -> None:
        """Forgets every path found: to be called when hops have changed, while nobody asks."""
        self._repository().forget_paths()


class Catalogue(_Asked):
    """A catalogue of metamodels and hops. `load` and `from_rows` make one."""

    def __init__(self, repository: _native.Repository) -> None:
        if not isinstance(repository, _native.Repository):
            raise TypeError("Catalogue.load and Catalogue.from_rows make catalogues")
        self._native = repository

    @classmethod
    def load(cls, path: str | os.PathLike[str]) -> Catalogue:
        """Opens a catalogue file: a JSON file, read as a whole, or a SQLite store, read on demand.
        Raises CatalogueError where it cannot be read or is unsound."""
        return cls(_native.load(_text(os.fspath(path), "path")))

    @classmethod
    def from_rows(cls, metamodels: Iterable[Metamodel], hops: Iterable[Hop]) -> Catalogue:
        """A catalogue of rows, whose order is the order of every answer. Raises CatalogueError where
        it is unsound: places count from zero, "/hops/2" is the third hop. Metamodels may depend on
        themselves, through others or not: such dependencies do not link, and bring nothing in."""
        return cls(_native.from_rows(_metamodel_tuples(metamodels, "metamodels"),
                                     _hop_tuples(hops, "hops")))

    @property
    def question(self) -> tuple[dict[str, str], dict[str, str]] | None:
        """The question that the catalogue comes with: its source and target."""
        found = self._native.question()
        return None if found is None else (dict(found[0]), dict(found[1]))

    def _repository(self) -> _native.Repository:
        return self._native


class Repository(_Asked):
    """To derive from, by programs with data of their own.

    What is answered must not change, but for hops (see `forget_paths`), and must be as sound as a
    catalogue has to be; and no metamodel may depend on itself, which is for requirements. The
    methods are called on the threads that ask, and what they raise reaches who asks. They may answer
    more than was asked for, as long as it is of that name.
    """

    __native: _native.Repository | None = None

    @abc.abstractmethod
    def find_metamodels(self, name: str,
                        ranges: tuple[VersionRange, ...] | None) -> Iterable[Metamodel]:
        """The versions of a metamodel of which the version, or what it stands for, lies in any of
        the ranges, in the preferred order; for None, all of them."""

    @abc.abstractmethod
    def find_hops(self, name: str, source: str | None) -> Iterable[Hop]:
        """The hops of a metamodel that leave a version; without a version, all of them."""

    def find_requirements(self, name: str, version: str) -> Iterable[Dependency] | None:
        """What a version needs without being linked to it: no step leads to where the one is held
        without the other, or, if that is optional, beside another version of it. None, as by
        default, if it is only the optional dependencies that `find_metamodels` tells."""
        return None

    def list_names(self) -> Iterable[str]:
        """The names of all metamodels, from which explanations suggest some. By default none."""
        return ()

    def _repository(self) -> _native.Repository:
        # Made on demand, for a class that is derived need not call this one's __init__. Of two that
        # threads make at once, one stays.
        if self.__native is None:
            made = _native.from_functions(*_functions_of(self))
            self.__dict__.setdefault("_Repository__native", made)
        return cast(_native.Repository, self.__native)

    def __getstate__(self) -> object:
        """Without the library's own: a copy, or what is pickled, answers for itself."""
        state = cast(Any, super()).__getstate__()
        own, *slots = state if isinstance(state, tuple) else (state,)
        if isinstance(own, dict):
            own = {name: value for name, value in own.items() if name != "_Repository__native"}
        return (own, *slots) if slots else own


def _functions_of(repository: Repository) -> tuple[Any, ...]:
    """What the library calls, and None for what it need not. It keeps them, and so they must not
    keep the repository, which keeps the library's; whoever asks does."""
    reference = weakref.ref(repository)

    def asked() -> Repository:
        return cast(Repository, reference())

    def find_metamodels(name: str, ranges: list[_RangeTuple] | None) -> list[_MetamodelTuple]:
        wanted = None if ranges is None else tuple(VersionRange(*bounds) for bounds in ranges)
        return _metamodel_tuples(asked().find_metamodels(name, wanted), "find_metamodels()")

    def find_hops(name: str, source: str | None) -> list[_HopTuple]:
        return _hop_tuples(asked().find_hops(name, source), "find_hops()")

    def list_names() -> list[str]:
        return [_text(name, "a name of list_names()") for name in asked().list_names()]

    def find_requirements(name: str, version: str) -> list[_DependencyTuple] | None:
        needed = asked().find_requirements(name, version)
        return None if needed is None else _dependency_tuples(needed, "find_requirements()")

    tells = type(repository).find_requirements is not Repository.find_requirements
    return find_metamodels, find_hops, list_names, find_requirements if tells else None


def check(path: str | os.PathLike[str], *, severity: Severity = "note") -> tuple[Finding, ...]:
    """All that is wrong with a catalogue file, sound or not, that is at least so severe."""
    _choice(severity, "severity", ("error", "warning", "note"))
    found = json.loads(_native.check(_text(os.fspath(path), "path"), severity))
    return tuple(Finding.of(finding) for finding in found["findings"])
