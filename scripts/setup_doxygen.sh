#!/usr/bin/env bash
# Installs the Debian 12 package that the reference of the public headers is made with.
set -euo pipefail
exec "$(dirname "$0")/install_packages.sh" doxygen
