#!/usr/bin/env bash
# Measures which lines and branches of the libraries the tests reach. Shows a table; what is not reached is marked, source
# by source, in build/coverage/html/index.html.
#
# usage: scripts/coverage.sh [CTEST-ARGUMENT...]      as -R Engines; without, all tests
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup_coverage.sh
scripts/build.sh coverage
# A file for each process, put together when it ends: tests start thousands of processes.
profiles=build/coverage/profiles
rm -rf "$profiles"
failed=0
LLVM_PROFILE_FILE="$PWD/$profiles/%8m" ctest --preset coverage "$@" || failed=1

llvm-profdata merge -sparse -o build/coverage/all.profdata "$profiles"/*
measured=()
for program in build/coverage/tests/*_tests build/coverage/tools/evopath/evopath build/coverage/pathfinder/*.so \
  build/coverage/catalogue/*.so; do
  measured+=(-object "$program")
done
show() {
  llvm-cov "$@" -instr-profile=build/coverage/all.profdata "${measured[@]:1}" \
    -ignore-filename-regex="^$PWD/(tests|fuzz|tools|examples|build|bench|platform)/|^/usr/"
}
show show -format=html -output-dir=build/coverage/html -show-branches=count -show-instantiations=false >/dev/null
show report -show-functions=false -show-region-summary=false -show-branch-summary=true
exit "$failed"
