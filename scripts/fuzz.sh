#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the libFuzzer targets with clang under AddressSanitizer and UndefinedBehaviorSanitizer
# in build-fuzz/ and runs one of them on its seed corpus.
#   scripts/fuzz.sh                        1,000,000 inputs to the paste parser
#   scripts/fuzz.sh bundle                 1,000,000 inputs to the export bundle reader
#   scripts/fuzz.sh backup                 the same for the backup file reader
#   scripts/fuzz.sh keepassxml             the same for an importer's reader: keepassxml,
#                                          keepassxccsv, bitwardenjson, bitwardencsv,
#                                          onepasswordcsv, lastpasscsv, spreadsheet
#   scripts/fuzz.sh paste 5000000          as many inputs as given
#   scripts/fuzz.sh paste -1 -max_len=1048576  extra libFuzzer options after the count (-1: no limit)
# New inputs that reach new code go to build-fuzz/corpus-TARGET/, so the seed corpus under
# fuzz/TARGET-corpus/ stays as written; crashes are written to build-fuzz/ as crash-*.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build="$root/build-fuzz"
target=paste
if [[ "${1:-}" =~ ^(paste|bundle|backup|keepassxml|keepassxccsv|bitwardenjson|bitwardencsv|onepasswordcsv|lastpasscsv|spreadsheet)$ ]]; then
  target=$1
  shift
fi
runs=${1:-1000000}
shift || true

if [[ ! -f "$build/build.ninja" ]]; then
  CC=clang CXX=clang++ cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DVORLANE_BUILD_FUZZERS=ON -DVORLANE_BUILD_TESTS=OFF -DVORLANE_BUILD_BENCHMARKS=OFF \
    "-DCMAKE_CXX_FLAGS=-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer" \
    >/dev/null
fi
ninja -C "$build" -j"${VORLANE_JOBS:-2}" "vorlane_${target}_fuzzer"

mkdir -p "$build/corpus-$target"
cd "$build"
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
# -timeout: one input must never take seconds; -rss_limit_mb: nor gigabytes.
exec "./fuzz/vorlane_${target}_fuzzer" -runs="$runs" -timeout=5 -rss_limit_mb=2048 -print_final_stats=1 \
  "$@" "$build/corpus-$target" "$root/fuzz/$target-corpus"
