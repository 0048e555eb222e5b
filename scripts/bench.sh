#!/usr/bin/env bash
# Sets the machine up, builds a release and runs the benchmarks. A full run takes some minutes and writes
# docs/benchmarks.md; a quick one takes seconds and writes no document unless it is told where.
#
# usage: scripts/bench.sh [--quick] [--document FILE]
set -euo pipefail
cd "$(dirname "$0")/.."

quick=()
document=()
while [ $# -gt 0 ]; do
  case $1 in
    --quick) quick=(--quick) ;;
    --document) document=(--document "${2:?--document needs a file}"); shift ;;
    *) sed -n 's/^# usage: /usage: /p' "$0" >&2; exit 2 ;;
  esac
  shift
done
[ "${#quick[@]}" -gt 0 ] || [ "${#document[@]}" -gt 0 ] || document=(--document docs/benchmarks.md)

scripts/setup.sh
cmake --preset release --log-level=WARNING -DTARN_BUILD_BENCHMARKS=ON
cmake --build --preset release --target pathfinder_benchmarks bench_question bench_store evopath
python3 bench/run_benchmarks.py --build build/release "${quick[@]}" "${document[@]}"
