#!/usr/bin/env bash
# Runs every fuzz target for so many seconds, with the address and undefined behaviour sanitizers. Fails with the name of
# the input when one ends badly. What the targets learn is kept in the build folder. FUZZ_SEED, 1 by default, makes a run
# begin with other inputs.
# Usage: Scripts/fuzz.sh SECONDS [TARGET...]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-}
if ! [[ $seconds =~ ^[1-9][0-9]*$ ]]; then
    echo "usage: Scripts/fuzz.sh SECONDS [TARGET...]" >&2
    exit 2
fi
shift

build=${FUZZ_BUILD:-$root/build/fuzz}
"$root/Scripts/install-packages.sh" clang libclang-rt-dev cmake ninja-build
mkdir -p "$build"
options=(-DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_COMPILER=clang -DIMPORTCOMMON_BUILD_FUZZERS=ON -DIMPORTCOMMON_WERROR=ON
    -DIMPORTCOMMON_BUILD_TESTS=OFF -DIMPORTCOMMON_BUILD_BENCHMARKS=OFF
    -DIMPORTCOMMON_SANITIZE=address,undefined)
mapfile -t all < <(ls "$root/Fuzz/Corpus") # there is a folder for each
if ! { cmake -S "$root" -B "$build" -G Ninja "${options[@]}" && cmake --build "$build" --target "${all[@]}"; } >"$build/build.log" 2>&1; then
    cat "$build/build.log" >&2
    echo "fuzz.sh: the build failed" >&2
    exit 1
fi

if [ $# -gt 0 ]; then
    targets=("$@")
else
    targets=("${all[@]}")
fi
findings=$build/findings
mkdir -p "$findings"

# Log lines of a target, its figures, and the name of an input that it failed on.
run() {
    local target=$1 log=$build/$1.log
    mkdir -p "$build/corpus/$target"
    if ! "$build/Fuzz/bin/$target" -max_total_time="$seconds" -seed="${FUZZ_SEED:-1}" -timeout=60 -print_final_stats=1 -max_len=2048 \
        -artifact_prefix="$findings/$target-" "$build/corpus/$target" "$root/Fuzz/Corpus/$target" >"$log" 2>&1; then
        grep -aE 'wrong result|ERROR|runtime error|SUMMARY' "$log" | head -n 5 >&2 || true
        local input
        input=$(sed -nE 's/.*Test unit written to (.*)$/\1/p' "$log" | tail -n 1)
        echo "fuzz.sh: $target failed: ${input:-see $log}" >&2
        return 1
    fi
    sed -nE 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1 | xargs printf '%-18s %10s inputs\n' "$target"
}

failed=0
running=0
for target in "${targets[@]}"; do
    run "$target" &
    running=$((running + 1))
    if [ "$running" -ge "$(nproc)" ]; then
        wait -n || failed=1
        running=$((running - 1))
    fi
done
while [ "$running" -gt 0 ]; do
    wait -n || failed=1
    running=$((running - 1))
done
exit "$failed"
