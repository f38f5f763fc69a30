#!/usr/bin/env bash
# Configures (once) and builds with a CMake preset: default, ci or asan.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
preset="${1:-default}"
cd "$top"
case "$preset" in
  asan) dir=build-asan ;;
  *) dir=build ;;
esac
if [[ ! -f "$dir/CMakeCache.txt" ]] || [[ "$(grep -c "HALCYRA_PRESET:STRING=$preset" "$dir/CMakeCache.txt" || true)" == 0 ]]; then
  cmake --preset "$preset" -DHALCYRA_PRESET="$preset" >/dev/null
fi
cmake --build "$dir"
