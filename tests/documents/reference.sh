#!/usr/bin/env bash
# reference.sh DOXYFILE SOURCE REFERENCE: makes the API reference, which fails on any warning, and
# fails when a public type or function is not in it.
set -euo pipefail

doxyfile=$1
source=$2
reference=$3

if ! command -v doxygen >/dev/null; then
  echo "skipped: doxygen is not installed"
  exit 77
fi
rm -rf "$reference"
doxygen "$doxyfile"

# What the public headers define at the margin: types, and exported functions.
names=$(cat "$source"/{converters,dxfeditor,universal_log_interface}/*.h |
  grep -oP '^(class|struct|enum( class)?)( [A-Z]+_EXPORT)? \K\w+(?=[^;]*\{)|^\w+_EXPORT \w+ \K\w+(?=\()' |
  sort -u)
test "$(wc -w <<<"$names")" -ge 30
status=0
for name in $names; do
  if ! grep -q "<name>\(.*::\)\?$name</name>" "$reference/converters.tag"; then
    echo "not in the reference: $name" >&2
    status=1
  fi
done
exit "$status"
