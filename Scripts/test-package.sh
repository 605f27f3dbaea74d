#!/usr/bin/env bash
# Makes the packages, installs them into a root of their own, builds against them in every way that is promised, and
# removes them again. Nothing of the system is touched, and no rights are needed. Usage: Scripts/test-package.sh
# [BUILD_FOLDER]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build/package}
consumer=$root/Tests/Package
packages=(libimport-common0.1 libimport-common-dev libimport-common-doc import-host)
warnings=(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

step() { printf -- '-- %s\n' "$*"; }
fail() { echo "test-package.sh: $*" >&2; exit 1; }

# in_root ARGUMENT...: the package manager on a root of its own, which has no other packages.
in_root() {
    dpkg --root="$system" --log=/dev/null --force-not-root --force-depends --force-script-chrootless --force-bad-path "$@"
}

# quietly LOG COMMAND...: runs a command and shows what it said only when it fails.
quietly() {
    local log=$build/$1.log
    shift
    "$@" >"$log" 2>&1 || { cat "$log" >&2; fail "failed: $*"; }
}

# consume NAME [CMAKE_OPTION...]: builds and runs host and plug-in of Tests/Package.
consume() {
    local name=$1
    shift
    quietly "$name" cmake -S "$consumer" -B "$build/$name" -G Ninja "$@"
    quietly "$name" cmake --build "$build/$name"
    quietly "$name" ctest --test-dir "$build/$name" --output-on-failure --no-tests=error
}

# consume_with_pkgconfig NAME: the same without CMake.
consume_with_pkgconfig() {
    local folder=$build/$1 cflags libs
    cflags=$(pkg-config --cflags import-common)
    libs="$(pkg-config --libs import-common) -Wl,-rpath,$(pkg-config --variable=libdir import-common)"
    mkdir -p "$folder"
    # shellcheck disable=SC2086 # options are several words
    {
        cc -std=c11 "${warnings[@]}" $cflags -c "$consumer/table.c" -o "$folder/table.o"
        c++ -std=c++17 "${warnings[@]}" $cflags "$consumer/host.cpp" "$folder/table.o" -o "$folder/host" $libs
        c++ -std=c++17 "${warnings[@]}" $cflags -shared -fPIC "$consumer/plugin.cpp" -o "$folder/plugin.so" $libs
    }
    quietly "$1" "$folder/host" "$folder/plugin.so"
}

rm -rf "$build"
system=$build/system
mkdir -p "$system/var/lib/dpkg/info" "$system/var/lib/dpkg/updates" "$system/var/lib/dpkg/triggers"
touch "$system/var/lib/dpkg/status"

step "Packages"
options=(-DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DIMPORTCOMMON_BUILD_TESTS=OFF
    -DIMPORTCOMMON_BUILD_BENCHMARKS=OFF -DIMPORTCOMMON_WERROR=ON)
quietly build cmake -S "$root" -B "$build/library" -G Ninja "${options[@]}"
quietly build cmake --build "$build/library"
(cd "$build/library" && quietly cpack cpack -B "$build/packages")

if command -v lintian >/dev/null; then
    step "lintian"
    lintian --allow-root --fail-on error "$build"/packages/*.deb || fail "packages of Debian are made otherwise"
else
    echo "lintian is not installed: nobody looks over the packages"
fi

quietly install in_root --install "$build"/packages/*.deb
libraries=$(dirname "$(find "$system/usr" -name libimport-common.so)")
export PKG_CONFIG_PATH=$libraries/pkgconfig CMAKE_PREFIX_PATH=$system/usr
hardening=$(readelf --dynamic --segments --dyn-syms --wide "$(pkg-config --variable=libdir import-common)/libimport-common.so")
for sign in BIND_NOW GNU_RELRO __stack_chk_fail@ _chk@GLIBC; do
    [[ $hardening == *"$sign"* ]] || fail "the installed library shows no $sign"
done
files=$(dpkg --root="$system" -L "${packages[@]}" | sort -u |
    while read -r file; do [ -d "$system$file" ] || echo "$system$file"; done)

step "Against the installed packages: CMake, pkg-config, the examples, the guide"
consume cmake
consume_with_pkgconfig pkgconfig
if cmake -S "$consumer" -B "$build/wrong-version" -DIMPORTCOMMON_VERSION=1.0 >"$build/wrong-version.log" 2>&1; then
    fail "version 1.0 was asked for and $(pkg-config --modversion import-common) taken"
fi
quietly examples cmake -S "$system/usr/share/import-common/examples" -B "$build/examples" -G Ninja
quietly examples cmake --build "$build/examples"
"$root/Scripts/check-guide.py" Docs/plugin-guide.md Examples/ToyPlugin "$build/guide" "$system/usr"
"$root/Scripts/check-guide.py" Docs/cityjson-plugin.md Examples/CityJsonPlugin "$build/cityjson-guide" "$system/usr"

step "The installed host"
host=$build/host
mkdir -p "$host"
for file in bin/import-host share/man/man1/import-host.1.gz share/bash-completion/completions/import-host; do
    [ -e "$system/usr/$file" ] || fail "the package import-host has no $file"
done
result=0
LD_LIBRARY_PATH=$libraries "$system/usr/bin/import-host" --exit-code --compare --report "$host/report.json" \
    --picture "$host/picture.svg" --html "$host/page.html" --csv "$host/changes.csv" --bcf "$host/changes.bcf" \
    "$root/Examples/Models/house.ifc" "$root/Examples/Models/house-revised.ifc" >"$host/table.txt" 2>"$host/errors.txt" ||
    result=$?
[ "$result" -eq 3 ] || { cat "$host/errors.txt" >&2; fail "the installed host gave $result"; }
[ "$(ls "$host" | wc -l)" -eq 7 ] || fail "the installed host did not write everything"

step "Removal"
quietly remove in_root --purge "${packages[@]}"
unset PKG_CONFIG_PATH CMAKE_PREFIX_PATH
[ -n "$files" ] || fail "the packages are empty"
for file in $files; do
    [ ! -e "$file" ] || fail "$file is left behind"
done

step "Against an installed folder that was moved"
quietly moved cmake --install "$build/library" --prefix "$build/first"
mv "$build/first" "$build/moved"
libraries=$(dirname "$(find "$build/moved" -name libimport-common.so)")
consume cmake-moved -DCMAKE_PREFIX_PATH="$build/moved"
PKG_CONFIG_PATH=$libraries/pkgconfig consume_with_pkgconfig pkgconfig-moved

step "As a part of another project"
consume subdirectory -DIMPORTCOMMON_EMBED=subdirectory -DIMPORTCOMMON_SOURCE="$root"
consume fetch -DIMPORTCOMMON_EMBED=fetch -DIMPORTCOMMON_SOURCE="$root"
quietly subdirectory cmake --install "$build/subdirectory" --prefix "$build/nothing"
[ ! -e "$build/nothing/include" ] || fail "a project that embeds the library installs it"
echo "Packages: passed"
