#!/usr/bin/env bash
# Builds the fuzz preset (clang, libFuzzer, AddressSanitizer and UBSan; build-fuzz/) and runs
# every target of fuzz/ on its seeds for SECONDS (default 30) each, one after the other.
# Any crash, leak, sanitizer finding or broken property fails the run; the input that caused
# it is kept in build-fuzz/findings/<name>/ and the target's log is printed.
#   scripts/fuzz.sh [SECONDS]        each target for SECONDS (default 30)
#   scripts/fuzz.sh --budget TOTAL   TOTAL seconds shared by all targets, at least 5 each (CI)
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
usage() {
  echo "usage: scripts/fuzz.sh [seconds-per-target] | --budget total-seconds" >&2
  exit 2
}
budget=""
seconds=30
if [[ "${1:-}" == "--budget" ]]; then
  budget="${2:-}"
  [[ "$budget" =~ ^[0-9]+$ ]] && (( budget > 0 )) || usage
elif [[ $# -gt 0 ]]; then
  seconds="$1"
  [[ "$seconds" =~ ^[0-9]+$ ]] && (( seconds > 0 )) || usage
fi
cd "$top"
if [[ -n "$budget" ]]; then
  targets=(fuzz/corpus/*/)
  seconds=$(( budget / ${#targets[@]} ))
  (( seconds >= 5 )) || seconds=5
fi
if [[ ! -f build-fuzz/CMakeCache.txt ]]; then
  cmake --preset fuzz >/dev/null
fi
cmake --build --preset fuzz

export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
failed=()
for seeds in fuzz/corpus/*/; do
  name="$(basename "$seeds")"
  target="build-fuzz/fuzz/$name"
  if [[ ! -x "$target" ]]; then
    echo "fuzz: $name has seeds but no target (halcyra_add_fuzzer in fuzz/CMakeLists.txt)" >&2
    failed+=("$name")
    continue
  fi
  # New inputs go to a scratch folder in the build tree; the seeds in fuzz/ stay as they are.
  scratch="build-fuzz/corpus/$name"
  findings="build-fuzz/findings/$name"
  mkdir -p "$scratch" "$findings"
  log="build-fuzz/findings/$name.log"
  echo "fuzz: $name for ${seconds}s"
  if ! "$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
      -artifact_prefix="$findings/" "$scratch" "$seeds" >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    failed+=("$name")
  else
    grep -E '^stat::number_of_executed_units' "$log" | sed "s/^/  /" || true
  fi
done
if (( ${#failed[@]} )); then
  echo "fuzz: findings in: ${failed[*]} (inputs in build-fuzz/findings/)" >&2
  exit 1
fi
echo "fuzz: no findings"
