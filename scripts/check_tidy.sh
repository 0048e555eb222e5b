#!/usr/bin/env bash
# Has clang-tidy check every source and header, by the rules in .clang-tidy.
#
# usage: scripts/check_tidy.sh [FILE...]      FILE: a source or folder to check, instead of all
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/setup_python.sh
cmake --preset clang --log-level=WARNING -DTARN_BUILD_PYTHON=ON -DPython3_EXECUTABLE=/usr/bin/python3 >/dev/null
python3 scripts/run_tidy.py build/clang "$@"
