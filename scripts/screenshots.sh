#!/usr/bin/env bash
# Regenerates the pictures of the manual (docs/images) from the real window under a virtual
# display, driving simulated units: English in the light theme at 1280x800 for the chapters, the
# pictures of training on a simulated animal, and a few views in English and Russian on a small
# (800x600) and a large (1920x1080) screen.
# ALL=1 adds the dark theme and Russian at 1280x800 for a look at both (not kept in docs).
# Takes about ten minutes.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build}
OUT=${1:-docs/images}
[ -f "$BUILD_DIR/build.ninja" ] || cmake -S . -B "$BUILD_DIR" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$BUILD_DIR" --target corvida_screenshots
mkdir -p "$OUT"
run() {
    local folder=$1
    shift
    xvfb-run -a -s "-screen 0 1920x1080x24" "$BUILD_DIR/scripts/screenshots/corvida_screenshots" \
        "$folder" "$@" 2>&1 | grep -E '^(saved|could not)' || true
}
run "$OUT" --language en_US --theme light
run "$OUT" --animal rat

# The views that show what a small or a large screen changes.
sizes=$(mktemp -d)
trap 'rm -rf "$sizes"' EXIT
mkdir -p "$OUT/sizes"
for language in en_US ru_RU; do
    for size in 800x600 1920x1080; do
        run "$sizes" --language "$language" --theme light --size "$size" >/dev/null
        for view in experiment-turned-on experiment-measured experiment-four-units-grid records \
            records-doubtful; do
            picture="$language-light-$size-$view.png"
            if [ -f "$sizes/$picture" ]; then
                cp "$sizes/$picture" "$OUT/sizes/$picture" && echo "saved $OUT/sizes/$picture"
            else
                echo "could not make $picture"
            fi
        done
    done
done

if [ "${ALL:-0}" = 1 ]; then
    run "$OUT" --language en_US --theme dark
    run "$OUT" --language ru_RU --theme light
fi
