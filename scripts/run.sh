#!/usr/bin/env bash
# Sets up what is missing, builds, and runs Halcyra. Without arguments it opens the window;
# with arguments it runs the command line, e.g. scripts/run.sh scan.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
"$top/scripts/setup.sh"
"$top/scripts/build.sh" default >&2
if [[ $# -gt 0 || ! -x "$top/build/bin/halcyra-gui" ]]; then
  exec "$top/build/bin/halcyra" "${@:---help}"
fi
exec "$top/build/bin/halcyra-gui"
