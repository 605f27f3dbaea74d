#!/usr/bin/env bash
# Builds reference and guide as HTML; a warning is an error. Installs what is missing.
# Usage: Scripts/docs.sh [OUTPUT_FOLDER]
set -euo pipefail

root=$(cd "$(dirname "$0")/.." && pwd)
output=${1:-$root/build/docs}
mkdir -p "$output"
output=$(cd "$output" && pwd)

"$root/Scripts/install-packages.sh" doxygen doxygen-awesome-css graphviz
version=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
cd "$root"
doxygen - <<SETTINGS
@INCLUDE = Docs/Doxyfile
PROJECT_NUMBER = $version
OUTPUT_DIRECTORY = "$output"
STRIP_FROM_PATH += "$root"
SETTINGS
echo "Documentation: $output/index.html"
