#include "analysis/CorvidaOnlineExperiment.h"
#include "ui/ExperimentViewer.h"
#include "ui/SignalViewer.h"
#include "ui/ViewerColumnDecimator.h"

#include <QApplication>
#include <QImage>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <cmath>
#include <ctime>
#include <random>

namespace {

// A PPG-like wave at 450 beats per minute with noise, 1000 Hz.
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
        x[i] = wave - 0.4 + noise(engine);
    }
    return x;
}

void addMarkers(SignalViewer &viewer)
{
    viewer.setMarkersMovable(true);
    viewer.setMarker(SignalViewerMarker(QStringLiteral("SBP"), QStringLiteral("SBP 118"), 31.4,
                                        SignalViewerMarker::Kind::Movable, QColor(0xd3, 0x54, 0)));
    viewer.setMarker(SignalViewerMarker(QStringLiteral("DBP"), QStringLiteral("DBP 82"), 52.7,
                                        SignalViewerMarker::Kind::Movable,
                                        QColor(0x8e, 0x44, 0xad)));
}

// A viewer 1920 pixels wide showing `seconds` of a record that is `total` seconds long,
// scrolled to its end.
void setUpViewer(SignalViewer &viewer, int seconds, int total)
{
    viewer.resize(1920, 400);
    viewer.setWindowLength(seconds);
    viewer.setValueRange(-0.6, 0.8);
    viewer.setScrollMode(true);
    viewer.setSeries({SignalViewerSeries::fromSamples(pulseWave(total * 1000), 1000.0,
                                                      QColor(0xcc, 0x44, 0x44), 1.5)});
    viewer.setOffset(total);
    addMarkers(viewer);
}

void paintOnce(SignalViewer &viewer, QImage &image)
{
    image.fill(Qt::white);
    viewer.render(&image);
    benchmark::ClobberMemory();
}

// One paint: the cost must not depend on the total.
void paintViewer(benchmark::State &state, int seconds, int total)
{
    SignalViewer viewer;
    setUpViewer(viewer, seconds, total);
    QImage image(viewer.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state)
        paintOnce(viewer, image);
}

double threadSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

// 120 s and 10 s on the same 1920 pixels, painted alternately in one run: "ratio" is the time
// of the 120 s paint over the 10 s paint, which should follow the pixels, not the samples.
void paintRatio120sTo10s(benchmark::State &state)
{
    SignalViewer wide, narrow;
    setUpViewer(wide, 120, 120);
    setUpViewer(narrow, 10, 120);
    QImage image(wide.size(), QImage::Format_ARGB32_Premultiplied);
    double wideSeconds = 0, narrowSeconds = 0;
    for (auto _ : state) {
        const double t0 = threadSeconds();
        paintOnce(wide, image);
        const double t1 = threadSeconds();
        paintOnce(narrow, image);
        const double t2 = threadSeconds();
        wideSeconds += t1 - t0;
        narrowSeconds += t2 - t1;
    }
    const double n = double(state.iterations());
    state.counters["ms_120s"] = 1000.0 * wideSeconds / n;
    state.counters["ms_10s"] = 1000.0 * narrowSeconds / n;
    state.counters["ratio"] = wideSeconds / narrowSeconds;
}
BENCHMARK(paintRatio120sTo10s)->Unit(benchmark::kMillisecond)->Iterations(1000);

void paint120sAt1920(benchmark::State &state)
{
    paintViewer(state, 120, 120);
}
BENCHMARK(paint120sAt1920)->Unit(benchmark::kMillisecond);

void paint120sOfTenMinutesAt1920(benchmark::State &state)
{
    paintViewer(state, 120, 600);
}
BENCHMARK(paint120sOfTenMinutesAt1920)->Unit(benchmark::kMillisecond);

void paint10sAt1920(benchmark::State &state)
{
    paintViewer(state, 10, 120);
}
BENCHMARK(paint10sAt1920)->Unit(benchmark::kMillisecond);

// The whole experiment viewer of a device panel at full HD: pressure, PPG with its amplitude
// envelope and peak dots, both markers, 120 s window.
void paintExperimentViewer120s(benchmark::State &state)
{
    CorvidaOnlineExperiment record;
    record.setSamplingRate(1000.0);
    QList<double> pressure(120000);
    for (qsizetype i = 0; i < pressure.size(); ++i)
        pressure[i] = std::max(0.0, 180.0 - i / 1000.0 * 1.5);
    record.updateData({pressure, pulseWave(120000)});
    record.recalculate(false);
    record.setSBPTime(31.4);
    record.setDBPTime(52.7);
    ExperimentViewer viewer;
    viewer.resize(1920, 1000);
    viewer.setExperiment(&record);
    viewer.pressureViewer()->setWindowLength(120);
    viewer.ppgViewer()->setWindowLength(120);
    QImage image(viewer.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        image.fill(Qt::white);
        viewer.render(&image);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(paintExperimentViewer120s)->Unit(benchmark::kMillisecond);

// The column reduction alone, without drawing.
void decimate120sAt1920(benchmark::State &state)
{
    const QList<double> samples = pulseWave(120000);
    ViewerColumnDecimator::Mapping map;
    map.rate = 1000;
    map.pixelsPerSecond = 1920.0 / 120.0;
    map.columns = 1920;
    map.yScale = -100;
    map.yOrigin = 200;
    std::vector<QPointF> out;
    for (auto _ : state) {
        ViewerColumnDecimator::decimate(samples.constData(), samples.size(), map, out);
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(decimate120sAt1920)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
