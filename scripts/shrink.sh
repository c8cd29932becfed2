#!/usr/bin/env bash
# scripts/shrink.sh TARGET FILE [SECONDS]: makes a FILE that fails the fuzz target smaller, with what
# makes it fail, for a minute or as many seconds. The smallest one found is FILE.small.
set -euo pipefail
if [ $# -lt 2 ] || [ ! -f "$2" ]; then
  sed -n '2,3s/^# //p' "$0" >&2
  exit 2
fi
target=$1
file=$(realpath "$2")
seconds=${3-60}
cd "$(dirname "$0")/.."

scripts/build.sh fuzz "fuzz_$target"
program=build/fuzz/fuzz/fuzz_$target
if "$program" "$file" >/dev/null 2>&1; then
  echo "$file does not fail $target" >&2
  exit 1
fi
# The last input that still fails is the smallest. libFuzzer's own status tells only how it ended.
"$program" -minimize_crash=1 -max_total_time="$seconds" -exact_artifact_path="$file.small" "$file" \
  >/dev/null 2>&1 || true
if [ ! -f "$file.small" ]; then
  echo "nothing smaller than $(stat -c %s "$file") bytes fails $target"
  exit
fi
echo "$(stat -c %s "$file") bytes became $(stat -c %s "$file.small"): $file.small"
