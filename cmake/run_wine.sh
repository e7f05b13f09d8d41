#!/bin/sh
# Runs a Windows program: run_wine.sh PROGRAM.exe [ARGUMENTS]. JEX_WINE_TREE is the i386 tree that
# cmake/wine_tree.sh makes; where the system has a wine of its own that runs 32-bit programs, that one.
set -eu
here=$(cd "$(dirname "$0")/.." && pwd)
tree=${JEX_WINE_TREE:-$here/build/wine-tree}
export WINEPREFIX="${WINEPREFIX:-$here/build/wine-prefix}" WINEARCH=win32 WINEDEBUG="${WINEDEBUG--all}"
# Neither .NET nor a browser is wanted of a fresh prefix, nor a debugger of tests that end on purpose.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES-mscoree,mshtml,winedbg.exe=}"
if [ -e "$tree/complete" ]; then
  libraries=$tree/usr/lib/i386-linux-gnu:$tree/lib/i386-linux-gnu
  export LD_LIBRARY_PATH="$libraries${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
  exec "$tree/usr/lib/wine/wine" "$@"
fi
if [ -x /usr/lib/wine/wine ]; then
  exec /usr/lib/wine/wine "$@"
fi
echo "run_wine.sh: there is no Wine for 32-bit programs; ./dev test windows sets it up" >&2
exit 127
