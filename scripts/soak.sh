#!/usr/bin/env bash
# The long run before a release (not part of CI): four simulated units measure and save in a
# loop for MINUTES (default 30) in the real window; memory and processor share every minute,
# then every record is read back. Exits non-zero on any warning, failed save or unreadable record.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build}
cmake --build "$BUILD_DIR" --target soak_fourunits
exec xvfb-run -a -s "-screen 0 1920x1080x24" "$BUILD_DIR/bench/program/soak_fourunits" "${1:-30}"
