#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh
scripts/check-format.sh
for preset in release asan; do
  scripts/build.sh "$preset"
  ctest --preset "$preset" --parallel "$(nproc)"
done
