"""The command-line tool: python -m evopath COMMAND ..."""

import os
import pathlib
import sys

TOOL = pathlib.Path(__file__).parent / "bin" / "evopath"

if __name__ == "__main__":
    os.execv(TOOL, ["evopath", *sys.argv[1:]])
