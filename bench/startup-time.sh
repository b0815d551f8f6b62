#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Whole-process start of `vorlane` on a vault of 100,000 services (or as told), seen from outside
# so that the program carries no timing hook of its own: the wall time from exec to its first
# window being mapped on an Xvfb display, to the main window (a vault that takes a while to open
# shows a window saying so first, and the main window, a new one, takes its place), and to the
# program answering a second start (see below). Runs on a private session bus with an unlocked
# GNOME Keyring, as on a desktop.
#
#   bench/startup-time.sh [BUILD_DIR] [SERVICES] [RUNS]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
services=${2:-100000}
runs=${3:-5}
for tool in xvfb-run xev; do
    command -v "$tool" >/dev/null || { echo "startup-time: $tool is missing" >&2; exit 1; }
done
vault=${TMPDIR:-/tmp}/vorlane-startup-$services.sqlite
if [[ ! -f $vault ]]; then
    "$build/src/cli/vorlane-cli" demo "$vault" --services "$services" >/dev/null
fi

# Inside the display: xev reports every window mapped on the screen as it happens (bash's own clock
# stamps each, so the watcher costs the program under test no CPU while it waits); the first map
# is the first window, a second one the main window (a vault that takes a while to open shows a
# window saying so first, and the main window takes its place). As soon as the first window is
# up, a second `vorlane` on the same vault asks the first to come forward and exits once it has:
# the first answers from its main loop once the main window is up and the loop is free, so that is
# when the window is usable. Quit, and wait for the exit (the next start must not find this one
# still holding the vault).
measure='
maps=$(mktemp)
milliseconds() { local t=${1/./}; echo $(( (10#$t - 10#${2/./}) / 1000 )); }
for run in $(seq 1 "$RUNS"); do
    : > "$maps"
    (stdbuf -oL xev -root -event substructure | while IFS= read -r line; do
        [[ $line == "MapNotify event"* ]] && echo "$EPOCHREALTIME"
    done > "$maps") &
    watcher=$!
    sleep 0.5 # until xev listens
    start=$EPOCHREALTIME
    "$APP" --vault "$VAULT" 2>/dev/null &
    pid=$!
    mapfile -t mapped < "$maps"
    while (( ${#mapped[@]} < 1 )); do
        kill -0 "$pid" 2>/dev/null || { echo "vorlane exited before showing a window" >&2; exit 1; }
        sleep 0.01
        mapfile -t mapped < "$maps"
    done
    first=${mapped[0]}
    # Asked as soon as anything is on screen: the answer comes once the main window is up and its
    # loop is free. A main window of its own maps before that answer (or just after it).
    if "$APP" --vault "$VAULT" 2>/dev/null; then
        answered="$(milliseconds "$EPOCHREALTIME" "$start") ms to answering"
    else
        answered="no answer (the second start gave up waiting)"
    fi
    sleep 0.3
    mapfile -t mapped < "$maps"
    main=${mapped[1]:-$first}
    rss=$(awk "/VmRSS/ {print int(\$2 / 1024)}" /proc/$pid/status)
    echo "run $run: $(milliseconds "$first" "$start") ms to the first window," \
         "$(milliseconds "$main" "$start") ms to the main window," \
         "$answered, ${rss} MB resident"
    kill "$pid"
    wait "$pid" 2>/dev/null || true
    # Once xev is gone its reader sees the end of the stream and the watcher ends.
    pkill -x -P "$watcher" xev || true
    wait "$watcher" 2>/dev/null || true
done
rm -f "$maps"'
APP="$build/src/ui/vorlane" VAULT="$vault" RUNS="$runs" \
    "$root/tests/support/run-with-keyring.sh" \
    xvfb-run -a -s '-screen 0 1400x900x24' bash ${STARTUP_TRACE:+-x} -c "$measure"
