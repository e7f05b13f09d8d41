#!/bin/sh
# Installs the Debian packages in a clean tree of 32 bits, uses them from there in C, C++ and Fortran,
# and takes them away again.
#   packages.sh BUILD PROGRAMS TREE
set -eu
build=$1 programs=$2 tree=$3
inside() { chroot "$tree" "$@"; }
chosen_blas() { inside readlink -f /usr/lib/i386-linux-gnu/libblas.so.3; }
fail() {
  echo "packages.sh: $*"
  exit 1
}

remove() { inside dpkg -r libjex-dev jex-tour libjex > /dev/null 2>&1; }
remove || true  # what a run that failed left there
rm -rf "$tree/packages" "$tree/use"
(cd "$build" && cpack -B "$tree/packages" > "$tree.packages.log")
cp -r "$programs" "$tree/use"
before=$(chosen_blas)
inside sh -c 'dpkg -i /packages/*.deb' > /dev/null
[ "$(chosen_blas)" = /usr/lib/i386-linux-gnu/jex/libblas.so.3 ] || fail "BLAS is $(chosen_blas)"

inside cmake -S /use -B /use/build > /dev/null
inside cmake --build /use/build > /dev/null
for program in sparse_product heat least_squares; do inside /use/build/$program; done
inside sh -c 'cd /use && cc sparse_product.c -o by_pkg_config $(pkg-config --cflags --libs jex)'
inside /use/by_pkg_config
# Linked with the name that every BLAS bears, it comes to ours by the alternative.
inside sh -c 'cd /use && gfortran least_squares.f90 -o by_name -l:libblas.so.3 && ./by_name'
inside sh -c 'ldd /use/by_name | grep -q libjex_core' || fail "the alternative does not serve"
# The tree has no /proc, by which the tour finds its own data.
inside sh -c 'cd /tmp && jex-tour --family sparse --out tour /usr/share/jex/membrane.mtx' > /dev/null

remove
[ "$(chosen_blas)" = "$before" ] || fail "after removal BLAS is $(chosen_blas), was $before"
[ -z "$(inside find / -xdev -path /packages -prune -o -path /use -prune -o -path /opt -prune -o \
  -path /tmp -prune -o -name '*jex*' -print)" ] || fail "the packages leave files behind"
