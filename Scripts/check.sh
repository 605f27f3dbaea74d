#!/usr/bin/env bash
# Checks the library with clang-tidy and cppcheck, except for what Scripts/check-exceptions.txt agrees to, and with
# valgrind that no byte which nobody has set goes into a stream: the tests of stored forms, and the example import.
# Usage: Scripts/check.sh [BUILD_FOLDER]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/check}
"$root/Scripts/install-packages.sh" clang clang-tidy cppcheck valgrind cmake ninja-build libgtest-dev
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
remarks=$build/remarks
rm -rf "$remarks"
mkdir "$remarks"
# One source at a time: what clang-tidy says of one depends on those that it has read before.
if ! printf '%s\n' "${sources[@]}" | REMARKS=$remarks BUILD=$build xargs -P "$(nproc)" -I SOURCE bash -c \
    'clang-tidy -p "$BUILD" --quiet "$1" >"$REMARKS/${1//\//-}" 2>"$REMARKS/errors-${1//\//-}"' - SOURCE; then
    cat "$remarks"/errors-* >&2
    echo "check.sh: clang-tidy failed" >&2
    exit 1
fi
if ! cppcheck --enable=warning,performance,portability --std=c++17 --quiet -j "$(nproc)" -I DbFast/Include \
    -I ImportSDK/ImportCommon/Include --template='{id} {file} line {line}: {message}' DbFast ImportSDK \
    >"$build/cppcheck.log" 2>&1; then
    cat "$build/cppcheck.log" >&2
    echo "check.sh: cppcheck failed" >&2
    exit 1
fi
cat "$remarks"/* | sed -nE \
    "s#^$root/([^:]+):([0-9]+):[0-9]+: (warning|error): (.*) \[([^],]+).*\]\$#\5 \1 line \2: \4#p" >"$said"
{ grep -E '^[^ ]+ (DbFast|ImportSDK)/' "$build/cppcheck.log" || true; } >>"$said"
sort -u -o "$said" "$said"

agreed=$(sed -E '/^ *(#|$)/d' Scripts/check-exceptions.txt)
while read -r check file rest; do
    if ! grep -qxF "$check $file" <<<"$agreed"; then
        echo "$file $rest [$check]" >&2
        failed=1
    fi
done <"$said"
while read -r check file; do
    if ! grep -qF "$check $file " "$said"; then
        echo "$check of $file is agreed to, but nobody says it" >&2
        failed=1
    fi
done <<<"$agreed"
echo "clang-tidy and cppcheck: ${#sources[@]} sources, $(wc -l <"$said") remarks, $(wc -l <<<"$agreed") agreed exceptions"

check() {
    if ! valgrind --quiet --error-exitcode=9 --suppressions=Scripts/valgrind.supp "$@" >"$build/valgrind.log" 2>&1; then
        tail -n 40 "$build/valgrind.log" >&2
        echo "check.sh: valgrind: $(basename "$1") failed" >&2
        failed=1
    fi
}
for test in "${tests[@]}"; do
    check "$build/Tests/$test" '--gtest_filter=-AllocationFailureTest.*' # valgrind's allocations don't fail when told to
done
rm -rf "$build/state"
for model in house house-revised; do
    check "$build/bin/import-host" --state "$build/state" --report "$build/report.json" --picture "$build/plan.svg" \
        "Examples/Models/$model.ifc"
done
[ "$failed" -ne 0 ] || echo "valgrind: ${#tests[@]} tests and 2 imports without a finding"
exit "$failed"
