#!/usr/bin/env bash
# Builds the fuzzers and runs each for a while, beginning with the inputs in fuzz/corpus/. What they find new goes to
# build/fuzz/corpus/; an input that makes one fail is left in build/fuzz/ and named at the end.
#
# usage: scripts/fuzz.sh [SECONDS]      60 for each, if not told otherwise
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
scripts/setup.sh
cmake --preset fuzz --log-level=WARNING
cmake --build --preset fuzz --target fuzz_json fuzz_sqlite
for form in json sqlite; do
  mkdir -p "build/fuzz/corpus/$form"
  "build/fuzz/fuzz/fuzz_$form" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=131072 \
    -dict="fuzz/$form.dict" -artifact_prefix="build/fuzz/$form-" -print_final_stats=1 -verbosity=0 \
    "build/fuzz/corpus/$form" "fuzz/corpus/$form"
done
