#!/usr/bin/env bash
# Time the Chromium extension and tarnwick-host add to a top-level
# navigation (p50 and p99 over NAVIGATIONS, default 200, against the same
# navigations without the extension, in ROUNDS, default 4, alternating runs),
# and the host's resident memory.
# Everything runs on loopback; scratch profiles and settings are removed.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${BUILD:-build/default}
cmake --build "$build" --target tarnwick-host tarnwick-server pagefetch tarnwickrex >/dev/null
TARNWICK_BUILD_DIR="$build" exec node bench/extension_bench.mjs
