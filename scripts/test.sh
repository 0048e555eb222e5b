#!/usr/bin/env bash
# Sets the machine up, builds one CMake preset and runs its tests.
#
# usage: scripts/test.sh [PRESET [CTEST-ARGUMENT...]]      PRESET: release (default), dev, asan-ubsan, tsan, clang
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
shift || true

scripts/setup.sh
cmake --preset "$preset" --log-level=WARNING
cmake --build --preset "$preset"
ctest --preset "$preset" "$@"
