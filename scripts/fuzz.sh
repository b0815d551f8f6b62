#!/usr/bin/env bash
# Builds the libFuzzer targets with clang under AddressSanitizer and UndefinedBehaviorSanitizer
# in build-fuzz/ and runs one of them on its seed corpus.
#   scripts/fuzz.sh                 1,000,000 inputs to vorlane_paste_fuzzer
#   scripts/fuzz.sh 5000000         as many inputs as given
#   scripts/fuzz.sh -1 -max_len=1048576  extra libFuzzer options after the count (-1: no limit)
# New inputs that reach new code go to build-fuzz/corpus-paste/, so the seed corpus under
# fuzz/corpus/ stays as written; crashes are written to build-fuzz/ as crash-*.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="$root/build-fuzz"
runs=${1:-1000000}
shift || true

if [[ ! -f "$build/build.ninja" ]]; then
  CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DVORLANE_BUILD_FUZZERS=ON -DVORLANE_BUILD_TESTS=OFF -DVORLANE_BUILD_BENCHMARKS=OFF \
    "-DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer" \
    >/dev/null
fi
ninja -C "$build" -j"${VORLANE_JOBS:-2}" vorlane_paste_fuzzer

mkdir -p "$build/corpus-paste"
cd "$build"
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
# -timeout: one input must never take seconds; -rss_limit_mb: nor gigabytes.
exec ./fuzz/vorlane_paste_fuzzer -runs="$runs" -timeout=5 -rss_limit_mb=2048 -print_final_stats=1 \
  "$@" "$build/corpus-paste" "$root/fuzz/corpus"
