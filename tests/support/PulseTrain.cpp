#include "support/PulseTrain.h"

#include <cmath>
#include <random>

namespace {

double cycleShape(double phase)
{
    using PulseTrain::kPeakPhase;
    if (phase < kPeakPhase)
        return 0.5 * (1.0 - std::cos(M_PI * phase / kPeakPhase));
    const double u = (phase - kPeakPhase) / (1.0 - kPeakPhase);
    const double notch = (phase - 0.5) / 0.05;
    return (1.0 - u) * (1.0 - u) + 0.12 * std::exp(-notch * notch);
}

// Box-Muller on the raw generator, so the noise is the same with every standard library.
double gaussian(std::mt19937 &engine)
{
    const double u1 = (double(engine()) + 1.0) / 4294967297.0;
    const double u2 = double(engine()) / 4294967296.0;
    return std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * M_PI * u2);
}

} // namespace

PulseTrain::Train PulseTrain::make(const Options &o)
{
    Train train;
    const int n = int(o.seconds * o.samplingRate);
    const double period = 60.0 / o.beatsPerMinute;
    std::mt19937 engine(o.seed);
    train.samples.resize(n);
    for (int i = 0; i < n; ++i) {
        const double t = i / o.samplingRate;
        const int beat = int(t / period);
        const double phase = t / period - beat;
        double value = o.offset + o.wanderAmplitude * std::sin(2.0 * M_PI * o.wanderFrequency * t);
        if (!o.missingBeats.contains(beat))
            value += o.amplitude * cycleShape(phase);
        if (o.noise > 0.0)
            value += o.noise * gaussian(engine);
        train.samples[i] = value;
    }
    for (int beat = 0;; ++beat) {
        const int peak = int(std::lround((beat + kPeakPhase) * period * o.samplingRate));
        if (peak >= n)
            break;
        if (!o.missingBeats.contains(beat))
            train.peaks.append(peak);
    }
    return train;
}
