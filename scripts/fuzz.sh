#!/usr/bin/env bash
# scripts/fuzz.sh SECONDS [TARGET...]: runs each fuzz target (or those named: from_ply, from_dxf...)
# for this long, two at a time (FUZZ_JOBS=N: N at a time). FUZZ_SEED=N makes the same changes to
# inputs as the last run with that number; without, every run makes others.
#
# What a target learns stays in build/fuzz/corpus/TARGET for the next run; what it finds is in
# build/fuzz/findings/TARGET, and its output in build/fuzz/TARGET.log. Fails when any finds
# something.
#
# An input is a hang when it takes longer than a second, without sanitizers. They make targets up
# to ten times slower, and targets do more than the library, perhaps on a busy machine, so here it is
# thirty seconds.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ $# -lt 1 ]; then
  echo "usage: $0 SECONDS [TARGET...]" >&2
  exit 2
fi
seconds=$1
shift
# The targets and the formats of their inputs.
declare -A format
while read -r target inputs; do
  format[$target]=$inputs
done < <(sed -nE 's/^converters_fuzz_target\((\w+) (\w+).*/\1 \2/p' fuzz/CMakeLists.txt)
targets=("$@")
if [ "${#targets[@]}" -eq 0 ]; then
  targets=("${!format[@]}")
fi

scripts/install-dependencies.sh
scripts/build.sh fuzz "${targets[@]/#/fuzz_}"

run() {
  local target=$1 dictionary=()
  local learnt=build/fuzz/corpus/$target findings=build/fuzz/findings/$target
  mkdir -p "$learnt" "$findings"
  case ${format[$target]} in
  Dxf | PathText) dictionary=(-dict=fuzz/dxf.dict) ;;
  Ply) dictionary=(-dict=fuzz/ply.dict) ;;
  esac
  local seeds=("fuzz/corpus/${format[$target]}")
  if [ -d "fuzz/regressions/$target" ]; then
    seeds+=("fuzz/regressions/$target")
  fi
  # Memory: what the library may take for 64 KiB, and as much again for the sanitizers.
  if "build/fuzz/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len=65536 -timeout=30 \
    -rss_limit_mb=1024 -seed="${FUZZ_SEED:-0}" -print_final_stats=1 "${dictionary[@]}" \
    -artifact_prefix="$findings/" "$learnt" "${seeds[@]}" >"build/fuzz/$target.log" 2>&1; then
    echo "$target: $(grep -oE 'cov: [0-9]+' "build/fuzz/$target.log" | tail -n 1)," \
      "$(grep number_of_executed_units "build/fuzz/$target.log" | grep -oE '[0-9]+') inputs"
  else
    echo "$target: FOUND SOMETHING"
    grep -vE '^#[0-9]+' "build/fuzz/$target.log" | tail -n 40
    return 1
  fi
}

failed=0
running=0
for target in "${targets[@]}"; do
  if [ "$running" -ge "${FUZZ_JOBS:-2}" ]; then
    wait -n || failed=1
    running=$((running - 1))
  fi
  run "$target" &
  running=$((running + 1))
done
while [ "$running" -gt 0 ]; do
  wait -n || failed=1
  running=$((running - 1))
done
exit "$failed"
