#pragma once

#include <QList>

class AbstractFilter;

// Test signals and measurements that do not depend on the code under test.
namespace SignalTools {

QList<float> sine(double frequency, double rate, int samples, double amplitude = 1.0);

// Steady-state gain of a filter at one frequency: feed a long sine, skip the settling part,
// compare the RMS of output and input over whole periods.
double gainAt(AbstractFilter &filter, double frequency, double rate, double settleSeconds = 2.0,
              double measureSeconds = 2.0);

double rms(const QList<float> &values, qsizetype from = 0, qsizetype to = -1);

inline double toDecibel(double gain);

} // namespace SignalTools

#include <cmath>
inline double SignalTools::toDecibel(double gain)
{
    return 20.0 * std::log10(gain);
}
