#!/usr/bin/env bash
# manual.sh PAGE PROGRAM...: every option that the program's help lists is in its manual page.
set -euo pipefail
page=$(sed 's/\\-/-/g' "$1")
help=$("${@:2}" --help)
count=0
for option in $(grep -oE -- '--[a-z][a-z-]*' <<<"$help" | sort -u); do
  count=$((count + 1))
  grep -qE -- "$option([^a-z-]|\$)" <<<"$page" || {
    echo "$1 does not mention $option"
    exit 1
  }
done
echo "$count options in the help, all of them in the manual page"
[ "$count" -gt 0 ]
