#!/usr/bin/env bash
# Compares the binary interfaces of the path finder's library, and of the catalogue library the one for C, with the kept
# ones, abi/NAME.abi.xz: not only which symbols there are but also the sizes, members and virtual tables of the types
# behind them; and the constants for C with abi/tarn_evolution_catalogue_c.txt. A change that breaks programs built
# before asks for a new SONAME, and then for --update.
#
# usage: scripts/check_abi.sh [--update]
set -euo pipefail
cd "$(dirname "$0")/.."

update=no
[ "${1:-}" != --update ] || update=yes
scripts/setup.sh
scripts/setup_abi.sh
cmake --preset dev --log-level=WARNING >/dev/null
cmake --build --preset dev --target tarn_evolution_pathfinder
# What C sees is in few sources, so that the others may be compiled many at once.
cmake --preset dev -B build/abi --no-warn-unused-cli --log-level=WARNING -DTARN_UNITY=ON -DTARN_BUILD_TOOLS=OFF \
  -DTARN_BUILD_CATALOGUE=ON -DTARN_BUILD_EXAMPLES=OFF -DTARN_BUILD_TESTS=OFF >/dev/null
cmake --build build/abi --target tarn_evolution_catalogue

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
DESTDIR='' cmake --install build/dev --prefix "$work" --component development >/dev/null
DESTDIR='' cmake --install build/abi --prefix "$work/catalogue" --component catalogue_development >/dev/null
# The headers for C stand in a folder of their own, which tells them from those for C++.
mkdir "$work/c"
mv "$work"/catalogue/include/tarn-evolution/tarn_evolution_catalogue{,_version}.h "$work/c"
cat >"$work/c.supp" <<'END'
[suppress_function]
  symbol_name_not_regexp = ^tarn_evolution_
  drop = true
[suppress_variable]
  symbol_name_regexp = .
  drop = true
END

failed=0
# check_library NAME LIBRARY HEADERS...: only what can be reached from the installed headers counts; folders would differ
# from machine to machine.
check_library() {
  local name=$1 library=$2 headers=$3
  shift 3
  abidw --headers-dir "$headers" --drop-private-types --exported-interfaces-only --no-corpus-path --no-comp-dir-path \
    --no-show-locs --no-elf-needed --no-write-default-sizes --no-parameter-names "$@" "$library" |
    sed "s|path='$PWD/|path='|" >"$work/$name.now"
  if [ "$update" = yes ]; then
    xz -9ec "$work/$name.now" >"abi/$name.abi.xz"
    return
  fi
  xz -dc "abi/$name.abi.xz" >"$work/$name.kept"
  tell "$name" abidiff "$work/$name.kept" "$work/$name.now"
}

# No function names the types of the constants.
check_constants() {
  local kept=abi/tarn_evolution_catalogue_c.txt
  grep -oE '^ *(enum \{ )?(TARN_EVOLUTION_[A-Z_]+ = -?[0-9]+,? ?)+' "$work/c/tarn_evolution_catalogue.h" |
    grep -oE 'TARN_EVOLUTION_[A-Z_]+ = -?[0-9]+' >"$work/constants"
  if [ "$update" = yes ]; then
    cp "$work/constants" "$kept"
    return
  fi
  tell "constants for C" diff "$kept" "$work/constants"
}

# tell WHAT COMMAND...: runs the comparison and says how it went.
tell() {
  local what=$1
  shift
  if "$@"; then
    echo "As kept: $what."
  else
    echo "Not as kept: $what." >&2
    failed=1
  fi
}

check_library tarn_evolution_pathfinder build/dev/pathfinder/libtarn_evolution_pathfinder.so \
  "$work/include/tarn-evolution"
check_library tarn_evolution_catalogue_c build/abi/catalogue/libtarn_evolution_catalogue.so "$work/c" \
  --suppressions "$work/c.supp"
check_constants
exit "$failed"
