#!/usr/bin/env bash
# format.sh ROOT: the format check finds what is not formatted in a tree that is no repository, as it
# comes from an archive, and passes by what was built.
set -euo pipefail
root=$1

if ! command -v clang-format-14 >/dev/null; then
  echo "skipped: clang-format-14 is not installed"
  exit 77
fi
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
mkdir -p "$tree/scripts" "$tree/folder/deep" "$tree/build"
cp "$root"/scripts/{check-format,sources}.sh "$tree/scripts"
cp "$root/.clang-format" "$tree"
printf 'int a = 1;\n' >"$tree/folder/good.cpp"
printf 'int  a=1;\n' >"$tree/build/bad.cpp"

"$tree/scripts/check-format.sh"
printf 'int  a=1;\n' >"$tree/folder/deep/bad name.h"
if "$tree/scripts/check-format.sh" 2>"$tree/said"; then
  echo "a bad header was not found" >&2
  exit 1
fi
grep -q 'folder/deep/bad name.h' "$tree/said"
