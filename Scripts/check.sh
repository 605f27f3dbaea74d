#!/usr/bin/env bash
# Checks the library with clang-tidy and cppcheck, except for what Scripts/check-exceptions.txt agrees to, and with
# valgrind that no byte which nobody has set goes into a stream: the tests of stored forms, and the example import.
# Usage: Scripts/check.sh [BUILD_FOLDER]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/check}
"$root/Scripts/install-packages.sh" clang clang-tidy cppcheck valgrind cmake ninja-build libassimp-dev libgtest-dev
mkdir -p "$build"
cd "$root"
failed=0

# valgrind does not understand the latest debug format
options=(-DCMAKE_CXX_COMPILER=clang++ -DCMAKE_C_COMPILER=clang -DCMAKE_EXPORT_COMPILE_COMMANDS=ON "-DCMAKE_CXX_FLAGS=-gdwarf-4"
    -DIMPORTCOMMON_BUILD_BENCHMARKS=OFF)
tests=(ExternalGUIDTest ExternalVersionTest EnvironmentTest)
programs=(import-host ifc-plugin)
if ! { cmake -S . -B "$build" -G Ninja "${options[@]}" && cmake --build "$build" --target "${tests[@]}" "${programs[@]}"; } \
    >"$build/build.log" 2>&1; then
    cat "$build/build.log" >&2
    echo "check.sh: the build failed" >&2
    exit 1
fi

mapfile -t sources < <(git ls-files -- 'DbFast/*.cpp' 'ImportSDK/*.cpp')
said=$build/said.txt
# One source at a time: what clang-tidy says of one depends on those that it has read before.
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 1 clang-tidy -p "$build" --quiet 2>/dev/null |
    sed -nE "s#^$root/([^:]+):([0-9]+):[0-9]+: (warning|error): (.*) \[([^],]+).*\]\$#\5 \1 line \2: \4#p" >"$said"
cppcheck --enable=warning,performance,portability --std=c++17 --quiet -j "$(nproc)" -I DbFast/Include \
    -I ImportSDK/ImportCommon/Include --template='{id} {file} line {line}: {message}' DbFast ImportSDK 2>&1 |
    grep -E '^[A-Za-z]+ (DbFast|ImportSDK)/' >>"$said" || true
sort -u -o "$said" "$said"

agreed=$(sed -E '/^ *(#|$)/d' Scripts/check-exceptions.txt)
while read -r check file rest; do
    if ! grep -qxF "$check $file" <<<"$agreed"; then
        echo "$file $rest [$check]" >&2
        failed=1
    fi
done <"$said"
while read -r check file; do
    grep -qF "$check $file " "$said" || echo "note: nobody says $check of $file any more"
done <<<"$agreed"
echo "clang-tidy and cppcheck: ${#sources[@]} sources, $(wc -l <"$said") remarks, $(wc -l <<<"$agreed") agreed exceptions"

check() {
    if ! valgrind --quiet --error-exitcode=9 --suppressions=Scripts/valgrind.supp "$@" >"$build/valgrind.log" 2>&1; then
        grep -aE '^==|import-host' "$build/valgrind.log" | head -n 40 >&2
        echo "check.sh: valgrind: $(basename "$1") failed" >&2
        failed=1
    fi
}
for test in "${tests[@]}"; do
    check "$build/Tests/$test"
done
rm -rf "$build/state"
for model in house house-revised; do
    check "$build/bin/import-host" --state "$build/state" --report "$build/report.json" --picture "$build/plan.svg" \
        "Examples/Models/$model.ifc"
done
[ "$failed" -ne 0 ] || echo "valgrind: ${#tests[@]} tests and 2 imports without a finding"
exit "$failed"
