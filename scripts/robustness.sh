#!/usr/bin/env bash
# scripts/robustness.sh: the fuzz targets for a minute each; all tests with clang's arithmetic
# sanitizers, and with the standard library's assertions; the thread sanitizer and valgrind, on the
# tests that are about them. About ten minutes on two cores, and as many for the first builds.
set -euo pipefail
cd "$(dirname "$0")/.."

# The fuzz targets and the formats of their inputs.
declare -A format
while read -r target inputs; do
  format[$target]=$inputs
done < <(sed -nE 's/^converters_fuzz_target\((\w+) (\w+).*/\1 \2/p' fuzz/CMakeLists.txt)
logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT
passed=0
failed=0
running=0

# awaits_one: waits for one of the checks that run.
awaits_one() {
  running=$((running - 1))
  if wait -n; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
  fi
}

# runs COMMAND...: one check beside others, silent unless it fails.
runs() {
  if [ "$running" -ge "$(nproc)" ]; then
    awaits_one
  fi
  {
    log=$logs/$BASHPID
    "$@" >"$log" 2>&1 || {
      printf 'FAILED: %s\n%s\n' "$*" "$(tail -n 60 "$log")"
      exit 1
    }
  } &
  running=$((running + 1))
}

# stage TITLE: ends one and starts the next.
stage() {
  while [ "$running" -gt 0 ]; do
    awaits_one
  done
  echo "$SECONDS s: $1"
}

stage "fuzz targets"
if FUZZ_SEED=1 scripts/fuzz.sh 60; then
  passed=$((passed + ${#format[@]}))
else
  failed=$((failed + 1))
fi

stage "thread sanitizer"
scripts/build.sh tsan threads_test
runs build/tsan/tests/threads_test

for preset in integer debug; do
  stage "all tests, preset $preset"
  scripts/build.sh "$preset"
  if ctest --preset "$preset" --parallel "$(nproc)" >"$logs/$preset"; then
    passed=$((passed + 1))
    grep 'tests passed' "$logs/$preset"
  else
    failed=$((failed + 1))
    grep -vE '^ +Start +[0-9]+: | Passed +[0-9.]+ sec$' "$logs/$preset"
  fi
done

# Sees what sanitizers do not: dxflib, which is not built with them. What reads and writes drawings,
# but for tests that compare millions of values or mount file systems.
stage "valgrind"
valgrind=(valgrind --quiet --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite)
valgrind_tests=(dxf_document_test dxf_reader_test dxf_adapter_test dxf_draw_test dxf_writer_test
  dxf_entity_test from_dxf_test dxf_spline_test)
targets=("${!format[@]}")
scripts/build.sh release "${valgrind_tests[@]}" dxf_intake_test to_dxf_test "${targets[@]/#/replay_}"
for test in "${valgrind_tests[@]}"; do
  runs "${valgrind[@]}" "build/release/tests/$test"
done
runs "${valgrind[@]}" build/release/tests/dxf_intake_test \
  --gtest_filter='DxfDecoder.*:DxfIntake.Puts*:DxfIntake.ReadsI*'
runs "${valgrind[@]}" build/release/tests/to_dxf_test \
  --gtest_filter='ToDxf.*Written*:ToDxf.EmptyVector*:ToDxf.Cloud*:ToDxf.Dxflib*:ToDxf.LeftOverFile*'
for target in "${!format[@]}"; do
  inputs=("fuzz/corpus/${format[$target]}")
  if [ -d "fuzz/regressions/$target" ]; then
    inputs+=("fuzz/regressions/$target")
  fi
  runs "${valgrind[@]}" "build/release/fuzz/replay_$target" "${inputs[@]}"
done

stage "the end"
echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
