#!/bin/sh
# Installs to a prefix, moves it, and uses it from there, by CMake and by pkg-config.
#   prefix.sh BUILD PROGRAMS PREFIX
set -eu
build=$1 programs=$2 prefix=$3
rm -rf "$prefix" "$prefix-moved"
cmake --install "$build" --prefix "$prefix" > "$prefix.log"
mv "$prefix" "$prefix-moved"
prefix=$prefix-moved

cmake -G Ninja -S "$programs" -B "$prefix/use" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_C_FLAGS=-m32 -DCMAKE_CXX_FLAGS=-m32 -DCMAKE_Fortran_FLAGS=-m32 >> "$prefix.log"
cmake --build "$prefix/use" >> "$prefix.log"
for program in sparse_product heat least_squares; do
  if [ $program = least_squares ] && ! [ -e "$prefix/use/$program" ]; then
    echo "no Fortran compiler: least_squares was not run"
  else
    "$prefix/use/$program"
  fi
done

libraries=$(dirname "$(find "$prefix" -name libjex_core.so)")
export PKG_CONFIG_PATH="$libraries/pkgconfig"
# shellcheck disable=SC2046
cc -m32 "$programs/sparse_product.c" -o "$prefix/by_pkg_config" $(pkg-config --cflags --libs jex)
LD_LIBRARY_PATH=$libraries "$prefix/by_pkg_config"
"$prefix/bin/jex-tour" --family level1 --out "$prefix/tour" > /dev/null

# A header that needs what is not installed would stop the first program that includes it.
for header in "$prefix"/include/jex/*.h "$prefix"/include/jex/*.hpp; do
  case $header in
    */gmp.h | */gmp_names.h) continue ;;  # wants gmp.h of the target
    *.h) language=c11 ;;
    *) language=c++20 ;;
  esac
  echo "#include <jex/${header##*/}>" |
    g++ -m32 -x ${language%[12]?} -std=$language -Wall -Wextra -Werror -I "$prefix/include" -fsyntax-only -
done
