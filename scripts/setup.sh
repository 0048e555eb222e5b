#!/usr/bin/env bash
# Installs every Debian 12 package that building and testing needs.
set -euo pipefail

# Of the two versions of Boost in Debian 12, which exclude one another, the one that is there does.
boost=libboost-log1.81-dev
[ "$(dpkg-query -W -f '${db:Status-Status}' libboost-log1.74-dev 2>/dev/null || true)" != installed ] ||
  boost=libboost-log1.74-dev

packages=(
  g++ clang cmake ninja-build                      # compilers and build
  clang-format clang-tidy libclang-rt-14-dev       # formatting, linting, clang's sanitizer runtimes
  "$boost"                                         # brings the headers of Boost, Boost.Graph's too
  libcadical-dev                                   # the solver of the search that learns
  nlohmann-json3-dev libcli11-dev                  # catalogue reader and command line
  libsqlite3-dev                                   # catalogue stores
  libyaml-dev                                      # catalogues of other programs
  libutf8proc-dev graphviz                         # widths of text on screens, drawings of graphs
  libgtest-dev libgmock-dev libbenchmark-dev       # tests and benchmarks
  pkg-config                                       # tests: hosts that find the library by it
  libxml2-utils librsvg2-bin                       # tests: xmllint, and a program that draws SVG
  groff-base fish zsh                              # tests: manual page and completions
  git                                              # checks: which files are the repository's
  python3 python3-jsonschema python3-yaml parallel # tests, and the benchmarks' harness
  gringo                                           # benchmarks: clingo to compare with
)
exec "$(dirname "$0")/install_packages.sh" "${packages[@]}"
