#!/usr/bin/env bash
# scripts/bench.sh [--quick] [--growth]: builds the benchmark, measures every conversion beside its
# peers, and prints one table of ratios against the goals.
#
# --quick   three rounds instead of eleven, and drawings of 100,000 points
# --growth  in the place of the goals: how time grows from 1,000 to 5,000,000 points
#
# Takes minutes. Leaves what was measured in build/benchmark.
set -euo pipefail
cd "$(dirname "$0")/.."

rounds=11
report=goals
drawing_size=1000000
scanned='|stitching-scan/100000'
for option in "$@"; do
  case $option in
  --quick)
    rounds=3
    drawing_size=100000
    scanned=
    ;;
  --growth) report=growth ;;
  *)
    echo "usage: $0 [--quick] [--growth]" >&2
    exit 2
    ;;
  esac
done

scripts/install-dependencies.sh --bench
scripts/build.sh release -DCONVERTERS_BUILD_BENCHMARKS=ON converters_benchmark peak_memory \
  path_benchmark cloudconv

mkdir -p build/benchmark
if [ "$report" = goals ]; then
  size=1000000
  filter="^(pack|(to|from)Ply.*|sampling.*)/$size\$|Dxf(-.*)?/$drawing_size\$|Lines|Ordinary|^readScan|^from_file|^stitching(-scan)?/[0-9]{4,5}\$|^stitching/[0-9]{6,7}\$$scanned"
else
  size=5000000
  rounds=4
  filter='/[0-9]+$'
fi

# Rounds in random order: what else the machine does meanwhile falls on all alike.
build/release/benchmarks/converters_benchmark --benchmark_filter="$filter" \
  --benchmark_repetitions="$rounds" --benchmark_enable_random_interleaving=true \
  --benchmark_min_time=0.05 --benchmark_display_aggregates_only=true \
  --benchmark_out="build/benchmark/$report.json" --benchmark_out_format=json \
  >build/benchmark/console.txt 2>&1 || {
  cat build/benchmark/console.txt
  exit 1
}
build/release/benchmarks/peak_memory "$size" >build/benchmark/memory.json
status=0
python3 benchmarks/report.py "$report" "build/benchmark/$report.json" \
  build/benchmark/memory.json || status=1

if [ "$report" = goals ]; then
  shopt -s nullglob globstar
  build/release/benchmarks/path_benchmark "$rounds" "$drawing_size" benchmarks/ezdxf_path.py \
    build/release/tools/cloudconv/cloudconv ../shared/data/**/*.dxf >build/benchmark/path.json
  python3 benchmarks/path_report.py build/benchmark/path.json || status=1
fi
exit "$status"
