#!/usr/bin/env bash
# manual.sh PAGE PROGRAM...: every command of the program, and every option that its help and theirs
# list, is in its manual page.
set -euo pipefail
page=$(sed 's/\\-/-/g' "$1")
program=("${@:2}")
commands=$("${program[@]}" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
count=0
check() {
  count=$((count + 1))
  grep -qE -- "(^|[^a-z-])$1([^a-z-]|\$)" <<<"$page" || {
    echo "the manual page does not mention $1"
    exit 1
  }
}
for command in '' $commands; do
  [ -z "$command" ] || check "$command"
  for option in $("${program[@]}" $command --help | grep -E '^ +-' | grep -oE -- '--[a-z][a-z-]*'); do
    check "$option"
  done
done
echo "$count commands and options in the help, all of them in the manual page"
[ "$count" -gt 3 ]
