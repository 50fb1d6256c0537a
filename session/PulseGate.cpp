#include "session/PulseGate.h"

#include "analysis/PeakFinder.h"
#include "session/AcceptanceRules.h"

#include <algorithm>
#include <cmath>

namespace {
// The live heart rate uses the same detector settings, so the gate sees the beats the operator
// sees counted.
constexpr double kSlopeThreshold = 0.01;
constexpr double kHalfWindow = 0.05;
// Fewer beats than this say nothing about regularity.
constexpr int kMinimumBeats = 4;
} // namespace

PulseGate::Assessment PulseGate::assess(const QList<double> &pulse, double samplingRate) const
{
    Assessment a;
    if (samplingRate <= 0 || pulse.isEmpty())
        return a;
    PeakFinder finder(samplingRate, kSlopeThreshold, kHalfWindow);
    QList<int> signedIndices, peaks, valleys;
    finder.findPeaks(pulse, 0, -1, signedIndices, peaks, valleys);
    a.beats = int(peaks.size());
    const double rate = finder.heartRate();
    a.heartRate = std::isfinite(rate) ? rate : 0.0;

    QList<double> heights;
    for (const QPointF &p : finder.amplitudeSeries())
        heights << p.y();
    if (!heights.isEmpty()) {
        std::sort(heights.begin(), heights.end());
        a.amplitude = heights[heights.size() / 2];
    }
    QList<QPointF> rates;
    for (const QPointF &p : finder.intervalSeries())
        rates << QPointF(p.x(), p.y() > 0 ? 60.0 / p.y() : 0.0);
    a.irregularPercent = AcceptanceRules::irregularPercent(rates, 0.0);

    a.open = a.beats >= kMinimumBeats && a.amplitude >= m_limits.minAmplitude &&
             a.heartRate >= m_limits.minHeartRate && a.heartRate <= m_limits.maxHeartRate &&
             a.irregularPercent <= m_limits.maxIrregularPercent;
    return a;
}
