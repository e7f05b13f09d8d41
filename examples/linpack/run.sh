#!/bin/sh
# The Linpack benchmark on MPI, as Debian packages it for i386, unchanged: on the reference BLAS and on
# the drop-in BLAS. It solves a dense system of order N, checks its residual, and tells its rate.
#   run.sh [N [PROCESSES]]          (JEX_BUILD: the build folder, JEX_TREE: the Debian tree in it)
set -eu
order=${1:-2000}
processes=${2:-2}
root=$(cd "$(dirname "$0")/../.." && pwd)
build=${JEX_BUILD:-$root/build/linux}
tree=${JEX_TREE:-$build/debian-tree}
"$root/packaging/debian_tree.sh" "$tree"

libraries=$tree/opt/jex
mkdir -p "$libraries/jex" "$tree/tmp/linpack"
cp "$build/lib/libjex_core.so" "$build/lib/libjex_q7t.so" "$libraries"
cp "$build/lib/jex/libblas.so.3" "$libraries/jex"
sed -e "s/@order@/$order/" -e "s/@processes@/$processes/" "$root/examples/linpack/hpccinf.txt.in" \
  > "$tree/tmp/linpack/hpccinf.txt"

# measure NAME FOLDER: one run with the BLAS of that folder; a line of the table.
measure() {
  result=$tree/tmp/linpack/hpccoutf.txt
  rm -f "$result"
  chroot "$tree" sh -c "cd /tmp/linpack && JEX_NUM_THREADS=1 LD_LIBRARY_PATH=$2 \
    mpirun --allow-run-as-root --oversubscribe -np $processes hpcc" \
    > "$tree/tmp/linpack/log" 2>&1 || {
    cat "$tree/tmp/linpack/log"
    exit 1
  }
  awk -v name="$1" -F= '
    /^\|\|Ax-b\|\|_oo/ { split($2, word, " "); residual = word[1]; verdict = word[3] }
    /^HPL_Tflops=/ { rate = 1000 * $2 }
    /^HPL_time=/ { time = $2 }
    END {
      printf "%-16s %10.3f %10.2f %12s %s\n", name, time, rate, residual, verdict
      exit verdict != "PASSED"
    }' "$result"
}

printf 'order %d, %d processes\n%-16s %10s %10s %12s\n' \
  "$order" "$processes" BLAS seconds GFLOP/s residual
measure reference /usr/lib/i386-linux-gnu/blas
measure jex /opt/jex/jex
