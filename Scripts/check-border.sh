#!/usr/bin/env bash
# Checks that every public header compiles alone without a warning, that the library exports what they declare, that its
# bytes do not depend on the folder that it is built in, and that it can be had as a static library.
# Usage: Scripts/check-border.sh [BUILD_FOLDER]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/border}
flags="-I '$root/ImportSDK/ImportCommon/Include' -I '$root/DbFast/Include' -I '$root/PluginKit/Include' -fsyntax-only"
flags="$flags -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror"

rm -rf "$build"
mkdir -p "$build/headers"

echo "-- Every header alone"
for header in "$root"/ImportSDK/ImportCommon/Include/ImportCommon/*.h "$root"/DbFast/Include/DbFast/*.h \
    "$root"/PluginKit/Include/PluginKit/*.h; do
    name=$(basename "$(dirname "$header")")/$(basename "$header")
    source=$build/headers/$(basename "$header" .h)
    # Twice, since a header may be included by several others.
    printf '#include <%s>\n#include <%s>\n' "$name" "$name" | tee "$source.cpp" >"$source.c"
    for compiler in g++ clang++; do
        for standard in c++17 c++20; do
            echo "$compiler -std=$standard $flags '$source.cpp'"
        done
    done
    if [ "$name" = DbFast/dbfast.h ]; then
        echo "gcc -std=c11 $flags '$source.c'"
        echo "clang -std=c11 $flags '$source.c'"
    fi
done >"$build/commands"
xargs -P "$(nproc)" -L 1 -a "$build/commands" env
echo "$(wc -l <"$build/commands") compilations without a warning"

echo "-- The same bytes from any folder"
for folder in here some/where/else; do
    sources=$build/$folder/sources
    mkdir -p "$sources"
    (cd "$root" && git ls-files -z | tar --null -T - -cf -) | tar -xf - -C "$sources"
    cmake -S "$sources" -B "$build/$folder/build" -G Ninja -DIMPORTCOMMON_BUILD_EXAMPLES=OFF \
        -DIMPORTCOMMON_BUILD_TESTS=OFF -DIMPORTCOMMON_BUILD_BENCHMARKS=OFF >"$build/configure.log"
    cmake --build "$build/$folder/build" --target import-common >"$build/build.log" || { cat "$build/build.log"; exit 1; }
done
library=build/ImportSDK/ImportCommon/libimport-common.so
cmp "$build/here/$library" "$build/some/where/else/$library"

echo "-- What is exported"
"$root/Scripts/check-exports.py" "$build/here/$library"

echo "-- A static library, installed"
cmake -S "$root" -B "$build/static" -G Ninja -DBUILD_SHARED_LIBS=OFF -DCMAKE_INSTALL_PREFIX="$build/installed" \
    -DIMPORTCOMMON_BUILD_EXAMPLES=OFF -DIMPORTCOMMON_BUILD_TESTS=OFF -DIMPORTCOMMON_BUILD_BENCHMARKS=OFF \
    >"$build/static.log"
cmake --build "$build/static" --target install >>"$build/static.log" || { cat "$build/static.log"; exit 1; }
cmake -S "$root/Tests/Package" -B "$build/consumer" -G Ninja -DCMAKE_PREFIX_PATH="$build/installed" \
    >"$build/consumer.log"
cmake --build "$build/consumer" >>"$build/consumer.log" || { cat "$build/consumer.log"; exit 1; }
ctest --test-dir "$build/consumer" --output-on-failure --no-tests=error | grep "tests passed"
[ -z "$(find "$build/installed" -name '*.so*')" ] || { echo "a shared library is there as well" >&2; exit 1; }
echo "Border: passed"
