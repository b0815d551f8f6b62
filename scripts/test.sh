#!/usr/bin/env bash
# Sets up the machine, builds, and runs every test. --sanitize runs the same suite under
# AddressSanitizer and UndefinedBehaviorSanitizer in build-sanitize/.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
"$root/scripts/setup.sh"
build_dir=$("$root/scripts/build.sh" "$@" | tail -n 1)
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
cd "$build_dir"
ctest --output-on-failure -j"${VORLANE_JOBS:-2}" --timeout 600
