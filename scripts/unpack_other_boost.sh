#!/usr/bin/env bash
# Unpacks into FOLDER the headers of that Boost which is not installed, of the two that Debian 12 has: they exclude one
# another. Prints the folder of its CMake package.
#
# usage: scripts/unpack_other_boost.sh FOLDER
set -euo pipefail
[ $# -eq 1 ] || { sed -n 's/^# usage: /usage: /p' "$0" >&2; exit 2; }

version=1.74
[ ! -e "/usr/lib/x86_64-linux-gnu/cmake/Boost-$version.0" ] || version=1.81
package=libboost$version-dev
mkdir -p "$1"
cd "$1"
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
download() { apt-get download -qq "$package" 2>/dev/null; }
download || { "${as_root[@]}" apt-get update -qq && download; }
dpkg-deb -x "$package"_*.deb .
rm "$package"_*.deb
echo "$PWD/usr/lib/x86_64-linux-gnu/cmake/Boost-$version.0"
