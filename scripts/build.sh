#!/usr/bin/env bash
# Configures and builds Vorlane into a build directory: build/ by default, build-sanitize/ with
# --sanitize (AddressSanitizer and UndefinedBehaviorSanitizer).
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir="$root/build"
cmake_args=()
if [[ "${1:-}" == "--sanitize" ]]; then
  build_dir="$root/build-sanitize"
  cmake_args+=(-DVORLANE_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug -DVORLANE_BUILD_BENCHMARKS=OFF)
fi
if [[ ! -f "$build_dir/build.ninja" ]]; then
  cmake -S "$root" -B "$build_dir" -G Ninja "${cmake_args[@]}" >/dev/null
fi
# Two cores on the reference machine: more jobs only thrash memory.
cmake --build "$build_dir" -- -j"${VORLANE_JOBS:-2}"
echo "$build_dir"
