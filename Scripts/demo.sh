#!/usr/bin/env bash
# Imports a model and then its revision with import-host, and shows what the second import found.
# Installs and builds what is missing. Usage: Scripts/demo.sh [OLD.ifc NEW.ifc]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
case $# in
0) models=("$root/Examples/Models/house.ifc" "$root/Examples/Models/house-revised.ifc") ;;
2) models=("$1" "$2") ;;
*)
    echo "usage: Scripts/demo.sh [OLD.ifc NEW.ifc]" >&2
    exit 2
    ;;
esac
for model in "${models[@]}"; do
    if [ ! -r "$model" ]; then
        echo "demo.sh: $model: no such file, or not readable" >&2
        exit 1
    fi
done

build=$root/build/demo
output=$build/import
"$root/Scripts/install-packages.sh" g++ cmake ninja-build libzip-dev libpugixml-dev libjs-three
mkdir -p "$build"
log=$build/build.log
options=(-DCMAKE_BUILD_TYPE=Release -DIMPORTCOMMON_BUILD_TESTS=OFF)
if ! { cmake -S "$root" -B "$build" -G Ninja "${options[@]}" && cmake --build "$build" --target import-host ifc-plugin; } >"$log" 2>&1; then
    cat "$log" >&2
    echo "demo.sh: the build failed" >&2
    exit 1
fi

rm -rf "$output"
mkdir -p "$output"
outputs=(--html "$output/page.html" --picture "$output/picture.svg" --report "$output/report.json"
    --csv "$output/changes.csv" --bcf "$output/changes.bcf")
for model in "${models[@]}"; do
    echo "== $(basename "$model")"
    "$build/bin/import-host" --state "$output/state" "${outputs[@]}" -- "$model"
    echo
done
cat <<END
To look at:          $output/page.html   open it in a browser
                     $output/picture.svg
For programs:        $output/report.json
For spreadsheets:    $output/changes.csv
For authoring tools: $output/changes.bcf
What is remembered:  $output/state
END
