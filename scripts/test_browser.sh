#!/usr/bin/env bash
# Builds evopath and tests the pages and pictures that it draws in headless Chromium.
#
# usage: scripts/test_browser.sh [FOLDER]      FOLDER: where to leave screenshots; none are taken without
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/setup_browser.sh
cmake --preset release --log-level=WARNING
cmake --build --preset release --target evopath
EVOPATH=build/release/tools/evopath/evopath SCREENSHOTS=${1:-} \
  node --test tests/browser/pages.test.mjs tests/browser/explorer.test.mjs
