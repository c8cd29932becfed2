#!/usr/bin/env bash
# scripts/tidy.sh [SOURCE...]: has clang-tidy look at the named sources, or at all of the library, the
# command and the Python module. Fails when it finds something; .clang-tidy tells what it looks for.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh --tidy
# Every source has to be in the list of compile commands; headers that gcc has precompiled are not for
# clang.
cmake --preset release -B build/tidy -DCONVERTERS_BUILD_PYTHON=ON -DCONVERTERS_PRECOMPILE_HEADERS=OFF \
  -DCMAKE_EXPORT_COMPILE_COMMANDS=ON >/dev/null

sources=("$@")
if [ "${#sources[@]}" -eq 0 ]; then
  mapfile -t sources < <(scripts/sources.sh base converters dxfeditor universal_log_interface tools \
    python |
    grep '\.cpp$')
fi
# What clang-tidy says of warnings that it keeps to itself goes to standard error.
printf '%s\0' "${sources[@]}" |
  xargs -0 -P "$(nproc)" -n 1 clang-tidy-14 -p build/tidy --quiet 2>/dev/null
echo "clang-tidy found nothing in ${#sources[@]} sources"
