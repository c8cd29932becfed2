#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job on samples: a drawing becomes its path,
# beside the walk by fixed rules, a scan becomes a drawing, a scan is written in both forms of PLY,
# and a drawing whose outline is broken is checked and drawn.
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

# points FILE: counts the contours and points of an ASCII PLY file, and shows the first and the last.
points() {
  sed '1,/^end_header/d' "$1" |
    awk '{ if ($4 != contour) ++contours; contour = $4 } NR == 1 { first = $0 } { last = $0 }
         END { print "    " contours, "contours,", NR, "points: from", first; print "    to", last }'
}

echo "== A drawing becomes its path: points along the contours (x y z, and the contour's number)"
kinds "$drawing"
run "$cloudconv" "$drawing" "$out/plate.ply" --ascii
describe "$out/plate.ply"
points "$out/plate.ply"

echo
echo "== The same drawing in two ways: its path, and the walk by the fixed rules of fromDxf"
drawing=examples/flange.dxf
kinds "$drawing"
run "$cloudconv" "$drawing" "$out/flange_path.ply" --ascii
points "$out/flange_path.ply"
run "$cloudconv" "$drawing" "$out/flange_walk.ply" --ascii --plain
points "$out/flange_walk.ply"
echo "What the walk does otherwise than drawn: findings of"
echo "\$ $cloudconv check $drawing --plain --all"
{ "$cloudconv" check "$drawing" --plain --all || [ $? -eq 3 ]; } |
  awk -F ': ' '{ ++count[$2] } END { for (kind in count) print "    " count[kind], kind }' | sort -k 2

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
