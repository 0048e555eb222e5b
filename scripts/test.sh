#!/usr/bin/env bash
# Builds one CMake preset and runs its tests.
#
# usage: scripts/test.sh [PRESET [CTEST-ARGUMENT...]]      PRESET: release (default), dev, asan-ubsan, tsan, clang
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
shift || true

scripts/build.sh "$preset"
case $preset in
  asan-ubsan | tsan) exec scripts/run_sanitized.sh ctest --preset "$preset" "$@" ;;
  *) exec ctest --preset "$preset" "$@" ;;
esac
