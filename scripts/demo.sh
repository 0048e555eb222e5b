#!/usr/bin/env bash
# Sets the machine up, builds evopath and answers the question of the catalogue in data/.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release --log-level=WARNING
cmake --build --preset release --target evopath
build/release/tools/evopath/evopath path data/operators.json --question
