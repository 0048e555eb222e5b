#!/usr/bin/env bash
# Installs the Debian 12 packages that building and testing the Python package needs.
set -euo pipefail
exec "$(dirname "$0")/install_packages.sh" python3-dev pybind11-dev python3-build python3-setuptools python3-wheel \
  python3-venv mypy
