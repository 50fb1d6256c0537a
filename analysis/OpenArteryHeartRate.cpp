#include "analysis/OpenArteryHeartRate.h"

#include "analysis/EnvelopeOnsetDetector.h"

#include <algorithm>
#include <cmath>

namespace {
// A beat smaller than this share of the beats around it is a noise peak, not a heartbeat.
constexpr double kLeastShareOfNeighbours = 0.5;
constexpr int kNeighbours = 9;
// Longer gaps (the closed artery between the beats before inflation and those after the pulse
// returns) are not counted: their number of beats would be a guess.
constexpr double kMostBeatsInOneStep = 3;
// Steps shorter than this share of the typical interval are not a beat of their own.
constexpr double kExtraPeakShare = 0.7;
} // namespace

double OpenArteryHeartRate::estimate(const QList<QPointF> &amplitudes,
                                     const QList<double> &pressure, double samplingRate,
                                     double systolic)
{
    if (samplingRate <= 0 || systolic <= 0)
        return 0.0;
    QList<double> times, sizes;
    for (const QPointF &beat : amplitudes) {
        const double position = beat.x() * samplingRate;
        if (!(position >= 0) || position >= double(pressure.size()))
            continue;
        if (pressure[qsizetype(position)] >= systolic)
            continue;
        times << beat.x();
        sizes << beat.y();
    }
    if (times.size() < kLeastBeats)
        return 0.0;
    const QList<double> typical = EnvelopeOnsetDetector::runningMedian(sizes, kNeighbours);
    QList<double> kept;
    for (qsizetype k = 0; k < times.size(); ++k) {
        if (sizes[k] >= kLeastShareOfNeighbours * typical[k])
            kept << times[k];
    }
    if (kept.size() < kLeastBeats)
        return 0.0;

    QList<double> intervals;
    for (qsizetype k = 1; k < kept.size(); ++k)
        intervals << kept[k] - kept[k - 1];
    QList<double> sorted = intervals;
    const auto middle = sorted.begin() + sorted.size() / 2;
    std::nth_element(sorted.begin(), middle, sorted.end());
    const double usual = *middle;
    if (!(usual > 0))
        return 0.0;

    // Walk the beats, reading each step from the last counted beat as a whole number of heart
    // beats. A peak less than kExtraPeakShare of a beat after the last one is stepped over, so
    // the step to the next beat is measured from the last counted one: of an extra peak and the
    // beat next to it only one can be that far from both neighbours, and a premature beat's step
    // merges with its pause into two whole beats. Rounding, rather
    // than rejecting odd intervals, keeps the time of a premature beat and its pause in the
    // count whatever their shares of it.
    double span = 0.0;
    long beats = 0;
    double last = kept.first();
    for (qsizetype k = 1; k < kept.size(); ++k) {
        const double step = kept[k] - last;
        if (step < kExtraPeakShare * usual)
            continue;
        const double whole = std::max(1.0, std::round(step / usual));
        if (whole <= kMostBeatsInOneStep) {
            span += step;
            beats += long(whole);
        }
        last = kept[k];
    }
    if (beats < kLeastBeats - 1 || span <= 0)
        return 0.0;
    return 60.0 * double(beats) / span;
}
