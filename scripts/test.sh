#!/usr/bin/env bash
# scripts/test.sh [--aarch64|--aarch64-results|--robustness]: installs what is missing, builds, and
# runs every test.
#
# Without an option for this machine, optimised and with sanitizers; with --aarch64 cross-built
# for that processor and run under emulation; with --aarch64-results only those tests that compare
# what comes out with what comes out here; with --robustness what takes other tools:
# scripts/robustness.sh.
set -euo pipefail
cd "$(dirname "$0")/.."

presets=(release asan)
tries=()
targets=()
tests=.
case ${1-} in
'') ;;
--aarch64 | --aarch64-results)
  presets=(aarch64)
  # The emulator itself has been seen to hang, once, where the processor does not.
  tries=(--repeat after-timeout:2)
  if [ "$1" = --aarch64-results ]; then
    targets=(determinism_test read_path_test)
    tests='^(determinism_test|read_path_test)$'
  fi
  ;;
--robustness)
  scripts/install-dependencies.sh
  exec scripts/robustness.sh
  ;;
*)
  echo "usage: $0 [--aarch64|--aarch64-results|--robustness]" >&2
  exit 2
  ;;
esac

scripts/install-dependencies.sh ${1:+--aarch64}
# For the builds that tests make.
. scripts/compiler-cache.sh
scripts/check-format.sh
for preset in "${presets[@]}"; do
  values=()
  if [ "$preset" = release ]; then
    values+=(-DCONVERTERS_BUILD_PYTHON=ON)
  fi
  scripts/build.sh "$preset" "${values[@]}" "${targets[@]}"
  # Shows what failed or was skipped and the closing lines.
  ctest --preset "$preset" --parallel "$(nproc)" --tests-regex "$tests" "${tries[@]}" |
    grep -vE '^ +Start +[0-9]+: | Passed +[0-9.]+ sec$'
  if [ "$preset" = release ]; then
    tail -n 1 build/release/python/pytest.log
  fi
done
