#!/usr/bin/env bash
# Runs the speed benchmarks of two build folders in turn, in one session, and prints the table of
# their medians as Markdown: each figure of the "before" build next to the same figure of the
# "after" build, with the goal it is held against.
#
# Usage: bench/compare.sh BEFORE_BUILD AFTER_BUILD > bench/RESULTS.md
#   ROUNDS=3             rounds of the quick benchmarks (the medians are taken over these)
#   LONG_ROUNDS=1        rounds of the two full exports of fifty records (a minute or more each)
#   FOUR_UNITS_SECONDS=60  length of each four-units run (needs xvfb-run); 0 leaves it out
#   KEEP=folder          keep the raw JSON and logs there instead of a temporary folder
#   REPORT_ONLY=1        run nothing; make the table from what an earlier run left in KEEP
#
# Within a round the two builds run each benchmark one right after the other, so that load from
# other programs on the machine weighs on both alike. Both builds should be made from the same
# benchmark sources; a benchmark missing from a build shows as "not run" in the table.
set -euo pipefail
if [[ $# -lt 2 ]]; then
    sed -n '2,16p' "$0" >&2
    exit 2
fi
before=$(realpath "$1")
after=$(realpath "$2")
rounds=${ROUNDS:-3}
long_rounds=${LONG_ROUNDS:-1}
four_seconds=${FOUR_UNITS_SECONDS:-60}
if [[ -n "${KEEP:-}" ]]; then
    out=$(realpath -m "$KEEP")
    mkdir -p "$out"
else
    out=$(mktemp -d)
    trap 'rm -rf "$out"' EXIT
fi

# run SIDE BUILD NAME ROUND BINARY [benchmark options...]
run() {
    local side=$1 build=$2 name=$3 round=$4 binary=$5
    shift 5
    if [[ ! -x "$build/bench/$binary" ]]; then
        echo "compare: $build/bench/$binary is missing" >&2
        return 0
    fi
    echo "compare: round $round, $side, $name" >&2
    "$build/bench/$binary" --benchmark_format=json "$@" \
        >"$out/$side.$name.$round.json" 2>>"$out/$side.log" ||
        echo "compare: $side $name failed in round $round" >&2
}

both() {
    run before "$before" "$@"
    run after "$after" "$@"
}

if [[ -n "${REPORT_ONLY:-}" ]]; then
    rounds=0
    long_rounds=0
fi
for ((r = 1; r <= rounds; ++r)); do
    both devicestream "$r" bench_devicestream --benchmark_filter=Ratio
    both edf "$r" bench_edf
    both signalviewer "$r" bench_signalviewer --benchmark_filter='paintRatio|paint120sAt1920'
    both records "$r" bench_records --benchmark_filter=Reload
    both sessions "$r" bench_sessions --benchmark_filter=ListSessions
    both xlsx "$r" bench_xlsx
    both csv "$r" bench_csv
done
for ((r = 1; r <= long_rounds; ++r)); do
    both exports "$r" bench_records --benchmark_filter=ExportFull
done

four_units() {
    local side=$1 build=$2 round=$3
    local binary="$build/bench/program/load_fourunits"
    [[ -x "$binary" ]] || return 0
    echo "compare: round $round, $side, four units" >&2
    xvfb-run -a -s "-screen 0 1920x1080x24" "$binary" "$four_seconds" 2>/dev/null |
        sed -n 's/^whole run: \([0-9.]*\) % of one core.*/\1/p' >"$out/$side.fourunits.$round.txt" ||
        true
}
if [[ "$four_seconds" != 0 && "$rounds" != 0 ]] && command -v xvfb-run >/dev/null; then
    for ((r = 1; r <= rounds; ++r)); do
        four_units before "$before" "$r"
        four_units after "$after" "$r"
    done
fi

python3 - "$out" "$before" "$after" "${ROUNDS:-3}" "${LONG_ROUNDS:-1}" "$four_seconds" <<'EOF'
import glob, json, os, statistics, sys

out, before_dir, after_dir, rounds, long_rounds, four_seconds = sys.argv[1:]


def runs(side, name):
    """Every benchmark entry of one side and benchmark file, over all rounds."""
    found = []
    for path in sorted(glob.glob(os.path.join(out, f"{side}.{name}.*.json"))):
        try:
            with open(path) as f:
                found.extend(json.load(f).get("benchmarks", []))
        except (OSError, ValueError):
            pass
    return found


SCALE = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}


def median(side, name, bench, field):
    """Median of one field over the rounds; times are in milliseconds of processor time."""
    values = []
    for entry in runs(side, name):
        if entry.get("run_name", entry["name"]).split("/")[0] != bench:
            continue
        if entry.get("error_occurred"):
            continue
        if field == "cpu_ms":
            values.append(entry["cpu_time"] * SCALE[entry.get("time_unit", "ns")])
        elif field in entry:
            values.append(float(entry[field]))
    return (statistics.median(values), len(values)) if values else (None, 0)


def four_units(side):
    values = []
    for path in glob.glob(os.path.join(out, f"{side}.fourunits.*.txt")):
        text = open(path).read().strip()
        if text:
            values.append(float(text))
    return (statistics.median(values), len(values)) if values else (None, 0)


def fmt(value, pattern):
    return "not run" if value is None else pattern.format(value)


rows = []


def row(figure, goal, ratio_pattern, before, after, absolute):
    rows.append((figure, fmt(before, ratio_pattern), fmt(after, ratio_pattern), goal, absolute))


def both(name, bench, field):
    return median("before", name, bench, field)[0], median("after", name, bench, field)[0]


# processRawFrame against the bare biquad loop: the chain's throughput as a share of the loop's.
b, a = both("devicestream", "BM_ProcessRawFrameRatio", "ratio")
cb, ca = both("devicestream", "BM_ProcessRawFrameRatio", "Msamples/s_chain")
lb, la = both("devicestream", "BM_ProcessRawFrameRatio", "Msamples/s_bare")
row("`processRawFrame`, 31-sample frames, vs a bare loop of the same biquads (bench_devicestream)",
    "≥ 0.5×", "{:.2f}×", b, a,
    f"chain {fmt(cb, '{:.0f}')} → {fmt(ca, '{:.0f}')} M raw samples/s; "
    f"bare loop {fmt(lb, '{:.0f}')} / {fmt(la, '{:.0f}')} M/s")

b, a = both("edf", "BM_WriteRatio", "ratio")
wb, wa = both("edf", "BM_WriterWrite", "cpu_ms")
pb, pa = both("edf", "BM_PlainEdflibWrite", "cpu_ms")
row("EDF+ write, 10 minutes of 6 signals, vs a plain EDFlib loop (bench_edf)", "≤ 1.1×",
    "{:.2f}×", b, a,
    f"writer {fmt(wb, '{:.1f}')} → {fmt(wa, '{:.1f}')} ms CPU; "
    f"plain loop {fmt(pb, '{:.1f}')} / {fmt(pa, '{:.1f}')} ms")

b, a = both("edf", "BM_ReadRatio", "ratio")
rb, ra = both("edf", "BM_ReaderRead", "cpu_ms")
pb, pa = both("edf", "BM_PlainEdflibRead", "cpu_ms")
row("EDF+ read, same file (bench_edf)", "≤ 1.05×", "{:.2f}×", b, a,
    f"reader {fmt(rb, '{:.1f}')} → {fmt(ra, '{:.1f}')} ms CPU; "
    f"plain loop {fmt(pb, '{:.1f}')} / {fmt(pa, '{:.1f}')} ms")

mb, ma = both("signalviewer", "paintRatio120sTo10s", "ms_120s")
b, a = both("signalviewer", "paintRatio120sTo10s", "ratio")
row("SignalViewer paint, 120 s at 1000 Hz on 1920 px (bench_signalviewer)", "≤ 2 ms",
    "{:.2f} ms", mb, ma, "processor time per paint")
row("SignalViewer paint(120 s) / paint(10 s)", "≤ 1.5", "{:.2f}", b, a,
    "cost should follow pixels, not samples")

tb, ta = both("records", "BM_ReloadNewList", "cpu_ms")
row("reload of the records folder, 2,000 records (bench_records)",
    "10,000 in < 1 s (< 200 ms for 2,000)", "{:.0f} ms", tb, ta,
    f"10,000 at the same rate: {fmt(None if tb is None else tb * 5, '{:.0f}')} → "
    f"{fmt(None if ta is None else ta * 5, '{:.0f}')} ms CPU")

sb, sa = both("sessions", "BM_ListSessionsOfFolder", "cpu_ms")
row("listing the sessions of 10,000 records (bench_sessions)", "< 1 s", "{:.0f} ms", sb, sa,
    "list the folder anew, group, summarise")

xb, xa = both("exports", "BM_ExportFullXlsx", "cpu_ms")
fb, fa = both("exports", "BM_ExportFullXlsx", "MB")
row("full export of 50 five-minute records, XLSX (bench_records)", "≥ 2× faster (≤ 0.5× time)",
    "{:.1f} s", None if xb is None else xb / 1e3, None if xa is None else xa / 1e3,
    f"after/before time: {fmt(None if None in (xa, xb) else xa / xb, '{:.2f}×')}; "
    f"file {fmt(fb, '{:.0f}')} / {fmt(fa, '{:.0f}')} MB")
nb, na = both("xlsx", "BM_XlsxWrite", "s_per_record_new")
row("XLSX, five records in one run (bench_xlsx)", "≥ 2× faster", "{:.2f} s/record", nb, na,
    f"after/before time: {fmt(None if None in (na, nb) else na / nb, '{:.2f}×')}")

cb, ca = both("exports", "BM_ExportFullCsv", "cpu_ms")
fb, fa = both("exports", "BM_ExportFullCsv", "MB")
speed_b = None if None in (cb, fb) else fb / (cb / 1e3)
speed_a = None if None in (ca, fa) else fa / (ca / 1e3)
row("full export of 50 five-minute records, CSV (bench_records)", "≥ 150 MB/s", "{:.0f} MB/s",
    speed_b, speed_a,
    f"{fmt(None if cb is None else cb / 1e3, '{:.1f}')} → "
    f"{fmt(None if ca is None else ca / 1e3, '{:.1f}')} s CPU for "
    f"{fmt(fb, '{:.0f}')} / {fmt(fa, '{:.0f}')} MB")
vb, va = both("csv", "BM_CsvWriteVsPrevious", "MB/s_new")
row("CSV, one five-minute record written to a file (bench_csv)", "≥ 150 MB/s", "{:.0f} MB/s",
    vb, va, "")

ub, _ = four_units("before")
ua, n4 = four_units("after")
row(f"whole program, four simulated units on, {four_seconds} s (bench/program/load_fourunits)",
    "≤ 3 %", "{:.1f} %", ub, ua, "share of one core over the run")

print("| figure | before | after | goal | absolute figures (before → after) |")
print("|---|---|---|---|---|")
for r in rows:
    print("| " + " | ".join(r) + " |")
print()
print(f"Medians over {rounds} rounds ({long_rounds} for the full exports); "
      f"before: `{before_dir}`, after: `{after_dir}`. Times are processor time; "
      "a MB is 2^20 bytes, as the benchmarks count them.")
EOF
