#!/usr/bin/env bash
# Installs the Debian 12 packages that testing pages in a browser needs.
set -euo pipefail
exec "$(dirname "$0")/install_packages.sh" chromium nodejs fonts-dejavu-core poppler-utils
