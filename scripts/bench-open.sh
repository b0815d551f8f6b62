#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Times opening a large vault as a whole process: `vorlane-cli --vault V search host7` starts,
# checks and reads the whole vault, searches it once and exits. Vaults of 10,000 and 100,000
# services are made once by `vorlane-cli demo` in the temp folder and reused.
#   scripts/bench-open.sh                    the vorlane-cli of build/
#   scripts/bench-open.sh OTHER-VORLANE-CLI  another build's, e.g. to compare with an older commit
# Wall time from hyperfine (mean of 10 runs after 2 warm-up runs; the file is in the page cache),
# peak memory (maximum resident set) from GNU time.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cli=$(realpath "${1:-$root/build/src/cli/vorlane-cli}")
for tool in hyperfine /usr/bin/time; do
  command -v "$tool" >/dev/null || { echo "bench-open.sh: needs $tool (apt-get install hyperfine time)" >&2; exit 1; }
done

for services in 10000 100000; do
  vault="${TMPDIR:-/tmp}/vorlane-open-$services.sqlite"
  if [[ ! -f "$vault" ]]; then
    "$cli" demo "$vault" --services "$services" >/dev/null
  fi
  command=("$cli" --vault "$vault" search host7)
  hyperfine --shell=none --warmup 2 --runs 10 --style basic "${command[*]}" |
    sed -n 's/^ *Time (mean ± σ): *\(.*\)$/'"$services"' services: \1/p'
  peak=$(/usr/bin/time -f %M "${command[@]}" 2>&1 >/dev/null | tail -n 1)
  echo "$services services: peak memory $((peak / 1024)) MB"
done
