#!/usr/bin/env bash
# Checks every source file with clang-format and clang-tidy; quiet when all is well.
#   tools/lint.sh [FILE...]    all files of the project without arguments
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh

need clang clang-format clang-tidy cmake ninja-build libcli11-dev libgtest-dev libbenchmark-dev
wish pkg-config libunicorn-dev libcapstone-dev
wish qt6-base-dev libqscintilla2-qt6-dev
if [ $# -eq 0 ]; then
    mapfile -t files < <(git ls-files '*.cpp' '*.h' ':!examples')
else
    files=("$@")
fi
clang-format --dry-run --Werror "${files[@]}"

mkdir -p build
cmake --preset clang >build/clang.log 2>&1 || { cat build/clang.log >&2; exit 3; }
# Sources that are made by the build.
targets=(tarn_localization)
has qt6-base-dev && targets+=(bench_prop_autogen)
cmake --build build/clang --target "${targets[@]}" >>build/clang.log 2>&1 || { cat build/clang.log >&2; exit 3; }
printf '%s\0' "${files[@]}" | grep -z '\.cpp$' |
    xargs -0 -n 4 -P "$(nproc)" clang-tidy -p build/clang --quiet 2>/dev/null
say "clang-format and clang-tidy are quiet"
