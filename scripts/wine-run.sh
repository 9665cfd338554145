#!/usr/bin/env bash
# Runs one Windows test executable under Wine. Wine's own processes can outlive
# the program and keep a pipe open, so the output goes to a file first and is
# printed afterwards.
set -u
: "${WINEPREFIX:?WINEPREFIX must name the prefix made by scripts/wine-prefix.sh}"
export WINEDEBUG="${WINEDEBUG:--all}"
out=$(mktemp)
/usr/lib/wine/wine64 "$@" >"$out" 2>&1 </dev/null
status=$?
cat "$out"
rm -f "$out"
exit "$status"
