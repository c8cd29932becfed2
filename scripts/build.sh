#!/usr/bin/env bash
# scripts/build.sh PRESET [-DNAME=VALUE...] [TARGET...]: configures a preset, with the given
# values, and builds it.
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
output=$(cmake --preset "$preset" "${values[@]}" 2>&1) || {
  echo "$output"
  exit 1
}
cmake --build "build/$preset" ${1:+--target "$@"} -- --quiet
