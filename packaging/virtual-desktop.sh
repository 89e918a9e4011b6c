# A desktop on a virtual display with homes of its own, for the scripts that show Veyla at work;
# sourced with `set -euo pipefail` on and `pictures` set to the folder for screenshots. Everything
# that was started ends with the script.
# shellcheck shell=bash

folder=$(mktemp -d)
children=()

# Whether a process that this script started still runs.
is_running() { kill -0 "$1" 2>/dev/null; }

clean_up() {
    local status=$? index tries
    trap - EXIT INT TERM
    # Clients before the server that they talk to.
    for ((index = ${#children[@]} - 1; index >= 0; index--)); do
        kill "${children[index]}" 2>/dev/null || continue
        for ((tries = 0; tries < 30; tries++)); do
            is_running "${children[index]}" || break
            sleep 0.1
        done
        kill -KILL "${children[index]}" 2>/dev/null || true
        wait "${children[index]}" 2>/dev/null || true
    done
    rm -rf "$folder"
    exit "$status"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# Starts a program in the background and notes it for the end; what it prints goes to a file.
start() {
    local log
    log=$folder/$(basename "$1").log
    "$@" >"$log" 2>&1 3>&- &
    children+=($!)
}

# wait_for WHAT COMMAND...: until the command succeeds, for twenty seconds at most.
wait_for() {
    local what=$1 deadline=$((SECONDS + 20))
    shift
    until "$@" >/dev/null 2>&1; do
        if ((SECONDS >= deadline)); then
            echo "Gave up waiting: $what." >&2
            tail -n 5 "$folder"/*.log >&2
            exit 1
        fi
        sleep 0.1
    done
}

# start_display WIDTHxHEIGHT
start_display() {
    mkdir "$folder/screen"
    Xvfb -displayfd 3 -screen 0 "${1}x24" -fbdir "$folder/screen" -nolisten tcp -noreset \
        3>"$folder/display" >"$folder/Xvfb.log" 2>&1 &
    children+=($!)
    wait_for "the display is ready" test -s "$folder/display"
    DISPLAY=:$(cat "$folder/display")
    export DISPLAY
}

start_session_bus() {
    cat >"$folder/bus.conf" <<TEXT
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path=$folder/run/bus</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
TEXT
    start dbus-daemon --nofork --config-file="$folder/bus.conf"
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$folder/run/bus
    wait_for "the session bus is ready" test -S "$folder/run/bus"
}

# Once the picture stands still, saves it as a PNG of that name in $pictures.
take_screenshot() {
    local former=none current tries
    for ((tries = 0; tries < 50; tries++)); do
        current=$(sha256sum <"$folder/screen/Xvfb_screen0")
        if [[ $current == "$former" ]]; then break; fi
        former=$current
        sleep 0.2
    done
    xwdtopnm <"$folder/screen/Xvfb_screen0" 2>/dev/null | pnmtopng 2>/dev/null >"$pictures/$1.png"
    echo "    $(realpath "$pictures/$1.png")"
}

# A desktop that knows nothing of the one that the script was started on.
export HOME=$folder XDG_RUNTIME_DIR=$folder/run XDG_DATA_HOME=$folder/data
export XDG_CONFIG_HOME=$folder/config XDG_CACHE_HOME=$folder/cache XDG_STATE_HOME=$folder/state
unset WAYLAND_DISPLAY XAUTHORITY SESSION_MANAGER QT_QPA_PLATFORM
mkdir -m 700 "$XDG_RUNTIME_DIR"
