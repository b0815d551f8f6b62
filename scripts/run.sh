#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Sets up the machine, builds, and starts Vorlane. Arguments are passed to the program.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
"$root/scripts/setup.sh"
build_dir=$("$root/scripts/build.sh" | tail -n 1)
exec "$build_dir/src/ui/vorlane" "$@"
