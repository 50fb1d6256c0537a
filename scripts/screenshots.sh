#!/usr/bin/env bash
# Regenerates the pictures of the manual (docs/images) from the real window under a virtual
# display, driving simulated units: English in the light theme, plus the dark theme and Russian
# for a look at both, and the pictures of training on a simulated animal. Takes about three
# minutes.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build}
OUT=${1:-docs/images}
[ -f "$BUILD_DIR/build.ninja" ] || cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$BUILD_DIR" --target corvida_screenshots
mkdir -p "$OUT"
run() { xvfb-run -a -s "-screen 0 1920x1080x24" "$BUILD_DIR/scripts/screenshots/corvida_screenshots" "$OUT" "$@" 2>&1 | grep -E '^(saved|could not)' || true; }
run --language en_US --theme light
run --animal rat
if [ "${ALL:-0}" = 1 ]; then
    run --language en_US --theme dark
    run --language ru_RU --theme light
fi
