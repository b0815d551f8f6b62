#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs, with apt-get, whatever a Debian 12 machine lacks for building, running and testing
# Vorlane. Quick and silent when everything is already there; works as root or through sudo.
set -euo pipefail

packages=(
  # build
  cmake ninja-build g++ pkg-config clang-format git
  # core
  libicu-dev libsqlite3-dev libssl-dev nlohmann-json3-dev libboost-dev
  libexpat1-dev # the importer's KeePass XML reader
  libargon2-dev zlib1g-dev # backups: the key from the backup password, the body's compression
  # platform and ui
  qt6-base-dev libqt6svg6 qt6-qpa-plugins libsecret-1-dev libpam0g-dev libglib2.0-dev
  breeze-icon-theme hicolor-icon-theme fonts-dejavu-core
  # one-time codes from QR images; the word list of generated passphrases
  libzbar-dev wamerican
  # tests and benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev
  oathtool
  poppler-utils
  dbus dbus-daemon dbus-bin gnome-keyring libpam-wrapper libpam-modules
  xvfb xauth sqlite3
  # tests only: libical, a strict RFC 5545 parser, reads the renewals calendar back
  libical-dev
  # checks of the desktop entry and the AppStream file; the Debian package (dpkg-shlibdeps, file)
  desktop-file-utils appstream dpkg-dev file
  # the manual pages written from the programs' --help; lintian's check of the package; zsh to
  # parse the completion of vorlane-cli
  help2man lintian zsh
  # fuzzing (clang's libFuzzer and sanitizer runtimes)
  clang libclang-rt-14-dev
)

missing=()
for p in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${db:Status-Abbrev}' "$p" 2>/dev/null || true)
  [[ "$status" == ii* ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

if [[ $(id -u) -eq 0 ]]; then
  sudo=()
elif command -v sudo >/dev/null; then
  sudo=(sudo)
else
  echo "setup: these packages are missing and neither root nor sudo is available: ${missing[*]}" >&2
  exit 1
fi

echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
