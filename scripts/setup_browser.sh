#!/usr/bin/env bash
# Installs the Debian 12 packages that testing pages in a browser needs. Asks nothing; does nothing when all are there.
set -euo pipefail

missing=()
command -v chromium >/dev/null || missing+=(chromium)
command -v node >/dev/null || missing+=(nodejs)
fc-list 2>/dev/null | grep -q DejaVuSans.ttf || missing+=(fontconfig fonts-dejavu-core)
[ "${#missing[@]}" -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
