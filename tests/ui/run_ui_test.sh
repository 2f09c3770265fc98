#!/bin/sh
# Runs one script against the program on a display, a session bus and an accessibility bus of its own, in a home of its own.
# usage: run_ui_test.sh PROGRAM SCRIPT [ARGUMENT...]
# The environment decides the rest: QT_SCALE_FACTOR, CAIRNFIELD_SCREEN (default 1600x1200x24), CAIRNFIELD_UI_PICTURES (a folder
# for the pictures that scripts take; without it they go with the home).
set -eu

program=$1
script=$2
shift 2

place=$(mktemp -d "${TMPDIR:-/tmp}/cairnfield-ui.XXXXXX")
server=
finish() {
    if [ -n "$server" ]; then kill "$server" 2>/dev/null || true; fi
    chmod -R u+rwX "$place" 2>/dev/null || true
    rm -rf "$place"
}
trap finish EXIT
trap 'exit 130' INT TERM

mkdir -m 700 "$place/runtime" "$place/home"
mkfifo "$place/display"
Xvfb -displayfd 3 -screen 0 "${CAIRNFIELD_SCREEN:-1600x1200x24}" -nolisten tcp -noreset 3>"$place/display" 2>/dev/null &
server=$!
read -r number <"$place/display"

unset XDG_DATA_HOME XDG_CONFIG_HOME XDG_CACHE_HOME XDG_STATE_HOME WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS AT_SPI_BUS_ADDRESS
export DISPLAY=":$number" HOME="$place/home" XDG_RUNTIME_DIR="$place/runtime" XDG_CURRENT_DESKTOP=none LC_ALL=C.UTF-8 TZ=UTC
export QT_QPA_PLATFORM=xcb QT_QUICK_BACKEND=software QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 GIT_CONFIG_NOSYSTEM=1 NO_AT_BRIDGE=0
export CAIRNFIELD_PROGRAM="$program" CAIRNFIELD_UI_PICTURES="${CAIRNFIELD_UI_PICTURES:-$place}"
PYTHONPATH=$(dirname "$0")
export PYTHONPATH PYTHONDONTWRITEBYTECODE=1 LSAN_OPTIONS="suppressions=$PYTHONPATH/lsan.supp:print_suppressions=0"

dbus-run-session -- /usr/bin/python3 -W ignore::DeprecationWarning "$script" "$@"
