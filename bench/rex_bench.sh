#!/usr/bin/env bash
# Measures Tarnwick.Rex on the shared block-list data: generates it into a
# scratch folder (nothing of it is kept), builds rex_bench and runs it there,
# with settings and log in the scratch folder too.
#   bench/rex_bench.sh [BUILD_DIR [BENCHMARK_ARGS...]]   (default build/default)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/default}
shift || true
generator=../shared/bench/blocklist_gen.py
[ -f "$generator" ] || { echo "rex_bench.sh: no $generator beside the clone" >&2; exit 2; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
python3 "$generator" --out "$scratch/data" >/dev/null
cmake --build "$build" --target rex_bench
XDG_CONFIG_HOME="$scratch/config" XDG_STATE_HOME="$scratch/state" REX_BENCH_DATA="$scratch/data" \
  "$build/bin/rex_bench" "$@"
