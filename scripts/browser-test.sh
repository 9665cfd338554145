#!/usr/bin/env bash
# The extension and tarnwick-host in real Chromium (headless), against the
# reference server and loopback test sites. Needs a default build with
# tarnwick-host, tarnwick-server and the components; screenshots of the
# question page, block page, popup and options page go to
# build/default/browser-screenshots (or $TARNWICK_SCREENSHOTS).
#   bash scripts/browser-test.sh [node --test options...]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${TARNWICK_BUILD_DIR:-build/default}
for needed in bin/tarnwick-host bin/tarnwick-server lib/tarnwick/pagefetch.dll; do
  [ -e "$build/$needed" ] || { echo "browser tests: $build/$needed is missing; build the default preset first" >&2; exit 2; }
done
[ -z "${TARNWICK_SCREENSHOTS:-}" ] || { mkdir -p "$TARNWICK_SCREENSHOTS" && TARNWICK_SCREENSHOTS=$(cd "$TARNWICK_SCREENSHOTS" && pwd) && export TARNWICK_SCREENSHOTS; }
TARNWICK_BUILD_DIR=$(cd "$build" && pwd)
export TARNWICK_BUILD_DIR
cd tests/browser
exec node --test --test-concurrency=1 "$@"
