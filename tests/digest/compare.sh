#!/bin/sh
# compare.sh THERE HERE...: the digests that the program THERE prints on this machine, and those of
# HERE, a command for the system that is tested, are the same; one spoiled bit is noticed.
set -eu
there=$1
shift
if [ ! -x "$there" ]; then
  echo "skipped: there is no $there to compare with (./dev build linux --target jex-digest)"
  exit 77
fi
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$there" > "$folder/there"
"$@" | tr -d '\r' > "$folder/here"
"$@" spoiled | tr -d '\r' > "$folder/spoiled"
diff "$folder/there" "$folder/here" || { echo "the digests differ"; exit 1; }
lines=$(wc -l < "$folder/here")
[ "$lines" -gt 50 ] || { echo "only $lines digests"; exit 1; }
[ "$(diff "$folder/here" "$folder/spoiled" | grep -c '^<')" = 1 ] || { echo "a spoiled bit was not noticed"; exit 1; }
echo "$lines digests are the same"
