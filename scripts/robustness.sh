#!/usr/bin/env bash
# scripts/robustness.sh: the fuzz targets for a minute each, the thread sanitizer, clang's arithmetic
# sanitizers and valgrind, on the tests that are about them. About ten minutes on two cores.
set -euo pipefail
cd "$(dirname "$0")/.."

# The fuzz targets and the formats of their inputs.
declare -A format
while read -r target inputs; do
  format[$target]=$inputs
done < <(sed -nE 's/^converters_fuzz_target\((\w+) (\w+).*/\1 \2/p' fuzz/CMakeLists.txt)
passed=0

# runs COMMAND...: one check, silent unless it fails.
runs() {
  local log
  log=$(mktemp)
  if ! "$@" >"$log" 2>&1; then
    echo "FAILED: $*"
    tail -n 60 "$log"
    exit 1
  fi
  rm -f "$log"
  passed=$((passed + 1))
}

echo "Fuzz targets"
scripts/fuzz.sh 60
passed=$((passed + ${#format[@]}))

echo "Thread sanitizer"
scripts/build.sh tsan threads_test
runs build/tsan/tests/threads_test

# Everything that computes; dxflib and the others come as they are.
echo "Arithmetic sanitizers"
integer_tests=(dxf_intake_test dxf_text_writer_test from_dxf_test from_ply_test
  number_format_test ply_body_test ply_header_test ply_reader_differential_test
  point_extraction_test spline_test stitching_test)
scripts/build.sh integer "${integer_tests[@]}"
for test in "${integer_tests[@]}"; do
  # The sanitizers' allocator ends the process where others throw std::bad_alloc.
  runs "build/integer/tests/$test" --gtest_filter=-'*BeyondTheAddressSpace*'
done

# Sees what sanitizers do not: dxflib, which is not built with them. Tests that compare millions of
# values, run out of memory on purpose or measure are left out.
echo "Valgrind"
valgrind=(valgrind --quiet --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite)
valgrind_tests=(adapter_test document_test dxf_draw_test dxf_reader_test entities_test from_dxf_test
  layers_test ply_header_reader_test ply_header_test polyline_test spline_test)
targets=("${!format[@]}")
scripts/build.sh release "${valgrind_tests[@]}" "${targets[@]/#/replay_}"
for test in "${valgrind_tests[@]}"; do
  runs "${valgrind[@]}" "build/release/tests/$test"
done
runs "${valgrind[@]}" build/release/tests/dxf_intake_test \
  --gtest_filter='DxfDecoder.*:DxfIntake.Puts*:DxfIntake.ReadsI*'
for target in "${!format[@]}"; do
  inputs=("fuzz/corpus/${format[$target]}")
  if [ -d "fuzz/regressions/$target" ]; then
    inputs+=("fuzz/regressions/$target")
  fi
  runs "${valgrind[@]}" "build/release/fuzz/replay_$target" "${inputs[@]}"
done
echo "$passed passed, 0 failed"
