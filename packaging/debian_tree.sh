#!/bin/sh
# A clean Debian of 32 bits in a folder: its compilers, CMake, the reference BLAS and the Linpack
# benchmark on MPI. Exit code 77, with the reason, where none can be made.
#   debian_tree.sh FOLDER
set -eu
tree=$1
[ ! -e "$tree/complete" ] || exit 0

cannot() {
  printf 'skipped: no Debian tree of 32 bits: %s\n' "$*"
  exit 77
}

[ "$(id -u)" = 0 ] || cannot "only root can enter it"
for program in mmdebstrap arch-test; do
  command -v $program > /dev/null || cannot "there is no $program"
done
rm -rf "$tree"
mkdir -p "$(dirname "$tree")"
. /etc/os-release
mmdebstrap --mode=root --architectures=i386 --variant=apt \
  --include=gcc,g++,gfortran,cmake,make,pkg-config,libblas3,hpcc \
  "$VERSION_CODENAME" "$tree" http://deb.debian.org/debian > "$tree.log" 2>&1 ||
  cannot "$(tail -n 1 "$tree.log") ($tree.log tells more)"
touch "$tree/complete"
