#!/usr/bin/env bash
# debian-source.sh PACKAGE FOLDER: unpacks the upstream sources of Debian's
# source package PACKAGE into FOLDER/src (fresh each time), downloading the
# package into FOLDER once. The Windows leg builds its third-party libraries
# from these, so both legs use the same versions.
set -euo pipefail
package=$1
folder=$2

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
  [ -n "$uri" ] || { echo "debian-source: no Debian source list to copy" >&2; exit 1; }
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

mkdir -p "$folder"
cd "$folder"
ls "${package}"_*.orig.tar.* >/dev/null 2>&1 || apt-get source --download-only -qq "$package"
rm -rf src && mkdir src
tar -xf "${package}"_*.orig.tar.* -C src --strip-components=1
