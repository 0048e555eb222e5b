"""What questions and answers consist of: values that never change, equal where their content is."""

from __future__ import annotations

import dataclasses
import html
import json
from collections.abc import Iterator, Mapping
from typing import Any, Literal

from . import _native

Stage = Literal["preparing", "exhaustive", "goal-directed", "learning"]
Direction = Literal["forward", "backward", "any"]
Severity = Literal["error", "warning", "note"]

_STAGES: tuple[Stage, ...] = ("preparing", "exhaustive", "goal-directed", "learning")


def _keep_as_tuple(value: object, field: str) -> None:
    """Values are hashable, and stay as they are, also where they were given a list."""
    if isinstance(getattr(value, field), list):
        object.__setattr__(value, field, tuple(getattr(value, field)))


@dataclasses.dataclass(frozen=True, slots=True)
class VersionRange:
    """The semantic versions from `lower` up to but without `upper`; without an upper bound, the one
    version `lower`, which may be a text version."""

    lower: str
    upper: str | None = None


@dataclasses.dataclass(frozen=True, slots=True)
class Dependency:
    """What a metamodel needs: another one, at a version of a range, or of any of several; if it is
    optional, only where that is there."""

    name: str
    lower: str
    upper: str | None = None
    others: tuple[VersionRange, ...] = ()  #: further ranges
    optional: bool = False

    def __post_init__(self) -> None:
        _keep_as_tuple(self, "others")


@dataclasses.dataclass(frozen=True, slots=True)
class Metamodel:
    """One version of one metamodel."""

    name: str
    version: str
    dependencies: tuple[Dependency, ...] = ()
    semver: str | None = None  #: what a text version stands for among the semantic versions

    def __post_init__(self) -> None:
        _keep_as_tuple(self, "dependencies")


@dataclasses.dataclass(frozen=True, slots=True)
class Hop:
    """A version step of one metamodel."""

    name: str
    source: str
    target: str
    expensive: bool = False

    def to_dict(self) -> dict[str, Any]:
        """As the tool's JSON has it."""
        return {"name": self.name, "from": self.source, "to": self.target,
                "expensive": self.expensive}


@dataclasses.dataclass(frozen=True, slots=True)
class NamedVersion:
    """A version of a metamodel."""

    name: str
    version: str

    def to_dict(self) -> dict[str, str]:
        """As the tool's JSON has it."""
        return {"name": self.name, "version": self.version}


@dataclasses.dataclass(frozen=True, slots=True)
class Step:
    """Hops that are taken in lockstep, and what they bring in by links, each by ascending name."""

    weight: int
    hops: tuple[Hop, ...]
    brought_in: tuple[NamedVersion, ...] = ()

    def to_dict(self) -> dict[str, Any]:
        """As the tool's JSON has it."""
        return {"weight": self.weight, "hops": [hop.to_dict() for hop in self.hops],
                "broughtIn": [named.to_dict() for named in self.brought_in]}


class Path:
    """The steps from one selection to another, in the order of application. Without steps where
    there is nothing to do; a path is true all the same. A value like the others, made by
    `find_path` only.

    What is more than steps and weight is made when it is first looked at, and asks the catalogue
    for it."""

    __slots__ = ("_native", "_asked", "_steps")

    def __init__(self, native: _native.Path, asked: object = None) -> None:
        if not isinstance(native, _native.Path):
            raise TypeError("find_path makes paths")
        self._native = native
        self._asked = asked  # lives as long as it may be asked for more
        self._steps: tuple[Step, ...] | None = None

    @property
    def steps(self) -> tuple[Step, ...]:
        """Made when they are first looked at, which takes longer than many a question."""
        if self._steps is None:
            self._steps = self._native.steps()
        return self._steps

    @property
    def weight(self) -> int:
        """Of all steps."""
        return self._native.weight

    def __iter__(self) -> Iterator[Step]:
        return iter(self.steps)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Path):
            return NotImplemented
        return self.steps == other.steps

    def __hash__(self) -> int:
        return hash(self.steps)

    def __repr__(self) -> str:
        return f"Path(steps={self.steps!r})"

    def __copy__(self) -> Path:
        return self

    def __deepcopy__(self, memo: dict[int, Any]) -> Path:
        return self

    def __reduce__(self) -> tuple[object, ...]:
        return Path, (self._native,)

    def to_dict(self) -> dict[str, Any]:
        """The plan that `evopath path --json` prints: with the question, what is held at the start
        and at the end, what ties the moves of each step, and the catalogue's notes."""
        result: dict[str, Any] = json.loads(self.render("json"))
        return result

    def render(self, format: Literal["text", "json", "svg", "html", "dot", "mermaid"]) -> str:
        """As `evopath path --format` prints it."""
        return self._native.render(format)

    def __str__(self) -> str:
        return self.render("text").rstrip("\n")

    def _repr_svg_(self) -> str:
        return self.render("svg")

    def _repr_html_(self) -> str:
        page = html.escape(self.render("html"), quote=True)
        return f'<iframe srcdoc="{page}" style="width: 100%; height: 30em; border: 0"></iframe>'


@dataclasses.dataclass(frozen=True, slots=True)
class Alternatives:
    """The steps that leave one baseline, each an alternative of the others: by direction and
    ascending weight. `steps` has them as pairs of direction ("forward", "backward", or "mixed" for
    both at once) and step."""

    baseline: tuple[NamedVersion, ...]
    steps: tuple[tuple[str, Step], ...]

    def to_dict(self) -> dict[str, Any]:
        """A baseline of what `evopath steps --json` prints."""
        return {"metamodels": {held.name: held.version for held in self.baseline},
                "steps": [{"direction": direction, **step.to_dict()} for direction, step in self.steps]}


@dataclasses.dataclass(frozen=True, slots=True)
class Explanation:
    """Why there is no path, and how near one can get, or that there is one."""

    kind: str  #: "path", "unknown", "inconsistent", "missing-chain" and so on
    text: str  #: for people
    _json: str = dataclasses.field(repr=False)

    def to_dict(self) -> dict[str, Any]:
        """As `evopath explain --json` prints it."""
        result: dict[str, Any] = json.loads(self._json)
        return result

    def __str__(self) -> str:
        return self.text.rstrip("\n")


@dataclasses.dataclass(frozen=True, slots=True)
class Finding:
    """One thing that is found in a catalogue."""

    code: str  #: such as "dependency-cycle"
    severity: Severity
    place: str  #: a JSON pointer, or a table's row
    message: str
    related: tuple[str, ...] = ()  #: further places

    @classmethod
    def of(cls, parts: Mapping[str, Any]) -> Finding:
        """From the tool's JSON."""
        return cls(parts["code"], parts["severity"], parts["place"], parts["message"],
                   tuple(parts["related"]))

    def to_dict(self) -> dict[str, Any]:
        """As `evopath check --json` prints it."""
        return {**dataclasses.asdict(self), "related": list(self.related)}


@dataclasses.dataclass(frozen=True, slots=True)
class Progress:
    """How far a search has come."""

    stage: Stage
    least_proven: int  #: no path weighs less
    least_found: int | None  #: a plan of this weight is known, which may not be the best

    @classmethod
    def of(cls, stage: int, least_proven: int, least_found: int | None) -> Progress:
        """From what the library hands out."""
        return cls(_STAGES[stage], least_proven, least_found)
