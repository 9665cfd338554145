#!/usr/bin/env bash
# Runs the band's tests under Wine against the reference toolbar server of the
# native build, started here on a loopback port the system picks, with the
# sample feed that lists the test's phishing sites; stops it afterwards.
#   run-with-server.sh NATIVE_BUILD_DIR TEST_EXE
set -u
native=$1
test_exe=$2
cd "$(dirname "$0")/../.."
[ -x "$native/bin/tarnwick-server" ] || { echo "needs $native/bin/tarnwick-server: build the native preset it names first" >&2; exit 1; }
. scripts/reference-server.sh
scratch=$(mktemp -d)
start_reference_server "$native" "$scratch" data/feeds/tarnwick-lines.txt || exit 1
TARNWICK_SERVER=$reference_server TARNWICK_SITE=$reference_server bash scripts/wine-run.sh "$test_exe" "${@:3}"
