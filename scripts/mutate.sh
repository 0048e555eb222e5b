#!/usr/bin/env bash
# Mutation testing: makes small faults in the sources, one at a time, and lists those that no test finds: file, line and
# what it was and became. The sources stay as they are; a copy in build/mutants/ is changed and built. All mutants of a
# run are compiled at once, and the environment tells a test program which one to be.
#
# usage: scripts/mutate.sh [--count N] [--seed S] [--matching REGEX] [--tests FILTER] [--jobs N] [FILE-OR-FOLDER...]
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
exec nice -n 10 scripts/mutate.py "$@"
