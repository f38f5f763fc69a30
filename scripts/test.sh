#!/usr/bin/env bash
# Sets up what is missing, builds with warnings as errors, and runs every test.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$top/scripts/setup.sh"
"$top/scripts/build.sh" ci
# Tests of the window render offscreen and need a private runtime folder.
export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}"
export XDG_RUNTIME_DIR="${XDG_RUNTIME_DIR:-$(mktemp -d)}"
cd "$top/build"
ctest --output-on-failure -j2
