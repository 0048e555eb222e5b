#!/usr/bin/env bash
# Installs every Debian 12 package that building and testing needs.
set -euo pipefail

packages=(
  g++ clang cmake ninja-build                      # compilers and build
  clang-format clang-tidy libclang-rt-14-dev       # formatting, linting, clang's sanitizer runtimes
  libboost-log1.81-dev                             # brings the Boost 1.81 headers, Boost.Graph's too
  nlohmann-json3-dev libcli11-dev                  # catalogue reader and command line
  libsqlite3-dev                                   # catalogue stores
  libutf8proc-dev graphviz                         # widths of text on screens, drawings of graphs
  libgtest-dev libgmock-dev libbenchmark-dev       # tests and benchmarks
  pkg-config                                       # tests: hosts that find the library by it
  libxml2-utils                                    # tests: xmllint
  groff-base fish zsh                              # tests: manual page and completions
  git                                              # checks: which files are the repository's
  python3                                          # tests, and the benchmarks' harness
  gringo                                           # benchmarks: clingo to compare with
)
exec "$(dirname "$0")/install_packages.sh" "${packages[@]}"
