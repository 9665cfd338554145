#!/usr/bin/env bash
# Builds the static PCRE2 library (8-bit, with JIT) that the Windows leg links
# into tarnwickrex.dll, from Debian's source package and with our MinGW-w64
# toolchain file, into build/third_party/pcre2-windows. Does nothing when that
# library is already there.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
third_party=$root/build/third_party
prefix=$third_party/pcre2-windows
[ -f "$prefix/lib/libpcre2-8.a" ] && exit 0

bash "$root/scripts/debian-source.sh" pcre2 "$third_party/pcre2-source"
cd "$third_party/pcre2-source"

cmake -S src -B build -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$root/cmake/mingw-w64-x86_64.cmake" \
  -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_INSTALL_PREFIX="$prefix" \
  -DBUILD_SHARED_LIBS=OFF \
  -DPCRE2_BUILD_PCRE2_8=ON -DPCRE2_BUILD_PCRE2_16=OFF -DPCRE2_BUILD_PCRE2_32=OFF \
  -DPCRE2_SUPPORT_JIT=ON -DPCRE2_BUILD_PCRE2GREP=OFF -DPCRE2_BUILD_TESTS=OFF \
  -DPCRE2_SUPPORT_LIBBZ2=OFF -DPCRE2_SUPPORT_LIBZ=OFF -DPCRE2_SUPPORT_LIBREADLINE=OFF \
  -DPCRE2_SUPPORT_LIBEDIT=OFF >/dev/null
cmake --build build -j2 >/dev/null
cmake --install build >/dev/null
echo "build-pcre2-windows: PCRE2 for Windows in $prefix"
