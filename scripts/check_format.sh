#!/usr/bin/env bash
# Checks that every C++ file is as clang-format writes it, that Python files and shell scripts parse, and that scripts
# can be run.
#
# usage: scripts/check_format.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
# All of these are asked for, so that one run shows every fault.
failed=0
git ls-files -z '*.hpp' '*.cpp' | xargs -0 -n 64 -P "$(nproc)" clang-format --dry-run --Werror || failed=1
git ls-files -z '*.py' | xargs -0 python3 -c '
import ast, sys
for file in sys.argv[1:]:
    with open(file, encoding="utf-8") as source:
        ast.parse(source.read(), file)' || failed=1
while IFS= read -r script; do
  bash -n "$script" || failed=1
  [ -x "$script" ] || { echo "$script is not executable." >&2; failed=1; }
done < <(git ls-files '*.sh' .ci)
exit "$failed"
