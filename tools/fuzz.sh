#!/usr/bin/env bash
# Builds the fuzz targets, tries each on the inputs kept in fuzz/inputs, and then searches for new
# ones. What makes a target fail is kept in build/fuzz/found, and the script fails.
#   tools/fuzz.sh [SECONDS [TARGET...]]    a minute in all, shared by all targets
# With TARN_FUZZ_SEED=NUMBER the search takes the same way each time.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source tools/setup.sh

seconds=${1:-60}
shift $(($# > 0 ? 1 : 0))
need clang libclang-rt-14-dev cmake ninja-build libcli11-dev
build fuzz fuzz -- --target fuzzers
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    mapfile -t targets < <(basename -s _fuzz.cpp -a fuzz/*_fuzz.cpp)
fi
each=$((seconds / ${#targets[@]}))
mkdir -p build/fuzz/found
for target in "${targets[@]}"; do
    say "fuzzing $target for $((each > 0 ? each : 1)) seconds"
    # New inputs are gathered aside: the kept ones are the project's.
    gathered=build/fuzz/gathered/$target
    kept=fuzz/inputs/$target
    mkdir -p "$gathered"
    folders=("$gathered")
    [ ! -d "$kept" ] || folders+=("$kept")
    if ! build/fuzz/fuzz/fuzz_"$target" -max_total_time="$((each > 0 ? each : 1))" -timeout=25 \
        -seed="${TARN_FUZZ_SEED:-0}" -print_final_stats=1 -artifact_prefix="build/fuzz/found/$target-" "${folders[@]}" \
        >"build/fuzz/$target.log" 2>&1; then
        tail -40 "build/fuzz/$target.log" >&2
        exit 1
    fi
    grep -h 'number_of_executed_units' "build/fuzz/$target.log" >&2
done
say "no fuzz target failed"
