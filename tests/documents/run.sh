#!/usr/bin/env bash
# run.sh EXPECTED PROGRAM...: runs a program in a folder that holds nothing but the examples; fails
# when it does, or when EXPECTED is a file and the program prints something else.
set -euo pipefail

expected=$1
shift
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
ln -s "$(cd "$(dirname "$0")/../.." && pwd)/examples" "$folder/examples"
cd "$folder"
"$@" >"$folder/printed"
if [ -f "$expected" ]; then
  diff -u "$expected" printed
fi
