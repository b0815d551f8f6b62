#!/usr/bin/env bash
# Whole-process start of `vorlane` to its first window on screen, on a vault of 100,000 services
# (or as told): the wall time from exec to its first window being viewable on an Xvfb display,
# and to the main window (a vault that takes a while to open shows a window saying so first, and
# the main window, a new one, takes its place), seen from outside with xwininfo, so the program
# carries no timing hook of its own. Runs on a private session bus with an unlocked GNOME Keyring,
# as on a desktop.
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
# The viewable top levels of class "vorlane" titled Vorlane (Qt also makes a 1 x 1 helper window
# with that title, never mapped), other than the one given.
viewable() {
    for id in $(xwininfo -root -tree 2>/dev/null | awk "/\"Vorlane\": \\(\"vorlane\"/ {print \$1}"); do
        [[ $id != "$1" ]] && xwininfo -id "$id" 2>/dev/null | grep -q "Map State: IsViewable" &&
            echo "$id" && return
    done
}
for run in $(seq 1 "$RUNS"); do
    start=$(date +%s%N)
    "$APP" --vault "$VAULT" 2>/dev/null &
    pid=$!
    until first=$(viewable none) && [[ -n $first ]]; do
        kill -0 "$pid" 2>/dev/null || { echo "vorlane exited before showing a window" >&2; exit 1; }
        sleep 0.005
    done
    shown=$(date +%s%N)
    # A second window within 10 s is the main one; without one the first was.
    main=$shown
    while (( $(date +%s%N) - shown < 10000000000 )); do
        if [[ -n $(viewable "$first") ]]; then main=$(date +%s%N); break; fi
        sleep 0.005
    done
    rss=$(awk "/VmRSS/ {print int(\$2 / 1024)}" /proc/$pid/status)
    echo "run $run: $(( (shown - start) / 1000000 )) ms to the first window," \
         "$(( (main - start) / 1000000 )) ms to the main window, ${rss} MB resident"
    kill "$pid"
    wait "$pid" 2>/dev/null || true
done'
APP="$build/src/ui/vorlane" VAULT="$vault" RUNS="$runs" \
    "$root/tests/support/run-with-keyring.sh" \
    xvfb-run -a -s '-screen 0 1400x900x24' bash -c "$measure"
