#!/usr/bin/env bash
# Builds the libFuzzer targets (the fuzz preset) and runs each for SECONDS
# (default 60) on a copy of its seed corpus, fuzz/corpus/TARGET/; with
# target names after SECONDS, only those. Says for each target how many
# inputs it ran and what it found, and fails when a target crashed, broke
# a property, hung (5 s on one input) or used more than 2 GB: that input is
# kept in build/fuzz/findings/TARGET/ (re-run it with build/fuzz/fuzz/TARGET FILE).
#
#   bash scripts/fuzz.sh                 every target for a minute
#   bash scripts/fuzz.sh 600 xml_menu    one target for ten minutes
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-60}"
shift || true
[[ "$seconds" =~ ^[0-9]+$ ]] || { echo "usage: $0 [SECONDS [TARGET...]]" >&2; exit 2; }

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz

build=build/fuzz
if (($#)); then
  targets=("$@")
else
  mapfile -t targets <"$build/fuzz/targets.txt"
fi

failed=()
for target in "${targets[@]}"; do
  [ -x "$build/fuzz/$target" ] || { echo "no fuzz target $target" >&2; exit 2; }
  run="$build/runs/$target"
  findings="$build/findings/$target"
  rm -rf "$run"
  mkdir -p "$run/corpus" "$findings"
  cp fuzz/corpus/"$target"/* "$run/corpus/"
  seeds=$(find "$run/corpus" -type f | wc -l)
  status=0
  "$build/fuzz/$target" -max_total_time="$seconds" -timeout=5 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="$findings/" "$run/corpus" >"$run/log" 2>&1 || status=$?
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$run/log" | tail -n 1)
  corpus=$(find "$run/corpus" -type f | wc -l)
  if ((status == 0)); then
    printf '%-18s %6s s %12s runs  corpus %4s -> %5s  no findings\n' "$target" "$seconds" "${runs:-?}" "$seeds" "$corpus"
  else
    finding=$(sed -n 's/^artifact_prefix=.*; Test unit written to //p' "$run/log" | tail -n 1)
    printf '%-18s %6s s %12s runs  FOUND %s\n' "$target" "$seconds" "${runs:-?}" "${finding:-(see $run/log)}"
    grep -E -m 3 '^(property broken|==[0-9]+==ERROR|SUMMARY|ALARM)' "$run/log" | sed 's/^/    /' || true
    failed+=("$target")
  fi
done

if ((${#failed[@]})); then
  echo "fuzzing found faults in: ${failed[*]} (logs in $build/runs/)" >&2
  exit 1
fi
