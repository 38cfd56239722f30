#!/usr/bin/env bash
# Installs what is missing, builds the release, and runs it: without arguments the tour of the pack
# on the example project, otherwise the command line with the arguments given.
set -euo pipefail
start=$PWD
cd "$(dirname "${BASH_SOURCE[0]}")"
source tools/setup.sh

need g++ cmake ninja-build libcli11-dev
wish binutils-mingw-w64-i686
wish pkg-config libunicorn-dev libcapstone-dev
build run release -DTARN_TESTS=OFF -- --target tarn

program=$PWD/build/run/apps/tarn/tarn
if [ $# -eq 0 ]; then
    say "playing examples/tour.tarn"
    exec "$program" run examples/tour.tarn
fi
cd "$start"
exec "$program" "$@"
