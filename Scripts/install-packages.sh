#!/usr/bin/env bash
# Installs the Debian or Ubuntu packages named as arguments, as far as they are missing. On other systems it checks that
# there are a compiler and CMake, and says what to install when there are not.
set -euo pipefail

if ! command -v apt-get >/dev/null; then
    for tool in c++ cmake ninja; do
        if ! command -v "$tool" >/dev/null; then
            echo "install-packages: $tool is missing; install a C++17 compiler, CMake, Ninja, GoogleTest and nlohmann-json" >&2
            exit 1
        fi
    done
    exit 0
fi

missing=()
for package in "$@"; do
    status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

become_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "install-packages: as root, run: apt-get install ${missing[*]}" >&2
        exit 1
    fi
    become_root=(sudo)
fi
echo "Installing ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
apt=("${become_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -o Acquire::Retries=3)
if ! { "${apt[@]}" update && "${apt[@]}" install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    tail -n 5 "$log" >&2
    echo "install-packages: apt-get could not install ${missing[*]}" >&2
    exit 1
fi
