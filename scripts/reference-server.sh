# Sourced by the scripts that need the reference toolbar server: starts it on
# a free loopback port and stops it when the script exits.
#   start_reference_server BUILD_DIR SCRATCH_DIR [FEED...]
# imports each FEED (format from its file name), serves the bundled data/ and
# sets $reference_server to the server's base address.
start_reference_server() {
  local build=$1 scratch=$2
  shift 2
  local db="$scratch/server.db" feed format
  for feed in "$@"; do
    case "$feed" in
      *openphish*) format=openphish ;;
      *phishtank*.csv) format=phishtank-csv ;;
      *phishtank*.json) format=phishtank-json ;;
      *urlhaus*) format=urlhaus-csv ;;
      *) format=lines ;;
    esac
    "$build/bin/tarnwick-server" import --db "$db" --format "$format" "$feed" >/dev/null
  done
  "$build/bin/tarnwick-server" serve --listen 127.0.0.1:0 --db "$db" --data data \
    >"$scratch/server.out" 2>"$scratch/server.log" &
  reference_server_pid=$!
  trap 'kill "$reference_server_pid" 2>/dev/null; wait "$reference_server_pid" 2>/dev/null; rm -rf "'"$scratch"'"' EXIT
  local _
  for _ in $(seq 100); do
    [ -s "$scratch/server.out" ] && break
    sleep 0.1
  done
  reference_server=$(head -n 1 "$scratch/server.out")
  [ -n "$reference_server" ] || { echo "the reference server did not start:" >&2; cat "$scratch/server.log" >&2; return 1; }
}
