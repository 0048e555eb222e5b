#!/usr/bin/env bash
# Has clang-tidy check every source and header, by the rules in .clang-tidy.
#
# usage: scripts/check_tidy.sh [FILE...]      FILE: a source or folder to check, instead of all
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset clang --log-level=WARNING >/dev/null
python3 scripts/run_tidy.py build/clang "$@"
