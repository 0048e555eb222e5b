#!/usr/bin/env bash
# Sets the machine up, builds a release and runs the benchmarks. A full run takes some minutes and writes
# docs/benchmarks.md; a quick one takes seconds and writes no document unless it is told where. --hard asks the hard
# questions alone, up to 4,000 metamodels, of clingo as well, which takes most of an hour; it writes
# bench/report/hard_run.md, which becomes a part of docs/benchmarks.md in the next full run. With options, such as
# --only random --sizes 256 1000 4000 --peer-limit 300, it only prints what it measures.
#
# usage: scripts/bench.sh [--quick] [--document FILE]
#        scripts/bench.sh --hard [OPTION OF bench/run_hard_questions.py...]
set -euo pipefail
cd "$(dirname "$0")/.."

quick=()
document=()
hard=no
while [ $# -gt 0 ]; do
  case $1 in
    --quick) quick=(--quick) ;;
    --document) document=(--document "${2:?--document needs a file}"); shift ;;
    --hard) hard=yes; shift; break ;;
    *) sed -n '/^# usage: /,/^[^#]/s/^# //p' "$0" >&2; exit 2 ;;
  esac
  shift
done
[ "${#quick[@]}" -gt 0 ] || [ "${#document[@]}" -gt 0 ] || document=(--document docs/benchmarks.md)

python=/usr/bin/python3  # which Debian's packages are for, whatever else there is
scripts/setup.sh
scripts/setup_python.sh
cmake --preset release --log-level=WARNING -DTARN_BUILD_BENCHMARKS=ON -DTARN_BUILD_PYTHON=ON \
  -DPython3_EXECUTABLE=$python
if [ "$hard" = yes ]; then
  cmake --build --preset release --target bench_question
  [ $# -gt 0 ] || set -- --document bench/report/hard_run.md
  exec "$python" bench/run_hard_questions.py --build build/release "$@"
fi
cmake --build --preset release --target pathfinder_benchmarks bench_question bench_store evopath_native evopath
"$python" bench/run_benchmarks.py --build build/release --python "${quick[@]}" "${document[@]}"
