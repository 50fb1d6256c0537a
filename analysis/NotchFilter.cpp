#include "analysis/NotchFilter.h"

#include <cmath>

NotchFilter::NotchFilter(float samplingRate, float centreFrequency, float width, QObject *parent)
    : AbstractFilter(IIR, QStringLiteral("NotchFilter"), parent)
{
    QList<float> numerator;
    QList<float> denominator;
    coefficients(BandStop, samplingRate, centreFrequency, width, &numerator, &denominator);
    m_stage = new IIRFilter(numerator, denominator, this);
}

bool NotchFilter::coefficients(int type, float samplingRate, float centreFrequency, float width,
                               QList<float> *numerator, QList<float> *denominator)
{
    numerator->clear();
    denominator->clear();
    if ((type != BandStop && type != BandPass) || samplingRate <= 0)
        return false;
    const double R = 1.0 - 3.0 * std::fabs(width) / samplingRate;
    const double c = std::cos(2.0 * M_PI * centreFrequency / samplingRate);
    const double K = (1.0 - 2.0 * R * c + R * R) / (2.0 - 2.0 * c);
    *denominator = {1.0f, float(-2.0 * R * c), float(R * R)};
    if (type == BandStop)
        *numerator = {float(K), float(-2.0 * K * c), float(K)};
    else
        *numerator = {float(1.0 - K), float(2.0 * (K - R) * c), float(R * R - K)};
    return true;
}
