#!/bin/sh
# Runs a program on a display of its own with a window manager: on_display.sh PROGRAM ARGUMENT...
# Its exit code is the program's; 77 where there is no display server or window manager to start.
for tool in Xvfb openbox xprop; do
    command -v "$tool" >/dev/null || { echo "skipped: no $tool is installed"; exit 77; }
done
folder=$(mktemp -d) || exit 1
server= manager=
finish() {
    for pid in $manager $server; do kill "$pid" 2>/dev/null; wait "$pid" 2>/dev/null; done
    rm -rf "$folder"
}
trap finish EXIT
trap 'exit 143' TERM INT HUP

# Tries until the command succeeds, for at most 20 seconds.
await() {
    tries=0
    until "$@" >/dev/null 2>&1; do
        tries=$((tries + 1))
        [ "$tries" -lt 200 ] || { echo "not ready: $*"; return 1; }
        sleep 0.1
    done
}

# The server takes a number that is free and tells it when it is ready.
Xvfb -displayfd 3 -screen 0 1600x1200x24 -nolisten tcp 3>"$folder/display" 2>"$folder/server.log" &
server=$!
await test -s "$folder/display" || { cat "$folder/server.log"; exit 1; }
DISPLAY=:$(cat "$folder/display")
export DISPLAY
HOME=$folder openbox >"$folder/manager.log" 2>&1 &
manager=$!
managed() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }
await managed || { cat "$folder/manager.log"; exit 1; }

QT_QPA_PLATFORM=xcb "$@"
