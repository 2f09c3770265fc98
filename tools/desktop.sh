# Starting the program on the present desktop or, without one, on a display and a session bus of its own. Sourced by ./dev.
# Everything started here is ended by endDesktop, which is safe to call at any time and more than once.

desktopProcesses=()  # in the order they were started
displayIsVirtual=no

# startDisplay: a virtual display where there is no real one.
startDisplay() {
    [[ -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]] && return
    displayIsVirtual=yes
    # A session of its own: Ctrl-C in the terminal must reach the program before its display goes.
    local number
    mkfifo "$workDirectory/display"
    setsid Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$workDirectory/display" 2>"$workDirectory/xvfb.log" &
    desktopProcesses+=($!)
    read -rt 20 number <"$workDirectory/display" || fail "Xvfb did not start: $(cat "$workDirectory/xvfb.log")"
    DISPLAY=:$number
    export DISPLAY
    # Without a graphics card the software renderer is the fast one, and its pictures are always the same.
    export QT_QUICK_BACKEND=${QT_QUICK_BACKEND:-software}
}

# startBus: a session bus where there is none.
startBus() {
    [[ -n ${DBUS_SESSION_BUS_ADDRESS:-} ]] && return
    [[ -n ${XDG_RUNTIME_DIR:-} && -S $XDG_RUNTIME_DIR/bus ]] && return
    if [[ -z ${XDG_RUNTIME_DIR:-} ]]; then
        export XDG_RUNTIME_DIR=$workDirectory/runtime
        mkdir -m 700 "$XDG_RUNTIME_DIR"
    fi
    mkfifo "$workDirectory/bus"
    setsid dbus-daemon --session --nofork --nopidfile --print-address=3 3>"$workDirectory/bus" 2>"$workDirectory/bus.log" &
    desktopProcesses+=($!)
    read -rt 20 DBUS_SESSION_BUS_ADDRESS <"$workDirectory/bus" ||
        fail "dbus-daemon did not start: $(cat "$workDirectory/bus.log")"
    export DBUS_SESSION_BUS_ADDRESS
}

# takePicture PROCESS FILE: a picture of the program's window, once that is on screen and has something drawn in it.
takePicture() {
    local window colours attempt
    window=$(timeout 60 xdotool search --sync --onlyvisible --pid "$1" --name . 2>/dev/null | tail -n 1) || true
    if [[ -z $window ]]; then
        say "The program opened no window within a minute."
        return
    fi
    # A window is on screen a moment before its first frame, and until then it has one colour.
    for attempt in {1..50}; do
        import -silent -display "$DISPLAY" -window "$window" "$2"
        colours=$(identify -format %k "$2")
        [[ $colours -gt 8 ]] && break
        sleep 0.1
    done
    say "A picture of the window: $2"
}

# endProcess PROCESS: asks once, waits, and insists only after five seconds.
endProcess() {
    kill -TERM "$1" 2>/dev/null || return 0
    timeout 5 tail -f --pid="$1" /dev/null || kill -KILL "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}

endDesktop() {
    local index
    for ((index = ${#desktopProcesses[@]} - 1; index >= 0; index--)); do
        endProcess "${desktopProcesses[index]}"
    done
    desktopProcesses=()
}

# runProgram PICTURE COMMAND...: the program until it ends or Ctrl-C, with its display and bus. Returns its exit status, and
# 0 when it was interrupted.
runProgram() {
    local picture=$1 program status=0 interrupted=no
    shift
    startBus
    startDisplay
    trap 'interrupted=yes' INT TERM HUP
    "$@" </dev/null &
    program=$!
    desktopProcesses+=("$program")
    if [[ $displayIsVirtual == yes ]]; then
        rm -f "$picture"
        takePicture "$program" "$picture" &
        desktopProcesses+=($!)
        say "There is no display, so the program runs on a virtual one ($DISPLAY). Ctrl-C ends it."
    fi
    wait "$program" || status=$?
    [[ $interrupted == yes ]] && status=0
    endDesktop
    return "$status"
}
