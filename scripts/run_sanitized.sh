#!/usr/bin/env bash
# Runs a command built with sanitizers, or what starts such. Those of g++ 12 and clang 14 fail, at random, where the
# kernel places memory more at random than they foresaw: so it is placed the same every time, where that is allowed.
#
# usage: scripts/run_sanitized.sh COMMAND...
set -euo pipefail
if setarch -R true 2>/dev/null; then exec setarch -R "$@"; fi
exec "$@"
