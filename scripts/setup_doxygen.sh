#!/usr/bin/env bash
# Installs the Debian 12 package that the reference of the public headers is made with. Asks nothing; does nothing when
# it is there.
set -euo pipefail

command -v doxygen >/dev/null && exit 0

echo "Installing: doxygen"
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends doxygen >/dev/null
