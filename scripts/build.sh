#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Configures and builds Vorlane into a build directory: build/ by default, build-sanitize/ with
# --sanitize (AddressSanitizer and UndefinedBehaviorSanitizer). Warnings in our code are errors
# here, and so in CI; a plain cmake build leaves them warnings. The build's own output goes to
# stderr; the last line on stdout is the build directory, for the scripts that call this one.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir="$root/build"
cmake_args=(-DVORLANE_WARNINGS_AS_ERRORS=ON)
if [[ "${1:-}" == "--sanitize" ]]; then
  build_dir="$root/build-sanitize"
  cmake_args+=(-DVORLANE_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug -DVORLANE_BUILD_BENCHMARKS=OFF)
fi
if [[ ! -f "$build_dir/build.ninja" ]]; then
  cmake -S "$root" -B "$build_dir" -G Ninja "${cmake_args[@]}" >&2
fi
# Two cores on the reference machine: more jobs only thrash memory.
cmake --build "$build_dir" -- -j"${VORLANE_JOBS:-2}" >&2
echo "$build_dir"
