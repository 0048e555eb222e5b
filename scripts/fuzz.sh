#!/usr/bin/env bash
# Builds the fuzzers and runs each for a while, beginning with the inputs in fuzz/corpus/. What they find new goes to
# build/fuzz/corpus/, where the next run begins as well. When one fails, the others are run all the same; the inputs
# that made them fail are left in build/fuzz/ and named at the end, and the exit status is 1.
#
# usage: scripts/fuzz.sh [SECONDS]      300 for each, if not told otherwise
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-300}
[[ $seconds =~ ^[1-9][0-9]*$ ]] || { sed -n 's/^# usage: /usage: /p' "$0" >&2; exit 2; }
scripts/setup.sh
cmake --preset fuzz --log-level=WARNING
cmake --build --preset fuzz

# Stacks of allocations take half of the time, and memory that is held back for long a third of the rest, for it is
# cold. The replay programs, which take what was found, keep both as they are.
export ASAN_OPTIONS=malloc_context_size=1:quarantine_size_mb=1:thread_local_quarantine_size_kb=64
failed=()
for form in version json sqlite operations; do
  corpus=build/fuzz/corpus/$form
  findings=build/fuzz/findings/$form
  mkdir -p "$corpus" "$findings"
  rm -f "$findings"/*
  # Entropic scheduling takes most of the time where inputs are short and reach much, as operations do.
  options=(-max_total_time="$seconds" -entropic=0 -timeout=10 -rss_limit_mb=2048 -artifact_prefix="$findings/"
    -print_final_stats=1 -verbosity=0 -print_funcs=0)
  case $form in
    version) options+=(-max_len=256) ;;
    operations) options+=(-max_len=512) ;;
    *) options+=(-max_len=131072) ;;
  esac
  [ ! -e "fuzz/$form.dict" ] || options+=(-dict="fuzz/$form.dict")
  echo "Fuzzing $form for $seconds seconds"
  scripts/run_sanitized.sh "build/fuzz/fuzz/fuzz_$form" "${options[@]}" "$corpus" "fuzz/corpus/$form" || failed+=("$form")
done

for form in "${failed[@]}"; do
  echo "The fuzzer of $form failed: $(ls -1 "build/fuzz/findings/$form"/* 2>/dev/null || echo "no input kept")"
done
[ ${#failed[@]} -eq 0 ]
