#!/bin/sh
# Compares the names that the drop-in BLAS exports with those of the installed netlib library.
#
#   check_symbols.sh DROPIN NETLIB PENDING
#
# Every name that NETLIB exports must be exported by DROPIN, but for those that match a pattern of
# PENDING (lines of extended regular expressions; # starts a comment). A pending name that DROPIN
# does export fails too, and so does any name of DROPIN that is no BLAS name. Exit code 77: no NETLIB.
set -u
dropin=$1 netlib=$2 pending=$3
if [ ! -e "$netlib" ]; then
  echo "skipped: there is no $netlib (package libblas3:i386)"
  exit 77
fi
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT

names() { nm -D --defined-only "$1" | awk '{ print $3 }' | sort -u; }
names "$dropin" >"$work/ours" && names "$netlib" >"$work/theirs" || exit 1
[ "$(grep -c . "$work/theirs")" -gt 100 ] || { echo "cannot read the names of $netlib"; exit 1; }
sed 's/#.*//; s/[[:space:]]*$//; /^$/d' "$pending" >"$work/patterns"

comm -13 "$work/ours" "$work/theirs" >"$work/absent"
comm -23 "$work/ours" "$work/theirs" >"$work/extra"
ok=true
for name in $(grep -v -x -E -f "$work/patterns" "$work/absent"); do
  echo "not exported: $name"
  ok=false
done
for name in $(grep -x -E -f "$work/patterns" "$work/ours"); do
  echo "exported, yet on the list of pending names: $name"
  ok=false
done
# Extensions: the smallest magnitude beside the largest, and products of three real ones.
for name in $(grep -v -x -E '(cblas_)?i[sdcz]amin|i[sdcz]amin(sub)?_|(cblas_)?[cz]gemm3m_?' "$work/extra"); do
  echo "exported, but no name of the BLAS: $name"
  ok=false
done
$ok && echo "$(comm -12 "$work/ours" "$work/theirs" | grep -c .) of the $(grep -c . "$work/theirs")" \
  "names of $netlib are exported, $(grep -c . "$work/absent") are pending"
