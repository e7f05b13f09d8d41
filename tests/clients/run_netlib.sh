#!/bin/sh
# Runs one of the netlib BLAS test programs on a BLAS library and judges its report.
#
#   run_netlib.sh PROGRAM FOLDER TABLE
#
# FOLDER holds the libblas.so.3 to test; TABLE is expected.txt, which tells what counts. The program
# is the package's own file, unchanged. Fails unless the library of FOLDER, and no other BLAS, was
# loaded, exactly the expected number of lines say PASS, and exactly the listed tests fail.
# NETLIB_TESTS names another folder of programs. Exit code 77: the programs are not installed.
set -u
program=$1
folder=$(cd "$2" && pwd -P) || exit 1
table=$(cd "$(dirname "$3")" && pwd -P)/$(basename "$3")
programs=${NETLIB_TESTS:-/usr/lib/i386-linux-gnu/blas}

if [ ! -x "$programs/$program" ]; then
  echo "skipped: there is no $programs/$program (package libblas-test:i386)"
  exit 77
fi
row=$(awk -v p="$program" '$1 == "program" && $2 == p' "$table")
[ -n "$row" ] || { echo "$program is not in $table"; exit 1; }
set -- $row
input=$3 report=$4 expected=$5

work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
stdin=/dev/null
[ "$input" = - ] || stdin=$programs/$input
LD_DEBUG=files LD_DEBUG_OUTPUT="$work/loader" LD_LIBRARY_PATH="$folder" \
  LD_PRELOAD="${NETLIB_PRELOAD:-}" "$programs/$program" <"$stdin" >screen 2>&1
status=$?
[ "$report" = - ] && report=screen
[ -e "$report" ] || { cat screen; echo "$program wrote no $report (exit code $status)"; exit 1; }
cat "$report"

ok=true
fault() { echo "FAULT: $*"; ok=false; }

[ $status -eq 0 ] || { [ "$report" = screen ] || cat screen; fault "exit code $status"; }

loaded=$(sed -n 's/.*calling init: \(.*libblas[^/]*\)$/\1/p' loader.* | sort -u)
[ "$loaded" = "$folder/libblas.so.3" ] ||
  fault "the program ran on '$loaded' and not on $folder/libblas.so.3"

passes=$(grep -c -e '- PASS -' -e ' PASSED THE ' "$report")
[ "$passes" -eq "$expected" ] || fault "$passes lines say PASS, expected are $expected"

# A test of level 1 fails when no PASS follows its heading; the others say FAILED after their name.
awk '/Test of subprogram number/ { if (test) print test; test = $6 }
     /- PASS -/ { test = "" }
     /FAILED/ { gsub(/\*/, ""); print $1 }
     END { if (test) print test }' "$report" | sort -u >failed
awk -v p="$program" '$1 == "differs" && $2 == p { print $3 }' "$table" | sort -u >listed
for test in $(comm -23 failed listed); do fault "$test fails"; done
for test in $(comm -13 failed listed); do
  fault "$test is listed as a known difference and passes: take it off the list"
done

$ok && echo "$program: $passes passes, $(grep -c . listed) known differences, on $loaded"
