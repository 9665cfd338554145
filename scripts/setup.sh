#!/usr/bin/env bash
# Installs every Debian package the build, the tests and the benchmarks need.
# Safe to run again: packages already present are left alone and the package
# lists are refreshed at most once per run.
set -euo pipefail

packages=(
  # native build and tests
  build-essential cmake ninja-build pkg-config git
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  clang-format clang-tidy
  # fuzz targets: clang with libFuzzer and the sanitizers' runtimes
  clang libclang-rt-dev
  # libraries behind the components and the reference server
  libpcre2-dev libcurl4-openssl-dev libsqlite3-dev libpugixml-dev
  libmicrohttpd-dev libgeoip-dev geoip-database libsodium-dev nlohmann-json3-dev
  # Windows leg: cross compiler and Wine
  g++-mingw-w64-x86-64-posix mingw-w64-x86-64-dev wine wine64 dpkg-dev
  autoconf automake libtool
  # benchmarks
  wrk nginx-light python3
  # the browser extension's tests in real Chromium
  chromium nodejs
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
# Some builds of nodejs carry npm themselves; Debian's comes apart.
command -v npm >/dev/null || missing+=(npm)

if ((${#missing[@]})); then
  sudo_cmd=()
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

# The browser tests drive Chromium with playwright-core, at the version the
# lock file names.
browser_tests="$(cd "$(dirname "$0")/../tests/browser" && pwd)"
wanted=$(node -p "require('$browser_tests/package-lock.json').packages['node_modules/playwright-core'].version")
present=$(node -p "require('$browser_tests/node_modules/playwright-core/package.json').version" 2>/dev/null || true)
if [ "$wanted" != "$present" ]; then
  npm ci --prefix "$browser_tests" --no-audit --no-fund --loglevel=error
fi
