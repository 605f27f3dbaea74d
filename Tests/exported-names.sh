#!/usr/bin/env bash
# Compares names: what the shared library exports, or what the public headers declare, with the checked-in list.
# Usage: exported-names.sh LIST library LIBRARY | exported-names.sh LIST headers PROGRAM CLANG++
set -euo pipefail

list=$1
case $2 in
library) names=$(nm -D --defined-only "$3" | awk '{ print $3 }') ;;
headers) names=$("$3" "$4" | sed '/^#/d; s/ .*//') ;;
esac
[ -n "$names" ] || { echo "no names found in the $2" >&2; exit 1; }

listed=$(sed '/^#/d; s/ .*//' "$list" | sort)
found=$(sort <<<"$names")
if [ "$listed" != "$found" ]; then
    echo "The list (<) and the $2 (>) differ. Is the change meant? Scripts/public-names.py makes the list anew."
    diff <(c++filt <<<"$listed" | sort) <(c++filt <<<"$found" | sort)
    exit 1
fi
