#!/usr/bin/env bash
# Detection rate of xss.dat on a public XSS payload list, and false positives
# of xss.dat and localblock.dat on ordinary URLs: those in the documentation
# Debian installs under /usr/share/doc.
#   bench/blocklist_quality.sh PAYLOAD_LIST
# PAYLOAD_LIST is not part of the repository (take e.g. the MIT-licensed
# payloadbox xss-payload-list, Intruder/xss-payload-list.txt).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/reference-server.sh
payloads=$(realpath "$1")
build=${BUILD:-build/default}

cmake --build "$build" --target tarnwick tarnwick-server tarnwickrex pagefetch >/dev/null
scratch=$(mktemp -d)
export XDG_CONFIG_HOME="$scratch/config" XDG_STATE_HOME="$scratch/state" TARNWICK_PROGRAM_DIR="$scratch/program"
mkdir -p "$TARNWICK_PROGRAM_DIR"
cp "$build"/lib/tarnwick/* "$TARNWICK_PROGRAM_DIR/"
{
  find /usr/share/doc -name '*.html' -o -name 'copyright' -o -name 'README*' | xargs cat
  find /usr/share/doc -name '*.gz' | xargs zcat
} >"$scratch/doc-urls.txt" 2>/dev/null || true
start_reference_server "$build" "$scratch"
# A proxy that is never used (no_proxy covers the server) keeps the checker
# from looking host names up: nothing leaves this machine.
export http_proxy=http://127.0.0.1:9 no_proxy=127.0.0.1,localhost
python3 bench/blocklist_quality.py "$build/bin/tarnwick" "$reference_server" "$payloads" "$scratch/doc-urls.txt"
