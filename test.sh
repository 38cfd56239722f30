#!/usr/bin/env bash
# Installs what is missing, builds the release and the build with AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs all tests in both; then fuzzes for a minute.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source tools/setup.sh

need g++ cmake ninja-build libcli11-dev libgtest-dev
wish binutils-mingw-w64-i686
wish pkg-config libunicorn-dev libcapstone-dev
wish qt6-base-dev libqscintilla2-qt6-dev xvfb openbox x11-utils
for preset in release debug; do
    # Several files are compiled at once, which takes half the time; run.sh compiles them one by one.
    build "$preset" "$preset" -DCMAKE_UNITY_BUILD=ON
    say "testing $preset"
    ctest --preset "$preset" -j "$(nproc)"
done
TARN_FUZZ_SEED=1 tools/fuzz.sh 60 # a test that fails is to fail again
say "all tests passed"
