#!/usr/bin/env bash
# Redraws the pictures of the experiment tips (resources/images/docs) from the simulated unit.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build}
cmake --build "$BUILD_DIR" --target corvida_illustrations
QT_QPA_PLATFORM=offscreen "$BUILD_DIR/scripts/illustrations/corvida_illustrations" resources/images/docs
# The manual shows the same pictures.
mkdir -p docs/images/tips
cp resources/images/docs/*.png docs/images/tips/
