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
# With the limits of scripts/fuzz.sh, so that what hangs there or takes too much memory fails here.
program=("build/fuzz/fuzz/fuzz_$target" -timeout=30 -rss_limit_mb=1024)
if "${program[@]}" "$file" >/dev/null 2>&1; then
  echo "$file does not fail $target" >&2
  exit 1
fi
# The last input that still fails is the smallest. libFuzzer's own status tells only how it ended.
small=$file.small
rm -f "$small"
"${program[@]}" -minimize_crash=1 -max_total_time="$seconds" -exact_artifact_path="$small" "$file" \
  >/dev/null 2>&1 || true
if [ ! -f "$small" ] || [ "$(stat -c %s "$small")" -ge "$(stat -c %s "$file")" ]; then
  rm -f "$small"
  echo "nothing smaller than $(stat -c %s "$file") bytes fails $target"
  exit
fi
echo "$(stat -c %s "$file") bytes became $(stat -c %s "$small"): $small"
