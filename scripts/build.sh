#!/usr/bin/env bash
# scripts/build.sh PRESET [TARGET...]: configures a preset where needed and builds it.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=$1
shift
if [ ! -f "build/$preset/build.ninja" ]; then
  cmake --preset "$preset" >"/tmp/converters-configure-$$.log" 2>&1 || {
    cat "/tmp/converters-configure-$$.log"
    exit 1
  }
  rm -f "/tmp/converters-configure-$$.log"
fi
cmake --build "build/$preset" ${1:+--target "$@"} -- --quiet
