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

sudo_cmd=()
[ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)

# apt-get source needs a deb-src entry; add one beside the Debian list, with
# the same address, only when the machine has none.
shopt -s nullglob
apt_lists=(/etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources)
[ ! -f /etc/apt/sources.list ] || apt_lists+=(/etc/apt/sources.list)
shopt -u nullglob
if ! grep -qsE '^(deb-src[[:space:]]|Types:.*deb-src)' "${apt_lists[@]}"; then
  uri=$(cat "${apt_lists[@]}" | awk '/debian/ && !/security/ {
    if ($1 == "URIs:") { print $2; exit }
    if ($1 == "deb") for (i = 2; i <= NF; i++) if ($i ~ /:\/\//) { print $i; exit } }')
  [ -n "$uri" ] || { echo "build-pcre2-windows: no Debian source list to copy" >&2; exit 1; }
  # shellcheck disable=SC1091
  codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
  keyring=$(cat "${apt_lists[@]}" | awk '$1 == "Signed-By:" && $2 ~ /^\// {print $2; exit}')
  {
    echo "Types: deb-src"
    echo "URIs: $uri"
    echo "Suites: $codename"
    echo "Components: main"
    [ -z "$keyring" ] || echo "Signed-By: $keyring"
  } | "${sudo_cmd[@]}" tee /etc/apt/sources.list.d/tarnwick-deb-src.sources >/dev/null
  "${sudo_cmd[@]}" apt-get update -qq
fi

mkdir -p "$third_party/pcre2-source"
cd "$third_party/pcre2-source"
ls pcre2_*.orig.tar.* >/dev/null 2>&1 || apt-get source --download-only -qq pcre2
rm -rf src && mkdir src
tar -xf pcre2_*.orig.tar.* -C src --strip-components=1

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
