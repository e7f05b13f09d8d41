#!/bin/sh
# Debian's i386 Wine in a tree of its own, build/wine-tree, which cmake/run_wine.sh runs from where it
# is. The host is not touched and no rights are needed: beside the 64-bit system wine32 often cannot be
# installed, and for a few programs the packages only have to be unpacked.
set -eu
cd "$(dirname "$0")/.."
tree=${JEX_WINE_TREE:-$PWD/build/wine-tree}
[ ! -e "$tree/complete" ] && [ ! -x /usr/lib/wine/wine ] || exit 0

say() { printf '%s\n' "wine_tree: $*"; }

rm -rf "$tree"
mkdir -p "$tree/apt/lists/partial" "$tree/apt/cache/archives/partial"
. /etc/os-release
keys=/usr/share/keyrings/debian-archive-keyring.gpg
echo "deb [signed-by=$keys] http://deb.debian.org/debian $VERSION_CODENAME main" \
  > "$tree/apt/sources.list"
: > "$tree/apt/status"
apt="apt-get -q -o Dir::Etc::sourcelist=$tree/apt/sources.list -o Dir::Etc::sourceparts=-
  -o Dir::State=$tree/apt -o Dir::State::status=$tree/apt/status -o Dir::Cache=$tree/apt/cache
  -o APT::Architecture=i386 -o APT::Architectures::=i386 -o APT::Sandbox::User="
say "fetching Debian's i386 Wine"
# shellcheck disable=SC2086
if ! { $apt update && $apt install -y --download-only --no-install-recommends wine32; } \
  > "$tree/log" 2>&1; then
  say "Wine cannot be had; $tree/log tells why"
  exit 1
fi
for package in "$tree"/apt/cache/archives/*.deb; do
  dpkg-deb -x "$package" "$tree"
done
# What the packages do when they are configured: Wine's own mark is put into a library of another one.
zlib=$tree/usr/i686-w64-mingw32/lib/zlib1.dll
{
  head -c 64 "$zlib"
  printf 'Wine builtin DLL'
  head -c 16 /dev/zero
  tail -c +97 "$zlib"
} > "$tree/usr/lib/i386-linux-gnu/wine/i386-windows/zlib1.dll"
# The packaged script looks for the server where a system has it.
ln -sf wineserver32 "$tree/usr/lib/wine/wineserver"
rm -rf "$tree/apt"
touch "$tree/complete"
