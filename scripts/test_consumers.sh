#!/usr/bin/env bash
# Installs a build and checks what a host can do with it. Into build/consumers/ go the installed tree, which is moved
# once to show that it may be, and the hosts that are built and run against it: by find_package (the examples too), by
# pkg-config, with the path finder as a part of their own build, shared or static, and with a platform of their own,
# embedded and installed, there without the search that learns. One host has the other Boost of Debian 12 than the build.
#
# usage: scripts/test_consumers.sh [PRESET]      the build to install: release (default), dev, clang
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
source=$PWD
work=$source/build/consumers
jobs=${JOBS:-$(nproc)}

step() { echo "== $*"; }

# Configures, builds and tests the host in FOLDER.
run_host() {
  local name=$1 folder=$2
  shift 2
  step "$name"
  cmake -S "$folder" -B "$work/$name" -G Ninja --log-level=WARNING -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 "$@" >/dev/null
  cmake --build "$work/$name" -j "$jobs" -- --quiet
  ctest --test-dir "$work/$name" --output-on-failure --no-tests=error | grep -E 'tests passed|Passed|Failed'
}

# Expects a host's configuration to fail, and to say TEXT.
expect_refusal() {
  local name=$1 folder=$2 text=$3
  shift 3
  step "$name"
  if cmake -S "$folder" -B "$work/$name" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" "$@" >"$work/$name.log" 2>&1; then
    echo "$name: configures, which it must not." >&2
    return 1
  fi
  tr -s '[:space:]' ' ' <"$work/$name.log" | grep -F "$text" >/dev/null ||
    { cat "$work/$name.log" >&2; return 1; }
}

# Compiles and runs a host's PROGRAM with what pkg-config says of the PACKAGE under PREFIX, for static libraries if the
# variable `static` says so.
run_pkg_config_host() {
  local name=$1 prefix=$2 package=$3 program=$4
  shift 4
  local -x PKG_CONFIG_PATH=$prefix/lib/pkgconfig
  step "$name"
  mkdir -p "$work/$name"
  # The flags are words to be split.
  # shellcheck disable=SC2046
  "$compiler" -std=c++20 "tests/consumer/programs/$program.cpp" -o "$work/$name/$program" "$@" \
    $(pkg-config ${static:+--static} --cflags --libs "$package") -Wl,-rpath,"$(pkg-config --variable=libdir "$package")"
  (cd "$work/$name" && "./$program")
}

# Compiles and runs the example in C with what pkg-config says under PREFIX.
run_c_host() {
  local name=$1 prefix=$2 package=tarn-evolution-catalogue-c
  local -x PKG_CONFIG_PATH=$prefix/lib/pkgconfig
  step "$name"
  mkdir -p "$work/$name"
  # The flags are words to be split.
  # shellcheck disable=SC2046
  gcc -std=c99 -pedantic -Wall -Wextra -Werror examples/from_c.c -o "$work/$name/from_c" \
    $(pkg-config ${static:+--static} --cflags --libs "$package") -Wl,-rpath,"$(pkg-config --variable=libdir "$package")"
  "$work/$name/from_c" >/dev/null
}

scripts/setup.sh
cmake --preset "$preset" --log-level=WARNING
cmake --build --preset "$preset" --target tarn_evolution_pathfinder evopath -- -j "$jobs"
compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "build/$preset/CMakeCache.txt")

step "installing"
rm -rf "$work"
DESTDIR='' cmake --install "build/$preset" --prefix "$work/first-place" >/dev/null
mv "$work/first-place" "$work/installed"
"$work/installed/bin/evopath" path data/operators.json --question >/dev/null

run_host find_package tests/consumer/installed -DCMAKE_PREFIX_PATH="$work/installed"
other_boost=$(scripts/unpack_other_boost.sh "$work/other_boost")
run_host find_package_other_boost tests/consumer/installed -DCMAKE_PREFIX_PATH="$work/installed" -DBoost_DIR="$other_boost"
run_host examples examples -DCMAKE_PREFIX_PATH="$work/installed"
run_pkg_config_host pkg_config "$work/installed" tarn-evolution-pathfinder consumer
run_pkg_config_host pkg_config_catalogue "$work/installed" tarn-evolution-catalogue catalogue_consumer
run_c_host pkg_config_c "$work/installed"
run_host embedded tests/consumer/embedded -DTARN_UNITY=ON
run_host embedded_foreign_platform tests/consumer/embedded -DFOREIGN_PLATFORM=ON -DTARN_INSTALL=ON -DTARN_UNITY=ON \
  -DTARN_LEARNING=OFF
cmake --install "$work/embedded_foreign_platform" --prefix "$work/installed-foreign" >/dev/null
run_host find_package_foreign_platform tests/consumer/installed -DFOREIGN_PLATFORM=ON -DCMAKE_PREFIX_PATH="$work/installed-foreign"
foreign=$work/find_package_foreign_platform/foreign_platform
run_pkg_config_host pkg_config_foreign_platform "$work/installed-foreign" tarn-evolution-pathfinder consumer \
  -I tests/consumer/foreign_platform/include -L "$foreign" -lforeign_platform -Wl,-rpath,"$foreign"
static_platform="foreign_platform is a static library"
expect_refusal static_platform tests/consumer/embedded "$static_platform" -DFOREIGN_PLATFORM=ON \
  -DFOREIGN_PLATFORM_KIND=STATIC
expect_refusal find_package_static_platform tests/consumer/installed "$static_platform" -DFOREIGN_PLATFORM=ON \
  -DFOREIGN_PLATFORM_KIND=STATIC -DCMAKE_PREFIX_PATH="$work/installed-foreign"
run_host embedded_static_foreign_platform tests/consumer/embedded -DFOREIGN_PLATFORM=ON -DFOREIGN_PLATFORM_KIND=STATIC \
  -DBUILD_SHARED_LIBS=OFF -DTARN_UNITY=ON
run_host embedded_static tests/consumer/embedded -DTARN_STATIC=ON -DTARN_INSTALL=ON -DTARN_BUILD_CATALOGUE=ON \
  -DTARN_UNITY=ON
cmake --install "$work/embedded_static" --prefix "$work/installed-static" >/dev/null
run_host find_package_static tests/consumer/installed -DCMAKE_PREFIX_PATH="$work/installed-static"
static=yes run_pkg_config_host pkg_config_static "$work/installed-static" tarn-evolution-pathfinder consumer
static=yes run_pkg_config_host pkg_config_static_catalogue "$work/installed-static" tarn-evolution-catalogue \
  catalogue_consumer
static=yes run_c_host pkg_config_static_c "$work/installed-static"
step "all hosts work"
