#!/usr/bin/env bash
# Compares the binary interface of the path finder's library with the kept one, abi/tarn_evolution_pathfinder.abi.xz:
# not only which symbols there are but also the sizes, members and virtual tables of the types behind them. A change
# that breaks programs built before asks for a new SONAME, and then for --update.
#
# usage: scripts/check_abi.sh [--update]
set -euo pipefail
cd "$(dirname "$0")/.."

kept=abi/tarn_evolution_pathfinder.abi.xz
library=build/dev/pathfinder/libtarn_evolution_pathfinder.so
scripts/setup.sh
scripts/setup_abi.sh
cmake --preset dev --log-level=WARNING >/dev/null
cmake --build --preset dev --target tarn_evolution_pathfinder

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Only what can be reached from the installed headers counts; folders would differ from machine to machine.
DESTDIR='' cmake --install build/dev --prefix "$work" --component development >/dev/null
abidw --headers-dir "$work/include/tarn-evolution" --drop-private-types --exported-interfaces-only --no-corpus-path \
  --no-comp-dir-path --no-show-locs --no-elf-needed --no-write-default-sizes --no-parameter-names "$library" |
  sed "s|path='$PWD/|path='|" >"$work/now.abi"

if [ "${1:-}" = --update ]; then
  mkdir -p abi
  xz -9ec "$work/now.abi" >"$kept"
  exit
fi
xz -dc "$kept" >"$work/kept.abi"
abidiff "$work/kept.abi" "$work/now.abi" && echo "The binary interface is as kept."
