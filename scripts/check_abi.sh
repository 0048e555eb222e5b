#!/usr/bin/env bash
# Compares the binary interfaces of the path finder's library, and that for C of the catalogue library, with the kept
# ones, abi/NAME.abi.xz: not only which symbols there are but also the sizes, members and virtual tables of the types
# behind them. A change that breaks programs built before asks for a new SONAME, and then for --update.
#
# usage: scripts/check_abi.sh [--update]
set -euo pipefail
cd "$(dirname "$0")/.."

mode=${1:-}
scripts/setup.sh
scripts/setup_abi.sh
cmake --preset dev --log-level=WARNING >/dev/null
cmake --build --preset dev --target tarn_evolution_pathfinder tarn_evolution_catalogue

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for component in development catalogue_development; do
  DESTDIR='' cmake --install build/dev --prefix "$work" --component "$component" >/dev/null
done
# The interface for C stands in a folder of its own, so that it is told from that for C++.
include=$work/include/tarn-evolution
mkdir "$work/c"
mv "$include"/tarn_evolution_catalogue*.h "$work/c"
cat >"$work/c_only.supp" <<'END'
[suppress_function]
symbol_name_not_regexp = ^tarn_evolution_
[suppress_variable]
symbol_name_regexp = .*
END

# Only what can be reached from the installed headers counts; folders would differ from machine to machine.
check() {
  local name=$1 library=$2 headers=$3
  shift 3
  abidw --headers-dir "$headers" --drop-private-types --exported-interfaces-only --no-corpus-path --no-comp-dir-path \
    --no-show-locs --no-elf-needed --no-write-default-sizes --no-parameter-names "$@" "$library" |
    sed "s|path='$PWD/|path='|" >"$work/$name.now"
  if [ "$mode" = --update ]; then
    xz -9ec "$work/$name.now" >"abi/$name.abi.xz"
    return
  fi
  xz -dc "abi/$name.abi.xz" >"$work/$name.kept"
  abidiff "$work/$name.kept" "$work/$name.now" && echo "The binary interface $name is as kept."
}

check tarn_evolution_pathfinder build/dev/pathfinder/libtarn_evolution_pathfinder.so "$include"
check tarn_evolution_catalogue_c build/dev/catalogue/libtarn_evolution_catalogue.so "$work/c" \
  --suppressions "$work/c_only.supp"
