#!/usr/bin/env bash
# Builds and runs the benchmarks and writes their results into Docs/performance.md; installs what is missing.
# Usage: Scripts/bench.sh [RESULTS_FOLDER [BENCHMARK_OPTION...]]; the options go to every benchmark program. A program
# whose results are in the folder already is not run again. The exit code is 1 when something is slower than it must be.
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=$root/build/bench
results=${1:-$build/results-$(date +%Y%m%d-%H%M%S)}
[ $# -eq 0 ] || shift

"$root/Scripts/install-packages.sh" g++ cmake ninja-build python3 libbenchmark-dev libboost-dev libabsl-dev \
    libsqlite3-dev libnanoflann-dev libicu-dev
mkdir -p "$results"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DIMPORTCOMMON_BUILD_EXAMPLES=OFF \
    -DIMPORTCOMMON_BUILD_TESTS=OFF
cmake --build "$build"

for program in "$build"/Benchmarks/*Benchmark; do
    result=$results/$(basename "$program").json
    [ -e "$result" ] && continue
    echo "== $(basename "$program")"
    options=(--benchmark_repetitions=3 --benchmark_min_time=0.1)
    case $program in
    *StringOperations*) # short ones of close contenders: what else the machine does shall meet all alike
        options=(--benchmark_repetitions=9 --benchmark_min_time=0.1 --benchmark_enable_random_interleaving=true) ;;
    esac
    "$program" "${options[@]}" --benchmark_out_format=json --benchmark_out="$result.part" "$@" >/dev/null
    mv "$result.part" "$result"
done
"$root/Scripts/bench_report.py" "$root/Docs/performance.md" "$results"/*.json
echo "Results: $root/Docs/performance.md"
