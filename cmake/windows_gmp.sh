#!/bin/sh
# GNU MP for Windows from Debian's own source package, once: build/windows-gmp/install has the header,
# the import library and libgmp-10.dll. Needs no rights: the package index is one of our own.
set -eu
cd "$(dirname "$0")/.."
root=$PWD/build/windows-gmp
[ ! -e "$root/install/lib/libgmp.dll.a" ] || exit 0

say() { printf '%s\n' "windows_gmp: $*"; }

rm -rf "$root"
mkdir -p "$root/apt/lists/partial" "$root/apt/cache/archives/partial" "$root/object"
exec 3> "$root/log"
. /etc/os-release
keys=/usr/share/keyrings/debian-archive-keyring.gpg
echo "deb-src [signed-by=$keys] http://deb.debian.org/debian $VERSION_CODENAME main" \
  > "$root/apt/sources.list"
apt="apt-get -q -o Dir::Etc::sourcelist=$root/apt/sources.list -o Dir::Etc::sourceparts=-
  -o Dir::State::Lists=$root/apt/lists -o Dir::Cache=$root/apt/cache -o APT::Sandbox::User="
cd "$root"
# shellcheck disable=SC2086
if ! { $apt update && $apt source gmp; } >&3 2>&1; then
  say "the source package of gmp cannot be had; $root/log tells why"
  exit 1
fi
# Debian leaves the manual out, whose Makefile the build still asks for.
for source in gmp-*/; do
  mkdir -p "$source/doc"
  printf 'all install:\n' > "$source/doc/Makefile.in"
done
cd object
say "building GNU MP for Windows"
# -static-libgcc stands with the compiler, since libtool drops it elsewhere.
if ! {
  ../gmp-*/configure --host=i686-w64-mingw32 --build="$(gcc -dumpmachine)" --prefix="$root/install" \
    --enable-shared --disable-static --disable-cxx \
    CC="i686-w64-mingw32-gcc-posix -static-libgcc" CC_FOR_BUILD=gcc NM=i686-w64-mingw32-nm &&
    make -j"$(nproc)" MAKEINFO=true && make install MAKEINFO=true
} >&3 2>&1; then
  say "GNU MP does not build; $root/log tells why"
  exit 1
fi
