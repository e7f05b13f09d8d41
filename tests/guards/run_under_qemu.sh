#!/bin/sh
# run_under_qemu.sh <qemu-i386 or empty> <processor> <program> [argument]...
# Runs a program on an emulated processor; 77 (not run, for ctest) where there is no emulator.
qemu=$1 processor=$2
shift 2
if [ ! -x "$qemu" ]; then
  echo "Not run: qemu-i386 is not installed (package qemu-user)."
  exit 77
fi
exec "$qemu" -cpu "$processor" "$@"
