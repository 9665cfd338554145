#!/usr/bin/env bash
# Builds the static libsodium that the Windows leg links for the signatures on
# updates, from Debian's source package with the MinGW-w64 compilers, into
# build/third_party/libsodium-windows. Does nothing when that library is
# already there.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD
third_party=$root/build/third_party
prefix=$third_party/libsodium-windows
[ -f "$prefix/lib/libsodium.a" ] && exit 0

bash "$root/scripts/debian-source.sh" libsodium "$third_party/libsodium-source"
cd "$third_party/libsodium-source/src"
# Debian's upstream tarball is a plain export: the build scripts are made here.
./autogen.sh -s >/dev/null 2>&1
# The stack protector would need libssp at every link; the static runtime
# the project links has none.
./configure --host=x86_64-w64-mingw32 CC=x86_64-w64-mingw32-gcc-posix \
  --prefix="$prefix" --disable-shared --enable-static --disable-ssp --disable-pie >/dev/null
make -j2 >/dev/null
make install >/dev/null
echo "build-libsodium-windows: libsodium for Windows in $prefix"
