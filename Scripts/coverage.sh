#!/usr/bin/env bash
# Measures how much of the library's own code the tests reach: lines and branches of DbFast and ImportSDK, and what they
# don't reach. Branches that only exceptions take are left out: the allocation tests go through them one by one.
# Fails below 95 % of the lines or 85 % of the branches.
# Usage: Scripts/coverage.sh [BUILD_FOLDER]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/coverage}
"$root/Scripts/install-packages.sh" g++ cmake ninja-build libgtest-dev nlohmann-json3-dev gcovr

mkdir -p "$build"
options=(-DCMAKE_CXX_COMPILER=g++ -DCMAKE_C_COMPILER=gcc -DCMAKE_BUILD_TYPE=Debug -DIMPORTCOMMON_BUILD_BENCHMARKS=OFF
    -DIMPORTCOMMON_BUILD_EXAMPLES=OFF -DIMPORTCOMMON_COVERAGE=ON)
if ! { cmake -S "$root" -B "$build" -G Ninja "${options[@]}" && cmake --build "$build"; } >"$build/build.log" 2>&1; then
    cat "$build/build.log" >&2
    echo "coverage.sh: the build failed" >&2
    exit 1
fi
find "$build" -name '*.gcda' -delete
if ! ctest --test-dir "$build" -j "$(nproc)" >"$build/test.log" 2>&1; then
    tail -n 20 "$build/test.log" >&2
    echo "coverage.sh: a test failed" >&2
    exit 1
fi

gcovr --root "$root" --filter "$root/DbFast/" --filter "$root/ImportSDK/" --exclude-throw-branches \
    --exclude-unreachable-branches --gcov-ignore-parse-errors --json "$build/coverage.json" "$build" >/dev/null
gcovr --root "$root" --add-tracefile "$build/coverage.json" --txt "$build/lines.txt" >/dev/null
gcovr --root "$root" --add-tracefile "$build/coverage.json" --branches --txt "$build/branches.txt" >/dev/null

percent() { sed -nE 's/^TOTAL.* ([0-9]+)%.*/\1/p' "$1"; }
total() { sed -nE 's/^TOTAL +([0-9]+) +([0-9]+).*/\2 of \1/p' "$1"; }
# A long file name stands on a line of its own.
left() {
    awk '/^[^ ]/ { name = $1; sub(/^[^ ]+/, "") }
        name ~ /^(DbFast|ImportSDK)/ && NF >= 3 && $3 != "100%" { print "  " name ": " $4 }' "$1"
}
lines=$(percent "$build/lines.txt")
branches=$(percent "$build/branches.txt")
if ! [[ $lines =~ ^[0-9]+$ && $branches =~ ^[0-9]+$ ]]; then
    echo "coverage.sh: there are no figures, see $build" >&2
    exit 1
fi
echo "Lines:    $lines % ($(total "$build/lines.txt"))"
echo "Branches: $branches % ($(total "$build/branches.txt"))"
echo "Lines that no test reaches:"
left "$build/lines.txt"
echo "Lines with a branch that no test takes:"
left "$build/branches.txt"
if [ "$lines" -lt 95 ] || [ "$branches" -lt 85 ]; then
    echo "coverage.sh: less than 95 % of the lines or 85 % of the branches" >&2
    exit 1
fi
