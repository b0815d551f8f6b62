#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Rebuilds the KeePass fixtures of the importer's tests with the real KeePassXC command-line tool
# (Debian's `keepassxc`, needed only to run this script, not to build or test):
#   1. writes keepass-source.xml, a KeePass 2 XML database with ISO 8601 dates (the encoding of
#      KDBX 3.1 exports) and keepass-300-source.xml (300 entries in 25 client groups),
#   2. has `keepassxc-cli import` turn each into a KDBX 4 database,
#   3. and `keepassxc-cli export` write them back as KeePass XML (KDBX 4: base64 dates) and CSV.
# The outputs are committed; run this again only to change what the fixtures hold.
set -euo pipefail
cd "$(dirname "$0")"
command -v keepassxc-cli >/dev/null || { echo "needs keepassxc-cli (apt install keepassxc)" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

python3 make-keepass-source.py

for name in keepass keepass-300; do
  # A throwaway password: the database only lives for the length of this script.
  printf 'fixture\nfixture\n' | keepassxc-cli import -q -p "$name-source.xml" "$work/$name.kdbx"
  printf 'fixture\n' | keepassxc-cli export -q -f xml "$work/$name.kdbx" > "keepassxc-$name-export.xml"
done
printf 'fixture\n' | keepassxc-cli export -q -f csv "$work/keepass.kdbx" > keepassxc-export.csv
echo "wrote keepassxc-keepass-export.xml, keepassxc-keepass-300-export.xml, keepassxc-export.csv"
