#include "analysis/PeakFinder.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

namespace {

// A tail pulse wave at 450 beats per minute with a little noise and baseline wander, as the
// device delivers it at 1000 Hz.
QList<double> pulseWave(int samples)
{
    const double rate = 1000.0;
    const double period = 60.0 / 450.0;
    std::mt19937 engine(7);
    std::normal_distribution<double> noise(0.0, 0.01);
    QList<double> x(samples);
    for (int i = 0; i < samples; ++i) {
        const double t = i / rate;
        const double phase = std::fmod(t / period, 1.0);
        const double wave = phase < 0.2 ? 0.5 * (1.0 - std::cos(M_PI * phase / 0.2))
                                        : std::pow(1.0 - (phase - 0.2) / 0.8, 2.0);
        x[i] = wave + 0.3 * std::sin(2.0 * M_PI * 0.2 * t) + noise(engine);
    }
    return x;
}

// The live heart rate: the last 3 s of a growing recording, searched in place.
void liveHeartRateOnThreeSeconds(benchmark::State &state)
{
    const QList<double> recording = pulseWave(60000);
    const int window = 3000;
    const double *slice = recording.constData() + recording.size() - window;
    PeakFinder finder(1000.0, 0.01, 0.05);
    QList<int> signedIndices;
    QList<int> peaks;
    QList<int> valleys;
    for (auto _ : state) {
        signedIndices.clear();
        finder.findPeaks(slice, window, 0, -1, signedIndices, peaks, valleys);
        benchmark::DoNotOptimize(finder.heartRate());
    }
}
BENCHMARK(liveHeartRateOnThreeSeconds)->Unit(benchmark::kMicrosecond);

// A whole 10-minute record, as on every recalculation.
void findPeaksOnTenMinutes(benchmark::State &state)
{
    const QList<double> recording = pulseWave(600000);
    PeakFinder finder(1000.0, 0.01, 0.05);
    QList<int> signedIndices;
    QList<int> peaks;
    QList<int> valleys;
    for (auto _ : state) {
        signedIndices.clear();
        finder.findPeaks(recording, 0, -1, signedIndices, peaks, valleys);
        benchmark::DoNotOptimize(finder.heartRate());
    }
    state.counters["beats"] = double(peaks.size());
}
BENCHMARK(findPeaksOnTenMinutes)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
