// Throughput of the per-device processing chain, against a bare loop of the same biquads.
#include "analysis/ButterworthFilter.h"
#include "analysis/NotchFilter.h"
#include "device/BaseCorvidaDevice.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <ctime>
#include <vector>

namespace {
class BenchDevice : public BaseCorvidaDevice
{
public:
    using BaseCorvidaDevice::processRawFrame;
    void connectDevice() override {}
    void disconnectDevice() override {}
    void startAcquisition() override {}
    void stopAcquisition() override {}
    void startMeasuring() override {}
    void stopMeasuring() override {}
    bool isConnected() const override { return true; }
};

RawFrame makeFrame(int n, int offset)
{
    RawFrame f(4);
    for (auto &c : f)
        c.resize(n);
    for (int i = 0; i < n; ++i) {
        const double t = (offset + i) / 1000.0;
        f[0][i] = 100 + 20 * std::sin(t);
        f[1][i] = 0.5 * std::sin(2 * M_PI * 8 * t);
        f[2][i] = 1.2;
        f[3][i] = 1.0;
    }
    return f;
}

void BM_ProcessRawFrame31(benchmark::State &state)
{
    BenchDevice device;
    std::vector<RawFrame> frames;
    for (int k = 0; k < 64; ++k)
        frames.push_back(makeFrame(31, k * 31));
    size_t k = 0;
    for (auto _ : state) {
        device.processRawFrame(frames[k++ % frames.size()]);
    }
    state.SetItemsProcessed(state.iterations() * 31);
    state.SetLabel("items = raw samples (4 channels each)");
}
BENCHMARK(BM_ProcessRawFrame31);

// The same six second-order sections per raw sample (2 low-pass + notch on pressure, 2 low-pass
// + notch on pulse), as plain code on plain arrays: the floor the chain can approach.
struct Biquad {
    double b0, b1, b2, a1, a2, s1 = 0, s2 = 0;
    inline double run(double x)
    {
        const double y = b0 * x + s1;
        s1 = b1 * x - a1 * y + s2;
        s2 = b2 * x - a2 * y;
        return y;
    }
};

std::vector<Biquad> sectionsOf(int channel)
{
    QList<QList<float>> sos;
    double gain = 1;
    ButterworthFilter::Butter(4, channel == 0 ? 15 : 30, 1000, false, &sos, &gain);
    QList<float> nb, na;
    NotchFilter::coefficients(3, 1000, 50, 1, &nb, &na);
    sos.append({nb[0], nb[1], nb[2], na[0], na[1], na[2]});
    std::vector<Biquad> out;
    for (const auto &s : sos)
        out.push_back({s[0], s[1], s[2], s[4], s[5]});
    return out;
}

void BM_BareBiquadLoop31(benchmark::State &state)
{
    std::vector<Biquad> pressure = sectionsOf(0), pulse = sectionsOf(1);
    std::vector<float> in0(31), in1(31), out0(31), out1(31);
    const RawFrame f = makeFrame(31, 0);
    for (int i = 0; i < 31; ++i) {
        in0[i] = float(f[0][i]);
        in1[i] = float(f[1][i]);
    }
    for (auto _ : state) {
        for (int i = 0; i < 31; ++i) {
            double v = in0[i];
            for (auto &s : pressure)
                v = s.run(v);
            out0[i] = float(v);
            double w = in1[i];
            for (auto &s : pulse)
                w = s.run(w);
            out1[i] = float(w);
        }
        benchmark::DoNotOptimize(out0.data());
        benchmark::DoNotOptimize(out1.data());
    }
    state.SetItemsProcessed(state.iterations() * 31);
}
BENCHMARK(BM_BareBiquadLoop31);

double threadSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

// Both of the above in one run, alternately in batches of 64 frames so load on the machine
// weighs on both alike: "ratio" is the chain's throughput over the bare loop's (1 would be the
// bare loop's speed).
void BM_ProcessRawFrameRatio(benchmark::State &state)
{
    BenchDevice device;
    std::vector<RawFrame> frames;
    for (int k = 0; k < 64; ++k)
        frames.push_back(makeFrame(31, k * 31));
    std::vector<Biquad> pressure = sectionsOf(0), pulse = sectionsOf(1);
    std::vector<float> in0(31), in1(31), out0(31), out1(31);
    for (int i = 0; i < 31; ++i) {
        in0[i] = float(frames[0][0][i]);
        in1[i] = float(frames[0][1][i]);
    }
    double chainSeconds = 0, bareSeconds = 0;
    for (auto _ : state) {
        const double t0 = threadSeconds();
        for (const RawFrame &frame : frames)
            device.processRawFrame(frame);
        const double t1 = threadSeconds();
        for (size_t k = 0; k < frames.size(); ++k) {
            for (int i = 0; i < 31; ++i) {
                double v = in0[i];
                for (auto &s : pressure)
                    v = s.run(v);
                out0[i] = float(v);
                double w = in1[i];
                for (auto &s : pulse)
                    w = s.run(w);
                out1[i] = float(w);
            }
            benchmark::DoNotOptimize(out0.data());
            benchmark::DoNotOptimize(out1.data());
        }
        const double t2 = threadSeconds();
        chainSeconds += t1 - t0;
        bareSeconds += t2 - t1;
    }
    const double samples = double(state.iterations()) * 64 * 31;
    state.counters["Msamples/s_chain"] = samples / chainSeconds / 1e6;
    state.counters["Msamples/s_bare"] = samples / bareSeconds / 1e6;
    state.counters["ratio"] = bareSeconds / chainSeconds;
}
BENCHMARK(BM_ProcessRawFrameRatio)->Iterations(20000);
} // namespace

BENCHMARK_MAIN();
