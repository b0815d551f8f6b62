#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the Debian package from scratch: a fresh build-package/ configured for /usr with Debian's
# default compiler and linker flags (what dpkg-buildflags gives a Debian package build), the test
# suite run on that very build, then `cpack -G DEB`, then lintian on the package. The last line on
# stdout is the .deb's path.
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
deb=$(ls "$build_dir"/vorlane_*.deb)

# What a distribution would check first: lintian's errors and warnings fail the build (an
# override would be installed as /usr/share/lintian/overrides/vorlane, each with a comment saying
# why). It says nothing on a clean package;
# under root it complains about that instead, so there it runs as nobody, on a copy that nobody
# can read wherever the tree is.
lintian=(lintian --fail-on error,warning)
checked=$deb
if [[ $(id -u) -eq 0 ]] && id nobody >/dev/null 2>&1; then
  copy_dir=$(mktemp -d)
  trap 'rm -rf "$copy_dir"' EXIT
  chmod 755 "$copy_dir"
  cp "$deb" "$copy_dir/" && chmod 644 "$copy_dir"/*.deb
  checked=$(ls "$copy_dir"/*.deb)
  lintian=(runuser -u nobody -- "${lintian[@]}")
fi
if ! "${lintian[@]}" "$checked" >&2; then
  echo "package: lintian rejects $deb" >&2
  exit 1
fi
echo "$deb"
