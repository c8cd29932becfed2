#!/usr/bin/env bash
# count_symbols.sh NM LIBRARY NAME COUNT: fails unless the library defines COUNT objects of this
# name, local ones included.
set -euo pipefail
found=$("$1" --defined-only --demangle "$2" | grep --count " [bBdD] $3\b") || true
echo "$found of $4 objects named $3"
[ "$found" = "$4" ]
