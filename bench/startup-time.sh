#!/usr/bin/env bash
# Whole-process start of `vorlane` to its first window on screen, on a vault of 100,000 services
# (or as told): the wall time from exec to the main window being viewable on an Xvfb display,
# seen from outside with xwininfo, so the program carries no timing hook of its own. Runs on a
# private session bus with an unlocked GNOME Keyring, as on a desktop.
#
#   bench/startup-time.sh [BUILD_DIR] [SERVICES] [RUNS]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
services=${2:-100000}
runs=${3:-5}
for tool in xvfb-run xwininfo; do
    command -v "$tool" >/dev/null || { echo "startup-time: $tool is missing" >&2; exit 1; }
done
vault=${TMPDIR:-/tmp}/vorlane-startup-$services.sqlite
if [[ ! -f $vault ]]; then
    "$build/src/cli/vorlane-cli" demo "$vault" --services "$services" >/dev/null
fi

# Inside the display: start, poll until the window is viewable, note the time, quit, and wait
# for the exit (the next start must not find this one still holding the vault).
measure='
for run in $(seq 1 "$RUNS"); do
    start=$(date +%s%N)
    "$APP" --vault "$VAULT" 2>/dev/null &
    pid=$!
    # The main window is the top level of class "vorlane" titled Vorlane (Qt also makes a 1 x 1
    # helper window with that title).
    until id=$(xwininfo -root -tree 2>/dev/null | awk "/\"Vorlane\": \\(\"vorlane\"/ {print \$1; exit}") &&
          [[ -n $id ]] && xwininfo -id "$id" 2>/dev/null | grep -q "Map State: IsViewable"; do
        kill -0 "$pid" 2>/dev/null || { echo "vorlane exited before showing a window" >&2; exit 1; }
        sleep 0.005
    done
    end=$(date +%s%N)
    rss=$(awk "/VmRSS/ {print int(\$2 / 1024)}" /proc/$pid/status)
    echo "run $run: $(( (end - start) / 1000000 )) ms to the first window, ${rss} MB resident"
    kill "$pid"
    wait "$pid" 2>/dev/null || true
done'
APP="$build/src/ui/vorlane" VAULT="$vault" RUNS="$runs" \
    "$root/tests/support/run-with-keyring.sh" \
    xvfb-run -a -s '-screen 0 1400x900x24' bash -c "$measure"
