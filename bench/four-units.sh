#!/usr/bin/env bash
# Four simulated units turned on in the real window under a virtual display: processor share
# and resident memory every ten seconds.
# Usage: bench/four-units.sh [seconds] [--measure | --session]
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build}
cmake --build "$BUILD_DIR" --target load_fourunits
exec xvfb-run -a -s "-screen 0 1920x1080x24" "$BUILD_DIR/bench/program/load_fourunits" "$@" 2>/dev/null
