#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job on samples: a drawing becomes a walk of
# points, a scan becomes a drawing, a scan is written in both forms of PLY, and a drawing whose outline
# is broken is checked and drawn.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-dependencies.sh
scripts/build.sh release cloudconv

cloudconv=build/release/tools/cloudconv/cloudconv
drawing=examples/plate.dxf
scan=examples/ripple_scan.ply
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

# kinds FILE: counts the objects of a drawing by kind.
kinds() {
  echo "$1, $(stat --format=%s "$1") bytes:"
  awk 'NR % 2 { code = $1; next } code == 0 && /^[A-Z]*$/ { ++count[$1] }
       END { for (kind in count) print "    " count[kind], kind }' "$1" |
    grep -vwE 'SECTION|ENDSEC|TABLE|ENDTAB|SEQEND|EOF' | sort -k 2
}

echo "== A drawing becomes a walk of points"
kinds "$drawing"
run "$cloudconv" "$drawing" "$out/plate.ply" --ascii
describe "$out/plate.ply"
echo "The first two points (x y z, and the number of the contour) and the last two:"
sed '1,/^end_header/d' "$out/plate.ply" | sed -n '1,2p;$!{h;d};H;x;p' | sed 's/^/    /'

echo
echo "== A scan becomes a drawing"
describe "$scan"
run "$cloudconv" "$scan" "$out/ripple.dxf"
kinds "$out/ripple.dxf"

echo
echo "== A scan in both forms of PLY"
run "$cloudconv" "$scan" "$out/ripple_binary.ply"
describe "$out/ripple_binary.ply"
run "$cloudconv" "$out/ripple_binary.ply" "$out/ripple_text.ply" --ascii
describe "$out/ripple_text.ply"

echo
echo "== A drawing whose outline is broken"
run "$cloudconv" check examples/plate_with_gap.dxf || [ $? -eq 3 ]
run "$cloudconv" preview examples/plate_with_gap.dxf "$out/plate_with_gap.svg"
echo "$out/plate_with_gap.svg shows where."
