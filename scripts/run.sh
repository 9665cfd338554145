#!/usr/bin/env bash
# The main job on the embedded default: builds the program and shows what it
# runs with.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
cmake --preset default >/dev/null
cmake --build --preset default --target tarnwick
build/default/bin/tarnwick --version
build/default/bin/tarnwick options
