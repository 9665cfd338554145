#!/usr/bin/env bash
# Builds and runs every test: the native build with the sanitizers, the
# extension in Chromium over that build's host, each fuzz target for a few
# seconds on its seed corpus, and the Windows build under Wine. Installs what
# it needs first. The native tests run in the sanitizer build only: it finds
# more, and a second native build of every test would cost CI a quarter of its
# time (`ctest --preset default` runs the same tests on the optimised build).
# Every leg runs even when one before it failed, and a table of the legs, their
# outcome and their time closes the run.
set -uo pipefail
cd "$(dirname "$0")/.." || exit

summary=()
failed=0
started=$SECONDS

# leg NAME COMMAND...: one leg of the run, timed, its outcome remembered.
leg() {
  local name=$1 start=$SECONDS status=0
  shift
  echo "=== $name"
  "$@" || status=$?
  local outcome=passed
  if ((status)); then
    outcome="FAILED (exit $status)"
    failed=1
  fi
  summary+=("$(printf '%-44s %-18s %5d s' "$name" "$outcome" $((SECONDS - start)))")
}

native() {
  cmake --preset asan >/dev/null && cmake --build --preset asan && ctest --preset asan
}

windows() {
  bash scripts/build-pcre2-windows.sh && bash scripts/build-libsodium-windows.sh || return
  [ -f build/third_party/pugixml-source/src/src/pugixml.cpp ] ||
    bash scripts/debian-source.sh pugixml build/third_party/pugixml-source || return
  # The band's tests talk to the reference server of the native leg's build.
  cmake --preset windows -DTARNWICK_NATIVE_BUILD_DIR="$PWD/build/asan" >/dev/null &&
    cmake --build --preset windows &&
    bash scripts/wine-prefix.sh build/windows/wineprefix || return
  local status=0
  ctest --preset windows || status=$?
  WINEPREFIX="$PWD/build/windows/wineprefix" /usr/lib/wine/wineserver -k 2>/dev/null
  return "$status"
}

leg "packages" bash scripts/setup.sh
leg "formatting" bash scripts/check-format.sh
leg "native build and tests (sanitizers)" native
leg "browser tests (Chromium)" env TARNWICK_BUILD_DIR=build/asan bash scripts/browser-test.sh
leg "fuzz targets (3 s each)" bash scripts/fuzz.sh 3
leg "windows build and tests (Wine)" windows

echo "=== summary"
printf '%s\n' "${summary[@]}"
printf '%-44s %-18s %5d s\n' "all" "$( ((failed)) && echo FAILED || echo passed)" $((SECONDS - started))
exit "$failed"
