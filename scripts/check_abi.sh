#!/usr/bin/env bash
# Compares the binary interface of the path finder's library with the kept one, abi/tarn_evolution_pathfinder.abi: not
# only which symbols there are but also the sizes, members and virtual tables of the types behind them. A change that
# breaks programs built before asks for a new SONAME, and then for --update.
#
# usage: scripts/check_abi.sh [--update]
set -euo pipefail
cd "$(dirname "$0")/.."

kept=abi/tarn_evolution_pathfinder.abi
library=build/dev/pathfinder/libtarn_evolution_pathfinder.so
scripts/setup.sh
scripts/setup_packaging.sh
cmake --preset dev --log-level=WARNING
cmake --build --preset dev --target tarn_evolution_pathfinder

# Only what the public headers define counts; names of folders would differ from machine to machine.
headers=$(mktemp -d)
now=$headers/now.abi
trap 'rm -rf "$headers"' EXIT
DESTDIR='' cmake --install build/dev --prefix "$headers/installed" --component development >/dev/null
abidw --headers-dir "$headers/installed/include/tarn-evolution" --drop-private-types --no-corpus-path \
  --no-comp-dir-path --no-show-locs --no-elf-needed --out-file "$now" "$library"

if [ "${1:-}" = --update ]; then
  mkdir -p abi
  cp "$now" "$kept"
  exit
fi
abidiff "$kept" "$now" && echo "The binary interface is as kept."
