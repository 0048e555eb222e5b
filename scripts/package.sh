#!/usr/bin/env bash
# Builds the Debian packages into build/package/, has lintian check them, and has apt plan their installation. What
# lintian reports and is meant stands, with its reason, in packaging/*.lintian-overrides.
#
# usage: scripts/package.sh
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
scripts/setup_packaging.sh
# The packages are as old as the last commit, whenever they are built; without a history, as old as the build.
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null || date +%s)}
export SOURCE_DATE_EPOCH
cmake --preset package --log-level=WARNING
cmake --build --preset package
rm -f build/package/*.deb
(cd build/package && cpack)
# On a machine that has nothing yet, they can be installed beside either Boost of Debian 12, the default one first.
: >build/package/nothing-installed
for boost in libboost-dev libboost-log1.81-dev; do
  apt-get -s -qq -o Dir::State::status="$PWD/build/package/nothing-installed" install --no-install-recommends \
    ./build/package/*.deb "$boost" >/dev/null
done
lintian --allow-root --fail-on error,warning --tag-display-limit 0 build/package/*.deb
