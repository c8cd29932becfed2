#!/usr/bin/env bash
# symbols.sh NM READELF LIBRARY...: compares what the libraries export with exported-symbols.txt,
# name by name; with UPDATE=1 in the environment it writes that file instead. Fails, too, when a
# library looks for what it imports only when it is called.
#
# The list is the same for every processor. It has neither instances of std and boost templates nor
# inline functions: the linker maps beside the libraries' sources keep those local.
set -euo pipefail
nm=$1
readelf=$2
libraries=("${@:3}")
list=$(dirname "$0")/exported-symbols.txt

# Constructors and destructors have several entry points of one name: one line each.
exported() {
  for library in "${libraries[@]}"; do
    "$nm" --dynamic --defined-only --demangle "$library" | cut -d ' ' -f 3-
  done | LC_ALL=C sort -u
}

if [ "${UPDATE-}" = 1 ]; then
  exported >"$list"
  exit
fi
diff --unified=0 --label "documented in $list" "$list" --label exported <(exported) || {
  echo "Where the difference is meant: UPDATE=1 $0 ${*@Q}"
  exit 1
}
for library in "${libraries[@]}"; do
  # Reads all of it: what writes to a pipe that is closed fails.
  "$readelf" --dynamic "$library" | grep BIND_NOW >/dev/null || {
    echo "$library is bound lazily"
    exit 1
  }
done
echo "$(wc -l <"$list") exported names, all of them documented"
