#include "support/SignalTools.h"

#include "analysis/AbstractFilter.h"

#include <cmath>

QList<float> SignalTools::sine(double frequency, double rate, int samples, double amplitude)
{
    QList<float> out(samples);
    for (int i = 0; i < samples; ++i)
        out[i] = float(amplitude * std::sin(2.0 * M_PI * frequency * i / rate));
    return out;
}

double SignalTools::rms(const QList<float> &values, qsizetype from, qsizetype to)
{
    if (to < 0 || to > values.size())
        to = values.size();
    double sum = 0;
    for (qsizetype i = from; i < to; ++i)
        sum += double(values[i]) * values[i];
    return to > from ? std::sqrt(sum / double(to - from)) : 0.0;
}

double SignalTools::gainAt(AbstractFilter &filter, double frequency, double rate,
                           double settleSeconds, double measureSeconds)
{
    const int settle = int(settleSeconds * rate);
    // Measure over a whole number of periods so the RMS of the sine is exact.
    const double period = rate / frequency;
    const int periods = std::max(1, int(measureSeconds * rate / period));
    const int measure = int(std::lround(periods * period));
    const QList<float> in = sine(frequency, rate, settle + measure);
    const QList<float> out = filter.Process(in);
    return rms(out, settle) / rms(in, settle);
}
