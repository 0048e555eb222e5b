#!/usr/bin/env bash
# Installs the Debian 12 packages that making and checking packages needs.
set -euo pipefail
exec "$(dirname "$0")/install_packages.sh" dpkg-dev lintian
