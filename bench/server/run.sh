#!/usr/bin/env bash
# Benchmarks the reference toolbar server on this machine and prints a table:
#   1. imports ROWS generated phishing URLs (rows/s);
#   2. starts the server over them and runs wrk on /check_url for a whole
#      phishing site (403), a compromised site (200 with patterns) and an
#      unknown site (200);
#   3. runs the same wrk against nginx serving a small static file on
#      loopback, started here from a configuration in a temporary folder;
#   4. runs wrk on /check_url again while slow_clients.py holds SLOW slow
#      connections from another loopback address (127.0.0.2), each sending a
#      header byte every 5 s: the server must keep answering other clients.
# Environment: ROWS (default 1000000), DURATION (10s), CONNECTIONS (32),
# THREADS (2, wrk's), SLOW (1100), BUILD (build/default).
set -euo pipefail
cd "$(dirname "$0")/../.."

rows=${ROWS:-1000000}
duration=${DURATION:-10s}
connections=${CONNECTIONS:-32}
threads=${THREADS:-2}
slow=${SLOW:-1100}
build=${BUILD:-build/default}
server_bin=$build/bin/tarnwick-server

if [ ! -x "$server_bin" ]; then
  cmake --preset default >/dev/null
  cmake --build --preset default --target tarnwick-server
fi
command -v wrk >/dev/null && command -v nginx >/dev/null || bash scripts/setup.sh

work=$(mktemp -d)
chmod 755 "$work"  # nginx workers may run as another user
server_pid=
nginx_pid=
slow_pid=
cleanup() {
  set +e
  [ -n "$slow_pid" ] && kill "$slow_pid" 2>/dev/null && wait "$slow_pid" 2>/dev/null
  [ -n "$server_pid" ] && kill -TERM "$server_pid" 2>/dev/null && wait "$server_pid" 2>/dev/null
  [ -n "$nginx_pid" ] && kill -QUIT "$nginx_pid" 2>/dev/null && wait "$nginx_pid" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT

free_port() {
  python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'
}

seconds_since() {
  python3 -c "import sys, time; print(time.time() - float(sys.argv[1]))" "$1"
}

# wrk URL -> "requests/s p99-in-ms errors" (errors: connections refused or
# reset, failed reads and writes, time-outs)
measure() {
  wrk -t"$threads" -c"$connections" -d"$duration" --latency "$1" | awk '
    /Requests\/sec:/ { rps = $2 }
    $1 == "99%" {
      value = $2; unit = value; sub(/[0-9.]+/, "", unit); sub(/[a-z]+$/, "", value)
      p99 = (unit == "us") ? value / 1000 : (unit == "s") ? value * 1000 : value
    }
    /Socket errors:/ { gsub(/,/, ""); errors += $4 + $6 + $8 + $10 }
    END { printf "%.0f %.2f %d\n", rps, p99, errors }'
}

echo "generating $rows phishing URLs..." >&2
python3 bench/server/generate_feed.py "$rows" >"$work/feed.txt"

echo "importing..." >&2
started=$(date +%s.%N)
"$server_bin" import --db "$work/bench.db" --format openphish "$work/feed.txt" >"$work/import.txt"
import_seconds=$(seconds_since "$started")
import_rate=$(python3 -c "import sys; print(round(int(sys.argv[1]) / float(sys.argv[2])))" "$rows" "$import_seconds")

echo "starting the server..." >&2
"$server_bin" serve --listen 127.0.0.1:0 --db "$work/bench.db" --data data >"$work/server.out" 2>"$work/server.err" &
server_pid=$!
until grep -q '^http://' "$work/server.out" 2>/dev/null; do
  kill -0 "$server_pid" 2>/dev/null || { cat "$work/server.err" >&2; exit 1; }
  sleep 0.1
done
server=$(head -n 1 "$work/server.out")

echo "starting nginx..." >&2
mkdir -p "$work/nginx/html" "$work/nginx/tmp"
head -c 160 /dev/zero | tr '\0' 'x' >"$work/nginx/html/static.txt"
chmod -R a+rX "$work/nginx"
nginx_port=$(free_port)
{
  echo "worker_processes 2; daemon off; pid $work/nginx/nginx.pid; error_log $work/nginx/error.log;"
  [ "$(id -u)" -eq 0 ] && echo "user root;"
  echo "events { worker_connections 1024; }"
  echo "http { access_log off; client_body_temp_path $work/nginx/tmp; proxy_temp_path $work/nginx/tmp;"
  echo "  fastcgi_temp_path $work/nginx/tmp; uwsgi_temp_path $work/nginx/tmp; scgi_temp_path $work/nginx/tmp;"
  echo "  server { listen 127.0.0.1:$nginx_port; root $work/nginx/html; } }"
} >"$work/nginx/nginx.conf"
nginx -c "$work/nginx/nginx.conf" -p "$work/nginx" 2>"$work/nginx/stderr" &
nginx_pid=$!
until python3 -c 'import socket, sys; socket.create_connection(("127.0.0.1", int(sys.argv[1])), 1)' \
  "$nginx_port" 2>/dev/null; do
  kill -0 "$nginx_pid" 2>/dev/null || { cat "$work/nginx/stderr" >&2; exit 1; }
  sleep 0.1
done

address=134744072  # 8.8.8.8, placed in a country
echo "running wrk -t$threads -c$connections -d$duration --latency..." >&2
read -r nginx_rps nginx_p99 nginx_errors < <(measure "http://127.0.0.1:$nginx_port/static.txt")
read -r whole_rps whole_p99 whole_errors < <(measure "$server/check_url/http://whole-0.bench.example/$address")
read -r pages_rps pages_p99 pages_errors < <(measure "$server/check_url/http://site-0.bench.example/$address")
read -r unknown_rps unknown_p99 unknown_errors < <(measure "$server/check_url/http://unknown-7.example.net/$address")

echo "opening $slow slow connections from 127.0.0.2..." >&2
duration_seconds=${duration%s}
python3 bench/server/slow_clients.py "${server##*:}" --connections "$slow" --interval 5 \
  --seconds $((duration_seconds + 15)) >"$work/slow.out" 2>"$work/slow.err" &
slow_pid=$!
sleep 10  # every slow connection has been opened and sent its first bytes
read -r attacked_rps attacked_p99 attacked_errors < <(measure "$server/check_url/http://unknown-7.example.net/$address")
wait "$slow_pid"
slow_pid=
read -r held_min held_max slow_opened <"$work/slow.out"

ratio() { python3 -c "import sys; print('%.2f' % (float(sys.argv[1]) / float(sys.argv[2])))" "$1" "$nginx_rps"; }

echo
echo "Reference toolbar server benchmark ($(nproc) cores, wrk -t$threads -c$connections -d$duration)"
echo
row() { printf '| %-48s | %8s/s | %8s | %8s | %8s |\n' "$@"; }
printf '| %-48s | %10s | %8s | %8s | %8s |\n' "measurement" "rate" "p99 ms" "x nginx" "errors"
printf '|%s|%s|%s|%s|%s|\n' "--------------------------------------------------" "------------" "----------" \
  "----------" "----------"
row "import $rows URLs (openphish, rows)" "$import_rate" "-" "-" "-"
row "nginx, 160-byte static file" "$nginx_rps" "$nginx_p99" "1.00" "$nginx_errors"
row "/check_url known whole site (403)" "$whole_rps" "$whole_p99" "$(ratio "$whole_rps")" "$whole_errors"
row "/check_url known compromised site (200+patterns)" "$pages_rps" "$pages_p99" "$(ratio "$pages_rps")" \
  "$pages_errors"
row "/check_url unknown site (200)" "$unknown_rps" "$unknown_p99" "$(ratio "$unknown_rps")" "$unknown_errors"
row "/check_url unknown site, $slow slow connections" "$attacked_rps" "$attacked_p99" "$(ratio "$attacked_rps")" \
  "$attacked_errors"
echo
echo "slow connections the server held open: $held_min to $held_max (of $slow; $slow_opened opened in all)"
echo "targets: at least 0.50 x nginx's requests per second, p99 under 2 ms; p99 under 50 ms and no errors"
echo "under the slow connections"
