#!/usr/bin/env bash
# Per-URL time of the check engine: the local list alone and the local path
# with the generator's local lists, and the full path against the reference
# server started here on a free loopback port. Generated data stays in a
# scratch folder.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/reference-server.sh
build=${BUILD:-build/default}
generator=${BLOCKLIST_GEN:-../shared/bench/blocklist_gen.py}

cmake --build "$build" --target check_bench tarnwick-server >/dev/null
scratch=$(mktemp -d)
python3 "$generator" --out "$scratch/lists" >/dev/null
start_reference_server "$build" "$scratch"
"$build/bin/check_bench" --benchmark_min_time=2 data "$scratch/lists" "$reference_server"
