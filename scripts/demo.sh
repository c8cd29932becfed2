#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job on a sample.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh
scripts/build.sh release
