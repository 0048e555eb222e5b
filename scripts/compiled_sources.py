"""Which sources a build compiles, and how. For scripts that look at each."""

import json
import shlex
from pathlib import Path

root = Path(__file__).resolve().parent.parent


def compiled_sources(build, only=()):
    """Each source of the repository, or of the folders and files in `only`, with the flags that it is first compiled
    with."""
    build = Path(build).resolve()
    wanted = [Path(name).resolve() for name in only] or [root]
    sources = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = (Path(entry["directory"]) / entry["file"]).resolve()
        if any(source.is_relative_to(name) for name in wanted) and not source.is_relative_to(build):
            words = shlex.split(entry["command"])
            sources.setdefault(source, tuple(words[1:words.index("-o")]))
    return sources
