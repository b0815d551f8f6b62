#!/usr/bin/env bash
# Builds the Debian package from scratch: a fresh build-package/ configured for /usr with Debian's
# default compiler and linker flags (what dpkg-buildflags gives a Debian package build), the test
# suite run on that very build, then `cpack -G DEB`. The last line on stdout is the .deb's path.
#   scripts/package.sh              build, test, package
#   scripts/package.sh --no-tests   build and package only
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build_dir="$root/build-package"
tests=ON
if [[ "${1:-}" == "--no-tests" ]]; then
  tests=OFF
fi
"$root/scripts/setup.sh"

rm -rf "$build_dir"
# CMake reads CFLAGS, CXXFLAGS and LDFLAGS but not CPPFLAGS, which carries _FORTIFY_SOURCE.
CFLAGS="$(dpkg-buildflags --get CFLAGS) $(dpkg-buildflags --get CPPFLAGS)"
CXXFLAGS="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)"
LDFLAGS=$(dpkg-buildflags --get LDFLAGS)
export CFLAGS CXXFLAGS LDFLAGS
# Build type None: the flags above and nothing else, as Debian's cmake helper does.
cmake -S "$root" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_INSTALL_PREFIX=/usr \
  -DVORLANE_BUILD_TESTS="$tests" -DVORLANE_BUILD_BENCHMARKS=OFF >&2
cmake --build "$build_dir" -- -j"${VORLANE_JOBS:-2}" >&2
if [[ "$tests" == ON ]]; then
  (cd "$build_dir" && ctest --output-on-failure -j"${VORLANE_JOBS:-2}" --timeout 600 >&2)
fi
(cd "$build_dir" && cpack -G DEB >&2)
ls "$build_dir"/vorlane_*.deb
