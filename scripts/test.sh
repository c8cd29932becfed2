#!/usr/bin/env bash
# scripts/test.sh [--aarch64|--robustness]: installs what is missing, builds, and runs every test.
#
# Without an option for this machine, optimised and with sanitizers; with --aarch64 cross-built
# for that processor and run under emulation; with --robustness what takes other tools:
# scripts/robustness.sh.
set -euo pipefail
cd "$(dirname "$0")/.."

presets=(release asan)
tries=()
case ${1-} in
'') ;;
--aarch64)
  presets=(aarch64)
  # The emulator itself has been seen to hang, once, where the processor does not.
  tries=(--repeat after-timeout:2)
  ;;
--robustness)
  scripts/install-dependencies.sh
  exec scripts/robustness.sh
  ;;
*)
  echo "usage: $0 [--aarch64|--robustness]" >&2
  exit 2
  ;;
esac

scripts/install-dependencies.sh "$@"
# For the builds that tests make.
. scripts/compiler-cache.sh
scripts/check-format.sh
for preset in "${presets[@]}"; do
  values=()
  if [ "$preset" = release ]; then
    values+=(-DCONVERTERS_BUILD_PYTHON=ON)
  fi
  scripts/build.sh "$preset" "${values[@]}"
  # Shows what failed or was skipped and the closing lines.
  ctest --preset "$preset" --parallel "$(nproc)" "${tries[@]}" |
    grep -vE '^ +Start +[0-9]+: | Passed +[0-9.]+ sec$'
  if [ "$preset" = release ]; then
    tail -n 1 build/release/python/pytest.log
  fi
done
