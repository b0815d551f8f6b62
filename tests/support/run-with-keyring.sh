#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs a command on a private session bus with a fresh, unlocked GNOME Keyring, so that tests use
# the real Secret Service without touching the user's own keyring or the desktop session.
#
#   run-with-keyring.sh COMMAND [ARGS...]
#
# Every run gets its own HOME, XDG folders, bus and keyring daemon, so parallel runs (ctest -j)
# never see each other's items. The daemon's "login" keyring is created on first unlock and is
# the default collection. The command's exit status is passed on; the temp folders are removed.
set -eu

if [ "$#" -eq 0 ]; then
    echo "usage: $0 COMMAND [ARGS...]" >&2
    exit 2
fi
for tool in dbus-run-session gnome-keyring-daemon; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "run-with-keyring: $tool is missing (scripts/setup.sh installs it)" >&2
        exit 1
    fi
done

root=$(mktemp -d "${TMPDIR:-/tmp}/vorlane-keyring.XXXXXX")
trap 'rm -rf "$root"' EXIT
trap 'exit 130' INT TERM
mkdir -p "$root/home" "$root/data" "$root/config" "$root/cache" "$root/runtime"
chmod 700 "$root" "$root/runtime"

# Nothing of the caller's desktop may leak in: no display to autolaunch a bus from, no outer bus.
unset DISPLAY WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS GNOME_KEYRING_CONTROL SSH_AUTH_SOCK
export HOME="$root/home"
export XDG_DATA_HOME="$root/data"
export XDG_CONFIG_HOME="$root/config"
export XDG_CACHE_HOME="$root/cache"
export XDG_RUNTIME_DIR="$root/runtime"
# The throwaway password of the test keyring; tests that lock it use it to unlock it again, and
# its presence tells them they run on a private keyring, not the user's own.
export VORLANE_TEST_KEYRING_PASSWORD="vorlane-test"

# The inner shell starts the daemon on the private bus, unlocks (and so creates) the login keyring
# with a throwaway password, adopts the variables the daemon prints, waits until the daemon owns
# its bus name with "login" as the default collection, then runs the command. The daemon returns
# before it has claimed the name; a client that called that early would make the bus activate a
# second daemon. The daemon leaves when dbus-run-session tears the bus down after the command
# ends. stdin is /dev/null so that the run never waits on a terminal, in CI or not.
status=0
dbus-run-session -- sh -c '
    daemon_env=$(printf "%s" "$VORLANE_TEST_KEYRING_PASSWORD" | gnome-keyring-daemon --daemonize --unlock --components=secrets) || {
        echo "run-with-keyring: gnome-keyring-daemon did not start" >&2
        exit 1
    }
    for assignment in $daemon_env; do
        case "$assignment" in
            [A-Z]*=*) export "$assignment" ;;
        esac
    done

    ask() {
        dbus-send --session --print-reply=literal --reply-timeout=2000 "$@" 2>/dev/null
    }
    tries=0
    until ask --dest=org.freedesktop.DBus /org/freedesktop/DBus \
            org.freedesktop.DBus.NameHasOwner string:org.freedesktop.secrets | grep -q true &&
          ask --dest=org.freedesktop.secrets /org/freedesktop/secrets \
            org.freedesktop.Secret.Service.ReadAlias string:default | grep -q /collection/login; do
        tries=$((tries + 1))
        if [ "$tries" -ge 100 ]; then
            echo "run-with-keyring: the keyring did not come up within 10 seconds" >&2
            exit 1
        fi
        sleep 0.1
    done
    exec "$@"
' run-with-keyring "$@" </dev/null || status=$?
exit "$status"
