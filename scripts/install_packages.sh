#!/usr/bin/env bash
# Installs those of the named Debian packages that are missing. Asks nothing; takes no time when all are there.
#
# usage: scripts/install_packages.sh PACKAGE...
set -euo pipefail

missing=()
for package in "$@"; do
  state=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$state" = installed ] || missing+=("$package")
done
[ "${#missing[@]}" -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
install() { "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null; }
# The list of packages may have been fetched a moment ago, for others; if it is old or not there, it is fetched.
install 2>/dev/null || { "${as_root[@]}" apt-get update -qq && install; }
