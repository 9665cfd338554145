#!/usr/bin/env bash
# Pattern sets against uBlock Origin's core in the same run, on the shared
# generator's lists (1,000 / 10,000 / 100,000 entries, 100,000 URLs):
# `tarnwick match --stats` on localblock-N.dat beside @gorhill/ubo-core on
# list-N.txt (npm, installed once into UBO_DIR), the whole local path of a
# check (check_bench), and compile time and memory; printed as a table of
# ratios. Each measurement is repeated REPEAT times (default 3) and the
# median kept: the machine may be busy with other work.
#   BUILD (build/default)  BLOCKLIST_GEN (../shared/bench/blocklist_gen.py)
#   UBO_DIR (build/bench-node)  REPEAT (3)  SIZES ("1000 10000 100000")
set -euo pipefail
cd "$(dirname "$0")/.."
build=${BUILD:-build/default}
generator=${BLOCKLIST_GEN:-../shared/bench/blocklist_gen.py}
ubo=${UBO_DIR:-build/bench-node}
[ -f "$generator" ] || { echo "match_bench.sh: no $generator (set BLOCKLIST_GEN)" >&2; exit 2; }

cmake --build "$build" --target tarnwick check_bench >/dev/null
if [ ! -f "$ubo/node_modules/@gorhill/ubo-core/index.js" ]; then
  mkdir -p "$ubo"
  npm install --prefix "$ubo" --no-audit --no-fund --silent @gorhill/ubo-core
fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
python3 "$generator" --out "$scratch/lists" ${SIZES:-1000 10000 100000} >/dev/null
XDG_CONFIG_HOME="$scratch/config" XDG_STATE_HOME="$scratch/state" TARNWICK_PROGRAM_DIR= \
  python3 bench/match_bench.py "$build" "$ubo" "$scratch/lists" "${REPEAT:-3}" ${SIZES:-1000 10000 100000}
