#!/bin/sh
# Includes point down only: base <- core <- net <- http <- ofx <- services <-
# wrappers, with markup on base and core. A file may include its own level or below.
set -eu
src="$1/src"
status=0
allowed() {
  case "$1" in
    base) echo "base" ;;
    core) echo "base core" ;;
    markup) echo "base core markup" ;;
    net) echo "base core net" ;;
    http) echo "base core net http" ;;
    ofx) echo "base core markup net http ofx" ;;
    services) echo "base core markup net http ofx services" ;;
    wrappers) echo "base core markup net http ofx services wrappers" ;;
  esac
}
for dir in base core markup net http ofx services wrappers; do
  [ -d "$src/$dir" ] || continue
  ok=$(allowed "$dir")
  for file in "$src/$dir"/*; do
    [ -f "$file" ] || continue
    for target in $(sed -n 's/^#include "\([a-z]*\)\/.*"/\1/p' "$file"); do
      case " $ok " in
        *" $target "*) ;;
        *) echo "${file#$1/} includes $target/, which sits above $dir/"; status=1 ;;
      esac
    done
  done
done
[ "$status" -eq 0 ] && echo "layering ok"
exit "$status"
