#!/usr/bin/env bash
# Installs what is missing, builds the release, and runs it: without arguments the tour of the pack
# on the example project, otherwise the command line with the arguments given. With the argument
# "workbench" the desktop program, which gets the arguments behind it; where a display is present it
# is built at all events.
set -euo pipefail
start=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")"
source tools/setup.sh

need g++ cmake ninja-build libcli11-dev
wish binutils-mingw-w64-i686
wish pkg-config libunicorn-dev libcapstone-dev
if [ "${1:-}" = workbench ]; then
    shift
    need qt6-base-dev libqscintilla2-qt6-dev
    wish qt6-translations-l10n
    build run release -DTARN_TESTS=OFF -- --target tarn-workbench
    cd "$start"
    exec "$OLDPWD/build/run/apps/tarn/tarn-workbench" "$@"
fi
targets=(tarn)
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] && wish qt6-base-dev libqscintilla2-qt6-dev &&
    has qt6-base-dev libqscintilla2-qt6-dev; then
    targets+=(tarn-workbench)
    say "./run.sh workbench starts the desktop program"
fi
build run release -DTARN_TESTS=OFF -- --target "${targets[@]}"

program=$PWD/build/run/apps/tarn/tarn
if [ $# -eq 0 ]; then
    say "playing examples/tour.tarn"
    exec "$program" run examples/tour.tarn
fi
cd "$start"
exec "$program" "$@"
