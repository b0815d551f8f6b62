#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Sets up the machine, builds, runs every test, then builds the Debian package and has lintian
# check it (when lintian is there). --sanitize runs the same suite under
# AddressSanitizer and UndefinedBehaviorSanitizer in build-sanitize/.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
"$root/scripts/setup.sh"
build_dir=$("$root/scripts/build.sh" "$@" | tail -n 1)
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
(cd "$build_dir" && ctest --output-on-failure -j"${VORLANE_JOBS:-2}" --timeout 600)

# The Debian package as a distribution would take it: built in its own tree and checked by
# lintian. The suite has just run, so the package's build skips it; the sanitized run leaves the
# package to the plain one.
if [[ $# -eq 0 ]] && command -v lintian >/dev/null; then
  "$root/scripts/package.sh" --no-tests >/dev/null
fi
