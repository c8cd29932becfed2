#!/usr/bin/env bash
# scripts/build.sh PRESET [-DNAME=VALUE...] [TARGET...]: configures a preset where needed, with the
# given values, and builds it.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/compiler-cache.sh

preset=$1
shift
values=()
while [[ ${1-} == -D* ]]; do
  values+=("$1")
  shift
done
if [ ! -f "build/$preset/build.ninja" ] || [ "${#values[@]}" -gt 0 ] ||
  [ CMakePresets.json -nt "build/$preset/CMakeCache.txt" ]; then
  output=$(cmake --preset "$preset" "${values[@]}" 2>&1) || {
    echo "$output"
    exit 1
  }
fi
cmake --build "build/$preset" ${1:+--target "$@"} -- --quiet
