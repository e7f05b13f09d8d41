#!/bin/sh
# Shows run_netlib.sh reports that must pass and reports that must not.
#
#   run_netlib_selftest.sh RUNNER
#
# The programs are made here: each prints a report and tells, as the loader would, which BLAS it got.
set -u
runner=$1
work=$(mktemp -d) || exit 1
trap 'rm -rf "$work"' EXIT
mkdir "$work/lib" && cd "$work" || exit 1

heading() { echo "echo ' Test of subprogram number  1             $1 '"; }
pass="echo '                                    ----- PASS -----'"
loads() { echo "echo '  7: calling init: $1/libblas.so.3' >\"\$LD_DEBUG_OUTPUT.7\""; }
ours=$(loads "$(pwd -P)/lib")

# verdict EXPECTED CASE TABLE_LINE PROGRAM_LINE...: what the runner says of such a program.
bad=0
verdict() {
  want=$1 name=$2 listed=$3
  shift 3
  { echo '#!/bin/sh'; printf '%s\n' "$@"; } >fake
  chmod +x fake
  printf 'program fake - - 2\n%s\n' "$listed" >table
  if NETLIB_TESTS=$work "$runner" fake lib table >log 2>&1; then got=accepted; else got=rejected; fi
  [ $got = "$want" ] || { echo "$name: $got"; cat log; bad=1; }
}

known="differs fake C the reason"
verdict accepted "all pass" "" "$ours" "$(heading A)" "$pass" "$(heading B)" "$pass"
verdict rejected "a pass too few" "" "$ours" "$(heading A)" "$pass"
verdict rejected "a pass too many" "" "$ours" "$(heading A)" "$pass" "$(heading B)" "$pass" "$pass"
verdict rejected "no report" "" "$ours"
verdict rejected "exit code" "" "$ours" "$(heading A)" "$pass" "$(heading B)" "$pass" "exit 1"
verdict rejected "another BLAS" "" "$(loads /elsewhere)" "$(heading A)" "$pass" "$(heading B)" "$pass"
verdict rejected "unlisted failure" "" \
  "$ours" "$(heading A)" "$pass" "$(heading C)" "echo FAIL" "$(heading B)" "$pass"
verdict rejected "unlisted failure, as levels 2 and 3 report it" "" \
  "$ours" "$(heading A)" "$pass" "$(heading B)" "$pass" "echo ' ******* C FAILED ON CALL NUMBER:'"
verdict accepted "listed failure" "$known" \
  "$ours" "$(heading A)" "$pass" "$(heading C)" "echo FAIL" "$(heading B)" "$pass"
verdict rejected "listed, but passes" "$known" "$ours" "$(heading A)" "$pass" "$(heading C)" "$pass"
[ $bad -eq 0 ] && echo "10 reports judged rightly"
