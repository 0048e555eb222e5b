#!/usr/bin/env bash
# Installs the Debian 12 packages that comparing binary interfaces needs.
set -euo pipefail
exec "$(dirname "$0")/install_packages.sh" abigail-tools xz-utils
