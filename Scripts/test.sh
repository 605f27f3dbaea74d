#!/usr/bin/env bash
# Builds everything and runs all tests; installs what is missing.
# Usage: Scripts/test.sh [BUILD_FOLDER [CMAKE_OPTION...]]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
[ $# -eq 0 ] || shift

"$root/Scripts/install-packages.sh" g++ cmake ninja-build libgtest-dev nlohmann-json3-dev \
    libjs-three libzip-dev libpugixml-dev python3 python3-jsonschema
cmake -S "$root" -B "$build" -G Ninja -DIMPORTCOMMON_BUILD_BENCHMARKS=OFF "$@"
cmake --build "$build"

log=$build/test.log
result=0
ctest --test-dir "$build" --output-on-failure -j "$(getconf _NPROCESSORS_ONLN)" 2>&1 | tee "$log" | grep -v ' Passed ' || result=1
summary=$(grep -E 'tests passed, .* out of' "$log" | tail -n 1 || true)
total=${summary##* out of }
failed=$(sed -E 's/.*passed, ([0-9]+) tests? failed.*/\1/' <<<"$summary")
if [ "${total:-0}" -eq 0 ]; then
    echo "test.sh: no test was run" >&2
    exit 1
fi
echo "$((total - failed)) passed, $failed failed"
exit "$result"
