#include "analysis/NotchFilter2.h"

#include <algorithm>
#include <cmath>

NotchFilter2::NotchFilter2(float samplingRate, float centreFrequency, float bandwidth,
                           QObject *parent)
    : AbstractFilter(IIR, QStringLiteral("NotchFilter2"), parent)
{
    QList<float> numerator{1.0f};
    QList<float> denominator{1.0f};
    if (samplingRate > 0 && centreFrequency > 0 && centreFrequency < samplingRate / 2) {
        const double w0 = 2.0 * M_PI * centreFrequency / samplingRate;
        const double q = centreFrequency / std::max(double(std::fabs(bandwidth)), 1e-6);
        const double alpha = std::sin(w0) / (2.0 * q);
        const double c = std::cos(w0);
        const double a0 = 1.0 + alpha;
        numerator = {float(1.0 / a0), float(-2.0 * c / a0), float(1.0 / a0)};
        denominator = {1.0f, float(-2.0 * c / a0), float((1.0 - alpha) / a0)};
    }
    m_stage = new IIRFilter(numerator, denominator, this);
}
