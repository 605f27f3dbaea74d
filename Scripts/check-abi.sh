#!/usr/bin/env bash
# Compares the library's binary interface with that of the last version. CHANGELOG.md names the commit of each version
# in its heading, as in "## 0.2.0 - 2030-01-31, commit 0123abc". What a program that was built with that version would miss
# is an error unless the library has got another name (SONAME) since.
# Usage: Scripts/check-abi.sh [BUILD_FOLDER]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/abi}
headers=(ImportSDK/ImportCommon/Include DbFast/Include)
"$root/Scripts/install-packages.sh" g++ cmake ninja-build abigail-tools binutils git

rm -rf "$build"
mkdir -p "$build"

library() { echo "$build/$1/ImportSDK/ImportCommon/libimport-common.so"; }

# dump NAME SOURCES: builds the library of a source tree and writes what it shows to NAME.abi.
dump() {
    local folder=$build/$1 sources=$2 options=()
    cmake -S "$sources" -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DIMPORTCOMMON_BUILD_EXAMPLES=OFF \
        -DIMPORTCOMMON_BUILD_TESTS=OFF -DIMPORTCOMMON_BUILD_BENCHMARKS=OFF >"$build/$1.log"
    cmake --build "$folder" --target import-common >>"$build/$1.log" || { cat "$build/$1.log" >&2; exit 1; }
    for header in "${headers[@]}"; do
        options+=(--headers-dir "$sources/$header")
    done
    abidw --no-corpus-path --no-comp-dir-path "${options[@]}" --out-file "$build/$1.abi" \
        "$(library "$1")"
}

dump now "$root"

# The dump has to know what each exported function takes and returns; a constructor's two names are one.
nm -D --defined-only "$(library now)" | awk '{ print $3 }' | sort >"$build/exported"
grep -o "elf-symbol name='[^']*'" "$build/now.abi" | cut -d"'" -f2 | sort -u >"$build/symbols"
described=$(grep -c "<function-decl .*elf-symbol-id=" "$build/now.abi") || true
if [ ! -s "$build/exported" ] || ! cmp "$build/exported" "$build/symbols" || [ "$described" -lt 200 ]; then
    echo "check-abi.sh: the dump is not complete: $described functions of $(wc -l <"$build/exported") names" >&2
    exit 1
fi
echo "The dump has all $(wc -l <"$build/exported") exported names, and describes $described functions"

commit=$(sed -nE 's/^## \[?[0-9]+\.[0-9]+\.[0-9]+.*commit ([0-9a-f]{7,40}).*/\1/p' "$root/CHANGELOG.md" | head -n 1)
if [ -z "$commit" ]; then
    echo "CHANGELOG.md names no commit of a version yet: nothing to compare with"
    exit 0
fi
mkdir "$build/sources"
git -C "$root" archive "$commit" | tar -xf - -C "$build/sources"
dump before "$build/sources"
result=0
# Functions that are new break nothing; whatever else differs may, the size of a class above all.
abidiff --no-added-syms "$build/before.abi" "$build/now.abi" >"$build/differences" || result=$?
cat "$build/differences"
name() { readelf -d "$1" | sed -n 's/.*soname: \[\(.*\)\]/\1/p'; }
if [ $((result & 3)) -ne 0 ]; then
    echo "check-abi.sh: the comparison failed" >&2
    exit 1
elif [ "$result" -ne 0 ] && [ "$(name "$(library now)")" = "$(name "$(library before)")" ]; then
    echo "check-abi.sh: programs built with $commit would break: take back the change, or count the version up" >&2
    exit 1
fi
echo "Programs built with $commit work with this library, or ask for another one"
