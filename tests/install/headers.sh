#!/usr/bin/env bash
# headers.sh STAGE: compiles every installed header on its own, with g++ and clang++, as C++17 and
# C++20, every warning an error. Reports all that fail.
set -euo pipefail
stage=$1

include=$(find "$stage" -type d -name include)
pc=$(find "$stage" -name converters.pc)
export PKG_CONFIG_PATH=${pc%/*}
flags="$(pkg-config --cflags converters)"

# The command lines, one a header, compiler and standard.
command_lines() {
  local header compiler standard
  cd "$include"
  find . -name '*.h' -printf '%P\n' | sort | while read -r header; do
    for compiler in g++ clang++; do
      for standard in c++17 c++20; do
        # A unit that includes it twice: a header without a guard fails too.
        echo "printf '#include \"$header\"\n#include \"$header\"\n' |" \
          "$compiler -std=$standard -fsyntax-only -Wall -Wextra -Wpedantic -Wconversion -Wshadow" \
          "-Werror $flags -x c++ - || { echo '$header fails: $compiler -std=$standard'; exit 1; }"
      done
    done
  done
}

count=$(command_lines | wc -l)
command_lines | xargs -d '\n' -P "$(nproc)" -n 1 bash -o pipefail -c
echo "$((count / 4)) headers compiled alone, $count times in all"
[ "$count" -gt 0 ]
