#!/usr/bin/env bash
# Installs a build and compiles every installed header alone, with g++ and clang++, seeing only what is installed. So a
# header that relies on another one before it, or on one that stays behind, is named. By an older standard, each that
# does not compile must say in its first error what it needs.
#
# usage: scripts/check_headers.sh [PRESET]      the build to install: release (default), dev, clang
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
work=build/headers
scripts/setup.sh
cmake --preset "$preset" --log-level=WARNING
cmake --build --preset "$preset" --target tarn_evolution_pathfinder evopath
rm -rf "$work"
DESTDIR='' cmake --install "build/$preset" --prefix "$PWD/$work" >/dev/null

export include=$work/include/tarn-evolution
check() {
  "$1" -std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Werror -I "$include" -x c++ - <<<"#include \"$2\"" ||
    { echo "$1: $2 does not compile alone." >&2; return 1; }
}
announces() {
  local said
  said=$(g++ -std=c++17 -fsyntax-only -I "$include" -x c++ - <<<"#include \"$1\"" 2>&1) && return
  grep -m1 'error:' <<<"$said" | grep -q 'needs C++20' ||
    { echo "g++: $1 does not say at once that it needs C++20." >&2; return 1; }
}
export -f check announces
headers=$(cd "$include" && find . -name '*.hpp' -printf '%P\n' | sort)
for compiler in g++ clang++; do
  xargs -P "$(nproc)" -I{} bash -c "check $compiler {}" <<<"$headers"
  echo "$compiler: $(wc -l <<<"$headers") headers compile alone."
done
xargs -P "$(nproc)" -I{} bash -c "announces {}" <<<"$headers"
echo "All say what they need."

for compiler in "gcc -std=c99 -x c" "clang -std=c99 -x c" "g++ -std=c++20 -x c++" "clang++ -std=c++20 -x c++"; do
  # The compiler is words to be split.
  # shellcheck disable=SC2086
  $compiler -fsyntax-only -Wall -Wextra -Wpedantic -Werror -I "$include" - <<<'#include "tarn_evolution_catalogue.h"'
done
echo "The header for C compiles as C99 and as C++."
