#!/usr/bin/env bash
# Regenerates docs/validation.md and its pictures: simulated animals with known truth, analysed
# by both ways of placing the markers.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build}
cmake --build "$BUILD_DIR" --target corvida_validation
QT_QPA_PLATFORM=offscreen "$BUILD_DIR/scripts/validation/corvida_validation" docs "${1:-15}"
