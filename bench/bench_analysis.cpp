// Cost of analysing a record: the full recalculation of a 10-minute record (both ways of placing
// the markers, and the placing alone, with the ratio refined / documented), and the live heart
// rate over the last three seconds.
#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/EnvelopeOnsetDetector.h"
#include "analysis/PeakFinder.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cmath>

namespace {
// Ten minutes at 1000 Hz of repeated cuff cycles: pressure falls from 160 to 40 mmHg every
// 30 s; a 450 beats per minute pulse returns below 120 mmHg.
QList<QList<double>> tenMinutes()
{
    const int n = 600000;
    QList<double> pressure(n), pulse(n);
    for (int i = 0; i < n; ++i) {
        const double t = (i % 30000) / 1000.0;
        pressure[i] = t < 2 ? 80 * t : std::max(0.0, 160 - 6 * (t - 2));
        const double amplitude = pressure[i] > 120 ? 0.01 : 0.3;
        const double phase = std::fmod(i / 1000.0 * 7.5, 1.0);
        pulse[i] = amplitude * (phase < 0.2 ? phase / 0.2 : (1 - phase) / 0.8);
    }
    return {pressure, pulse};
}

void BM_Recalculate10Minutes(benchmark::State &state)
{
    CorvidaOnlineExperiment e;
    e.setClock([] { return qint64(0); }); // keeps the live heart rate out of updateData
    e.setSamplingRate(1000);
    e.updateData(tenMinutes());
    for (auto _ : state)
        e.recalculate(true);
    state.counters["beats"] = double(e.beats().size());
}
BENCHMARK(BM_Recalculate10Minutes)->Unit(benchmark::kMillisecond);

void BM_Recalculate10MinutesRefined(benchmark::State &state)
{
    CorvidaOnlineExperiment e;
    e.setClock([] { return qint64(0); });
    e.setSamplingRate(1000);
    e.updateData(tenMinutes());
    e.setMethod(CorvidaExperiment::refinedMethod());
    for (auto _ : state)
        e.recalculate(true);
    state.counters["beats"] = double(e.beats().size());
}
BENCHMARK(BM_Recalculate10MinutesRefined)->Unit(benchmark::kMillisecond);

// The marker placing alone, on the beats of the 10-minute record: 0 the long-standing way,
// 1 the refined way.
void BM_PlaceMarkers10Minutes(benchmark::State &state)
{
    CorvidaOnlineExperiment e;
    e.setClock([] { return qint64(0); });
    e.setSamplingRate(1000);
    const QList<QList<double>> data = tenMinutes();
    e.updateData(data);
    e.recalculate(true);
    PeakFinder *finder = e.peakFinder();
    const QList<int> beats = e.beats();
    const QList<QPointF> amplitudes = e.amplitudeSeries();
    double sink = 0;
    for (auto _ : state) {
        if (state.range(0) == 0) {
            const QList<int> regular = finder->selectRegularBeats(beats);
            const int c = PeakFinder::chooseSystolicBeat(regular);
            sink += finder->findDiastolicTime(regular.value(c) / 1000.0, data[0]);
        } else {
            sink += EnvelopeOnsetDetector::detect(data[0], amplitudes, 1000).systolicTime;
        }
    }
    benchmark::DoNotOptimize(sink);
}
BENCHMARK(BM_PlaceMarkers10Minutes)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// Both ways on the same 10-minute record, in turns, and the ratio of their times
// (refined / documented): for the whole recalculation and for the marker placing alone.
void BM_RefinedOverDocumented10Minutes(benchmark::State &state)
{
    using Clock = std::chrono::steady_clock;
    CorvidaOnlineExperiment documented, refined;
    const QList<QList<double>> data = tenMinutes();
    for (CorvidaOnlineExperiment *e : {&documented, &refined}) {
        e->setClock([] { return qint64(0); });
        e->setSamplingRate(1000);
        e->updateData(data);
    }
    refined.setMethod(CorvidaExperiment::refinedMethod());
    documented.recalculate(true);
    PeakFinder *finder = documented.peakFinder();
    const QList<int> beats = documented.beats();
    const QList<QPointF> amplitudes = documented.amplitudeSeries();
    double recalcDocumented = 0, recalcRefined = 0, placeDocumented = 0, placeRefined = 0;
    double sink = 0;
    const auto seconds = [](Clock::time_point from) {
        return std::chrono::duration<double>(Clock::now() - from).count();
    };
    for (auto _ : state) {
        Clock::time_point t = Clock::now();
        documented.recalculate(true);
        recalcDocumented += seconds(t);
        t = Clock::now();
        refined.recalculate(true);
        recalcRefined += seconds(t);
        t = Clock::now();
        const QList<int> regular = finder->selectRegularBeats(beats);
        const int c = PeakFinder::chooseSystolicBeat(regular);
        sink += finder->findDiastolicTime(regular.value(c) / 1000.0, data[0]);
        placeDocumented += seconds(t);
        t = Clock::now();
        sink += EnvelopeOnsetDetector::detect(data[0], amplitudes, 1000).systolicTime;
        placeRefined += seconds(t);
    }
    benchmark::DoNotOptimize(sink);
    const double n = double(state.iterations());
    state.counters["recalc_documented_ms"] = 1000 * recalcDocumented / n;
    state.counters["recalc_refined_ms"] = 1000 * recalcRefined / n;
    state.counters["recalc_ratio"] = recalcRefined / recalcDocumented;
    state.counters["place_documented_us"] = 1e6 * placeDocumented / n;
    state.counters["place_refined_us"] = 1e6 * placeRefined / n;
    state.counters["place_ratio"] = placeRefined / placeDocumented;
}
BENCHMARK(BM_RefinedOverDocumented10Minutes)->Unit(benchmark::kMillisecond);

void BM_LiveHeartRate3Seconds(benchmark::State &state)
{
    const QList<QList<double>> data = tenMinutes();
    CorvidaOnlineExperiment e;
    qint64 now = 0;
    e.setClock([&now] { return now; });
    e.setSamplingRate(1000);
    double bpm = 0;
    QObject::connect(&e, &CorvidaOnlineExperiment::pulseCalculated, &e,
                     [&bpm](double v) { bpm = v; });
    for (auto _ : state) {
        now += 1001; // every update is due for a heart-rate run
        e.updateData(data);
    }
    state.counters["bpm"] = bpm;
}
BENCHMARK(BM_LiveHeartRate3Seconds)->Unit(benchmark::kMicrosecond);
} // namespace

BENCHMARK_MAIN();
