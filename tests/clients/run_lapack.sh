#!/bin/sh
# Runs one of the LAPACK test programs of linear systems on a BLAS library and judges its report.
#
#   run_lapack.sh PROGRAM FOLDER TABLE [NORMS]
#
# FOLDER holds the libblas.so.3 to test; TABLE is expected_lapack.txt, which tells what counts. The
# program is the package's own file, unchanged, on its own input. NORMS is a library that is loaded
# first and scales its norms. Fails unless exactly the listed groups fail and exactly the expected
# number pass. Exit code 77: the programs are not installed.
set -u
program=$1
folder=$(cd "$2" && pwd -P) || exit 1
table=$3 norms=${4:-}
programs=${LAPACK_TESTS:-/usr/lib/i386-linux-gnu/lapack}

if [ ! -x "$programs/$program" ]; then
  echo "skipped: there is no $programs/$program (package liblapack-test:i386)"
  exit 77
fi
kind=plain
[ -z "$norms" ] || kind=scaled
row=$(awk -v p="$program" -v k="$kind" '$1 == "program" && $2 == p && $3 == k' "$table")
[ -n "$row" ] || { echo "$program $kind is not in $table"; exit 1; }

work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
awk -v p="$program" -v k="$kind" '$1 == "differs" && $2 == p && $3 == k { print $4 }' "$table" |
  sort -u >"$work/listed"
set -- $row
input=$4 expected=$5

LD_DEBUG=files LD_DEBUG_OUTPUT="$work/loader" LD_LIBRARY_PATH="$folder" \
  LD_PRELOAD="$norms ${NETLIB_PRELOAD:-}" "$programs/$program" <"$programs/$input" >"$work/screen" 2>&1
status=$?
ok=true
fault() { echo "FAULT: $*"; ok=false; }
[ $status -eq 0 ] || fault "exit code $status"
grep -q 'End of tests' "$work/screen" || fault "the report has no end"

loaded=$(sed -n 's/.*calling init: \(.*libblas[^/]*\)$/\1/p' "$work"/loader.* | sort -u)
[ "$loaded" = "$folder/libblas.so.3" ] ||
  fault "the program ran on '$loaded' and not on $folder/libblas.so.3"

# "All tests for DGE routines passed the threshold", "DGB drivers: 9 error messages recorded",
# "CPB: 57 out of 3458 tests failed to pass the threshold".
passes=$(grep -c 'All tests for .* passed the threshold' "$work/screen")
[ "$passes" -eq "$expected" ] || fault "$passes groups pass, expected are $expected"
sed -n 's/^ *\([A-Z0-9]*\)\( drivers\)\{0,1\} *: *[0-9]* out of .* failed to pass.*/\1/p
        s/^ \*\*\* Error code from \([A-Z]\{3\}\).*/\1/p' "$work/screen" | sort -u >"$work/failed"
for group in $(comm -23 "$work/failed" "$work/listed"); do
  fault "$group fails"
  grep "$group" "$work/screen" | head -n 5
done
for group in $(comm -13 "$work/failed" "$work/listed"); do
  fault "$group is listed as a known difference and passes: take it off the list"
done
$ok && echo "$program: $passes groups pass, $(grep -c . "$work/listed") known differences, on $loaded"
