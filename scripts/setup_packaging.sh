#!/usr/bin/env bash
# Installs the Debian 12 packages that checking packages and the binary interface needs. Asks nothing; does nothing when
# all are there.
set -euo pipefail

missing=()
command -v lintian >/dev/null || missing+=(lintian)
command -v abidw >/dev/null || missing+=(abigail-tools)
command -v dpkg-shlibdeps >/dev/null || missing+=(dpkg-dev)
command -v xz >/dev/null || missing+=(xz-utils)
[ "${#missing[@]}" -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
