#!/usr/bin/env bash
# Builds and runs every test: the native build, the sanitizer build, the
# fuzz targets over their seed corpora, and the Windows build under Wine.
# Installs what it needs first.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
bash scripts/check-format.sh

for preset in default asan; do
  echo "=== ${preset} build"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset"
done

echo "=== fuzz targets (a few seconds each on its seed corpus)"
bash scripts/fuzz.sh 3

echo "=== windows build (tests under Wine)"
bash scripts/build-pcre2-windows.sh
bash scripts/build-libsodium-windows.sh
[ -f build/third_party/pugixml-source/src/src/pugixml.cpp ] ||
  bash scripts/debian-source.sh pugixml build/third_party/pugixml-source
cmake --preset windows >/dev/null
cmake --build --preset windows
bash scripts/wine-prefix.sh build/windows/wineprefix
status=0
ctest --preset windows || status=$?
WINEPREFIX="$PWD/build/windows/wineprefix" /usr/lib/wine/wineserver -k 2>/dev/null || true
exit "$status"
