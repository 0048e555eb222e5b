#!/usr/bin/env bash
# Builds the Python package evopath, checks its types and tests it in a fresh virtual environment. Leaves the wheel in
# build/release/python/.
#
# usage: scripts/python.sh
set -euo pipefail
cd "$(dirname "$0")/.."

work=build/release/python
python=/usr/bin/python3  # which Debian's packages are for, whatever else there is
scripts/setup.sh
scripts/setup_python.sh
cmake --preset release --log-level=WARNING -DTARN_BUILD_PYTHON=ON -DPython3_EXECUTABLE=$python >/dev/null
cmake --build --preset release --target evopath_native evopath

rm -rf "$work"
DESTDIR='' cmake --install build/release --component python --prefix "$PWD/$work/package" >/dev/null
(cd "$work/package" && "$python" -m mypy --strict --no-error-summary -p evopath)
"$python" -m build --wheel --no-isolation --outdir "$work" "$work/package" >"$work/build.log" ||
  { cat "$work/build.log" >&2; exit 1; }
"$python" -m venv "$work/environment"
"$work/environment/bin/pip" --quiet install --no-index --no-deps "$work"/evopath-*.whl
"$work/environment/bin/python" -X dev -W error -m unittest discover -s bindings/python/tests
ls "$work"/*.whl
