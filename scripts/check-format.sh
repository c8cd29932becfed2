#!/usr/bin/env bash
# Fails when a source file is not formatted as .clang-format says.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/sources.sh | xargs -d '\n' clang-format-14 --dry-run --Werror
