#!/usr/bin/env bash
# Four simulated units turned on in the real window under a virtual display: processor share
# and resident memory every ten seconds, then the share over the whole run. The figure is kept
# in the build folder (four-units.last); the next run prints its ratio to it.
# Usage: bench/four-units.sh [seconds] [--measure | --session]
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD_DIR=${BUILD_DIR:-build}
cmake --build "$BUILD_DIR" --target load_fourunits
last="$BUILD_DIR/four-units.last"
out=$(mktemp)
trap 'rm -f "$out"' EXIT
xvfb-run -a -s "-screen 0 1920x1080x24" "$BUILD_DIR/bench/program/load_fourunits" "$@" \
    2>/dev/null | tee "$out"
share=$(sed -n 's/^whole run: \([0-9.]*\) % of one core.*/\1/p' "$out")
if [[ -z "$share" ]]; then
    echo "four-units: no figure (the run did not finish)" >&2
    exit 1
fi
echo "four units: $share % of one core"
if [[ -s "$last" ]]; then
    previous=$(cat "$last")
    awk -v now="$share" -v before="$previous" \
        'BEGIN { if (before > 0) printf "ratio to the previous run (%s %%): %.2f\n", before, now / before }'
fi
echo "$share" >"$last"
