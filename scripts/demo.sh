#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job on a sample: a scan is read and written
# again in both forms.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh
scripts/build.sh release cloudconv

cloudconv=build/release/tools/cloudconv/cloudconv
sample=examples/ripple_scan.ply
out=build/demo
mkdir -p "$out"

# run COMMAND...: prints the command, then runs it.
run() {
  echo "\$ $*"
  "$@"
}

# describe FILE: prints its size and its header.
describe() {
  echo "$1, $(stat --format=%s "$1") bytes:"
  sed '/^end_header/q;s/^/    /' "$1" | sed '$d'
}

echo
describe "$sample"
run "$cloudconv" "$sample" "$out/ripple_binary.ply"
describe "$out/ripple_binary.ply"
run "$cloudconv" "$out/ripple_binary.ply" "$out/ripple_text.ply" --ascii
describe "$out/ripple_text.ply"
echo "The first and the last two points of $out/ripple_text.ply:"
sed '1,/^end_header/d' "$out/ripple_text.ply" | sed -n '1,2p;$!{h;d};H;x;p' | sed 's/^/    /'
