#!/usr/bin/env bash
# Compiles every source of libraries, tools, tests and benchmarks alone, with clang++ and warnings as errors, without
# making objects. Builds with TARN_UNITY compile many sources at once, so that one may lack an #include and nobody sees.
#
# usage: scripts/check_sources.sh [FILE...]      FILE: a source or folder to check, instead of those
set -euo pipefail
cd "$(dirname "$0")/.."

[ $# -gt 0 ] || set -- platform messages pathfinder catalogue tools tests fuzz bench
scripts/setup.sh
cmake --preset clang --log-level=WARNING >/dev/null
python3 scripts/check_sources.py build/clang "$@"
