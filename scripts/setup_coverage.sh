#!/usr/bin/env bash
# Installs the Debian 12 packages that measuring coverage needs.
set -euo pipefail
exec "$(dirname "$0")/install_packages.sh" llvm
