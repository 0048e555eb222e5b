"""The compiled part. Versions are texts; see the package's other modules for what all means."""

from collections.abc import Callable

from ._model import Step

version: str

_Texts = list[tuple[str, str]]
_Range = tuple[str, str | None]
_Dependency = tuple[str, list[_Range], bool]
_Metamodel = tuple[str, str, str | None, list[_Dependency]]
_Hop = tuple[str, str, str, bool]

class Path:
    @property
    def weight(self) -> int: ...
    def steps(self) -> tuple[Step, ...]: ...
    def render(self, format: str) -> str: ...

class Limits:
    def __init__(
        self,
        timeout: float | None,
        memory: int | None,
        progress: Callable[[int, int, int | None], object] | None,
        better_path: Callable[[Path], object] | None,
    ) -> None: ...

class Conditions:
    def __init__(
        self, avoided: list[tuple[str, str]], pinned: list[tuple[str, str | None]]
    ) -> None: ...

class Repository:
    def find_path(
        self, source: dict[str, str], target: dict[str, str], limits: Limits,
        conditions: Conditions,
    ) -> Path | None: ...
    def find_direction(
        self, source: dict[str, str], target: dict[str, str], limits: Limits
    ) -> str | None: ...
    def explain(
        self, source: dict[str, str], target: dict[str, str], budget: int, limits: Limits
    ) -> tuple[str, str]: ...
    def steps(
        self, at: dict[str, str], direction: str, limit: int
    ) -> list[tuple[_Texts, list[tuple[str, tuple[Step, ...]]]]]: ...
    def question(self) -> tuple[_Texts, _Texts] | None: ...
    def forget_paths(self) -> None: ...

def load(file: str) -> Repository: ...
def from_rows(metamodels: list[_Metamodel], hops: list[_Hop]) -> Repository: ...
def from_functions(
    find_metamodels: Callable[[str, list[_Range] | None], list[_Metamodel]],
    find_hops: Callable[[str, str | None], list[_Hop]],
    list_names: Callable[[], list[str]],
    find_requirements: Callable[[str, str], list[_Dependency] | None] | None,
) -> Repository: ...
def check(file: str, least: str) -> str: ...
