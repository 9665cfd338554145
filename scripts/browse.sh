#!/usr/bin/env bash
# For a person with a desktop: the reference toolbar server on a free
# loopback port with the bundled data and sample feeds, and Chromium with the
# extension loaded on a fresh profile, tarnwick-host installed for it, and a
# start page of sample addresses (one for each kind of verdict). Settings,
# log, program folder and profile live in a scratch folder removed when
# Chromium closes; set TARNWICK_BROWSE_KEEP=1 to keep it.
#   bash scripts/browse.sh [CHROMIUM_FLAG...]
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/reference-server.sh

bash scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default --target tarnwick tarnwick-host tarnwick-server pagefetch tarnwickrex

build=build/default
scratch=$(mktemp -d)
export XDG_CONFIG_HOME="$scratch/config" XDG_STATE_HOME="$scratch/state" XDG_DATA_HOME="$scratch/data"
export TARNWICK_PROGRAM_DIR="$scratch/program"
mkdir -p "$TARNWICK_PROGRAM_DIR" "$scratch/profile"
cp "$build"/lib/tarnwick/* "$TARNWICK_PROGRAM_DIR/"

start_reference_server "$build" "$scratch" data/feeds/openphish.txt data/feeds/tarnwick-lines.txt
[ -n "${TARNWICK_BROWSE_KEEP:-}" ] && trap 'kill "$reference_server_pid" 2>/dev/null; echo "kept $scratch"' EXIT
export TARNWICK_SERVER="$reference_server"
echo "reference server at $reference_server"
"$build/bin/tarnwick-host" --install --user-data-dir "$scratch/profile" | head -n 1

# A local start page: an address given to Chromium at its start can reach the
# extension's question page before the extension can show it.
{
  echo '<!doctype html><meta charset="utf-8"><title>Tarnwick Toolbar: try it</title>'
  echo '<h1>Tarnwick Toolbar</h1><p>Each link is checked before it is requested.</p><ul>'
  echo "<li><a href=\"$reference_server/\">the reference toolbar server</a>"
  echo "<li><a href=\"$reference_server/report_url?url=http://paypal-secure-login-verify-account.update-center.example/\">its report form</a>"
  while read -r url; do
    case "$url" in http*) echo "<li><a href=\"$url\">$url</a>" ;; esac
  done <data/samples/urls.txt
  echo '</ul>'
} >"$scratch/start.html"

sandbox=()
[ "$(id -u)" -ne 0 ] || sandbox=(--no-sandbox)
chromium "${sandbox[@]}" --user-data-dir="$scratch/profile" --no-first-run --disable-sync \
  --disable-extensions-except="$PWD/extension" --load-extension="$PWD/extension" \
  "$@" "file://$scratch/start.html"
