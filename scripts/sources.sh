#!/usr/bin/env bash
# scripts/sources.sh [FOLDER...]: lists the C++ sources and headers in the named folders, or in all; not
# what was built. It asks no repository: the project may come as an archive.
set -euo pipefail
cd "$(dirname "$0")/.."
find "${@:-.}" -name build -prune -o -type f \( -name '*.h' -o -name '*.cpp' \) -print
