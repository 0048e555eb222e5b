#!/usr/bin/env bash
# Sets the machine up and builds one CMake preset.
#
# usage: scripts/build.sh [PRESET [TARGET...]]      PRESET: release (default), dev, asan-ubsan, tsan, clang
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
shift || true

scripts/setup.sh
cmake --preset "$preset" --log-level=WARNING >/dev/null
targets=()
[ $# -eq 0 ] || targets=(--target "$@")
cmake --build --preset "$preset" "${targets[@]}"
