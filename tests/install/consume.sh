#!/usr/bin/env bash
# consume.sh KIND STAGE WORK CXX [EMULATOR...]: builds the consumer program from scratch in the
# folder WORK, runs it, and checks that it was linked with the library it should be.
#
# KIND is find_package or pkg-config, which use the install in the folder STAGE, or subdirectory,
# which uses the sources.
set -euo pipefail
kind=$1 stage=$2 work=$3 cxx=$4
emulator=("${@:5}")
here=$(cd "$(dirname "$0")" && pwd)

rm -rf "$work"
mkdir -p "$work"

build_with_cmake() {
  # What is compiled quickest, neither optimised nor with debugging information: it is the whole
  # library in one case.
  cmake -S "$here/$kind" -B "$work" -G Ninja -DCMAKE_BUILD_TYPE=None \
    -DCONVERTERS_PRECOMPILE_HEADERS=ON \
    -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror" \
    -DCMAKE_PREFIX_PATH="$stage" ${TOOLCHAIN_FILE:+-DCMAKE_TOOLCHAIN_FILE="$TOOLCHAIN_FILE"} \
    >"$work/configure.log" 2>&1 || {
    cat "$work/configure.log"
    return 1
  }
  cmake --build "$work" -- --quiet
}

build_with_pkg_config() {
  local pc flags
  pc=$(find "$stage" -name converters.pc)
  export PKG_CONFIG_PATH=${pc%/*}
  pkg-config --atleast-version=1.0 converters
  read -ra flags <<<"$(pkg-config --cflags --libs converters)"
  "$cxx" -std=c++17 -Wall -Wextra -Wpedantic -Werror "$here/consumer.cpp" -o "$work/consumer" \
    "${flags[@]}" "-Wl,-rpath,$(pkg-config --variable=libdir converters)"
}

case $kind in
find_package | subdirectory) build_with_cmake ;;
pkg-config) build_with_pkg_config ;;
*) exit 2 ;;
esac

"${emulator[@]}" "$work/consumer" | tee "$work/output"
grep -qx '1 2 3 4' "$work/output"

# The staged library and none that happens to be installed, or the one just built.
expected=$stage
if [ "$kind" = subdirectory ]; then
  expected=$work
fi
LD_DEBUG=libs "${emulator[@]}" "$work/consumer" 2>&1 >/dev/null |
  grep 'calling init' | grep -F "$expected" | grep -q libconverters.so.1
