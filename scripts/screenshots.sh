#!/usr/bin/env bash
# Draws every screen of the window into PNG files, without a display: each phase of every tool
# whose screens are built in, each tour page, settings, about and the open-source notices.
# Fails if QML reports any warning.
#
#   scripts/screenshots.sh [OUTPUT_DIR]      (default: docs/screenshots)
#
# Uses build/bin/halcyra-shots (built with the window); set HALCYRA_BUILD_DIR for another build.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${HALCYRA_BUILD_DIR:-$top/build}"
out="${1:-$top/docs/screenshots}"
if [[ ! -x "$build/bin/halcyra-shots" ]]; then
  "$top/scripts/setup.sh"
  "$top/scripts/build.sh" default >&2
fi
export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
exec "$build/bin/halcyra-shots" "$out"
