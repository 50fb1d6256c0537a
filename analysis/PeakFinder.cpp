#include "analysis/PeakFinder.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
// Far beyond any sensible window; keeps the conversion defined for absurd rates.
constexpr double kLargestHalfWindow = 1.0e8;

// Summed fall after (step +1) or rise before (step -1) sample i, over at most h samples. A sum
// that turns negative means a higher sample lies within reach, so i is a shoulder or a notch rather
// than the top of the wave: the sum stops there and the threshold rejects it.
double slopeSum(const double *x, qsizetype i, qsizetype h, qsizetype step)
{
    double sum = 0.0;
    for (qsizetype d = 0; d < h; ++d) {
        sum += x[i + step * d] - x[i + step * (d + 1)];
        if (sum < 0.0)
            break;
    }
    return sum;
}

} // namespace

PeakFinder::PeakFinder(double samplingRate, double slopeThreshold, double halfWindow,
                       QObject *parent)
    : QObject(parent)
    , m_samplingRate(samplingRate)
    , m_slopeThreshold(slopeThreshold)
    , m_halfWindow(halfWindow)
    , m_minimumRate(180)
    , m_maximumRate(900)
{}

int PeakFinder::halfWindowSamples() const
{
    const double h = std::trunc(m_halfWindow * m_samplingRate);
    // A zero, negative or undefined rate or window leaves no room for slope sums.
    if (!(h >= 0.0))
        return 0;
    return int(std::min(h, kLargestHalfWindow));
}

void PeakFinder::findPeaks(const QList<double> &series, int first, int last,
                           QList<int> &signedIndices, QList<int> &peaks, QList<int> &valleys)
{
    findPeaks(series.constData(), series.size(), first, last, signedIndices, peaks, valleys);
}

void PeakFinder::findPeaks(const double *x, qsizetype length, int first, int last,
                           QList<int> &signedIndices, QList<int> &peaks, QList<int> &valleys)
{
    // Beat indices are 32-bit; a longer block (weeks at 1000 Hz) is searched up to that limit.
    const qsizetype n =
        std::min<qsizetype>(std::max<qsizetype>(length, 0), std::numeric_limits<int>::max());
    const qsizetype h = halfWindowSamples();
    const qsizetype end = last < 0 ? n : last;
    // Only samples with a full half-window on both sides are judged. The extra n - 1 bound only
    // matters for a zero window, where the peak test would otherwise read past the end.
    const qsizetype from = std::max<qsizetype>(first, h + 1);
    const qsizetype to = std::min({end, n - h, n - 1});

    peaks.clear();
    for (qsizetype i = from; i < to; ++i) {
        const double xi = x[i];
        // The first sample of a flat top counts as the peak; the next one does not rise.
        if (!(xi > x[i - 1] && x[i + 1] <= xi))
            continue;
        if (passesSlopeSums(x, i, h))
            peaks.append(int(i));
    }

    thinIsolatedPeaks(peaks, m_minimumRate, m_maximumRate);

    m_intervals.clear();
    m_amplitudes.clear();
    valleys.clear();
    for (qsizetype j = 1; j < peaks.size(); ++j) {
        const int previous = peaks[j - 1];
        const int peak = peaks[j];
        // The valley is the first lowest sample between the two peaks, and it must lie below
        // the previous peak; a beat without one gives no interval and no amplitude.
        double lowest = x[previous];
        int valley = -1;
        for (int k = previous + 1; k < peak; ++k) {
            if (x[k] < lowest) {
                lowest = x[k];
                valley = k;
            }
        }
        if (valley < 0)
            continue;
        signedIndices.append(-valley);
        signedIndices.append(peak);
        valleys.append(valley);
        const double time = peak / m_samplingRate;
        m_amplitudes.append(QPointF(time, x[peak] - x[valley]));
        m_intervals.append(QPointF(time, (peak - previous) / m_samplingRate));
    }
}

bool PeakFinder::passesSlopeSums(const double *x, qsizetype i, qsizetype h) const
{
    // Local minima need no sums: the valleys are found later between accepted peaks.
    if (m_slopeThreshold >= 0.0) {
        // Noise makes a local maximum of every few samples, nearly all on a slope. Running both
        // sums side by side rejects those as soon as either turns negative, instead of first
        // summing the whole way down the slope on the other side. The sums are the same.
        double fall = 0.0;
        double rise = 0.0;
        for (qsizetype d = 0; d < h; ++d) {
            fall += x[i + d] - x[i + d + 1];
            rise += x[i - d] - x[i - d - 1];
            if (fall < 0.0 || rise < 0.0)
                return false;
        }
        return fall >= m_slopeThreshold && rise >= m_slopeThreshold;
    }
    // Below zero a stopped, negative sum may still pass, so each sum is taken on its own.
    return slopeSum(x, i, h, +1) >= m_slopeThreshold && slopeSum(x, i, h, -1) >= m_slopeThreshold;
}

void PeakFinder::thinIsolatedPeaks(QList<int> &candidates, int minimumRate, int maximumRate) const
{
    // Only peaks with no plausible neighbour on either side are taken out. Peaks that come too
    // close are left in: the short intervals they make are dropped by the heart-rate bands.
    Q_UNUSED(maximumRate)
    const qsizetype total = candidates.size();
    if (total < 2)
        return;
    const double longest = 60.0 / minimumRate;
    const auto interval = [this](int from, int to) { return (to - from) / m_samplingRate; };

    // Done in place and in linear time. candidates[0, kept) are the candidates judged so far and
    // kept, `current` is the one being judged, candidates[next, total) are not judged yet.
    // Removing `current` steps back to the last kept one, which then meets its new neighbour.
    qsizetype kept = 0;
    qsizetype next = 1;
    int current = candidates[0];
    for (;;) {
        if (kept + (total - next) == 0) {
            // A lone survivor has no neighbour to be measured against and stays.
            candidates[kept++] = current;
            break;
        }
        double before;
        double after;
        if (kept == 0) {
            before = after = interval(current, candidates[next]);
        } else if (next == total) {
            before = after = interval(candidates[kept - 1], current);
        } else {
            before = interval(candidates[kept - 1], current);
            after = interval(current, candidates[next]);
        }
        if (before > longest && after > longest) {
            current = kept > 0 ? candidates[--kept] : candidates[next++];
            continue;
        }
        candidates[kept++] = current;
        if (next == total)
            break;
        current = candidates[next++];
    }
    candidates.resize(kept);
}

double PeakFinder::heartRate() const
{
    // Pass 1: the mean of the intervals inside the rate limits.
    const double shortest = 60.0 / m_maximumRate;
    const double longest = 60.0 / m_minimumRate;
    double sum = 0.0;
    int count = 0;
    for (const QPointF &point : m_intervals) {
        const double rr = point.y();
        if (rr >= shortest && rr <= longest) {
            sum += rr;
            ++count;
        }
    }
    if (count == 0)
        return 0.0;
    const double mean = sum / count;

    // Pass 2: all intervals again, now only against a band around that mean, which drops missed
    // beats (double intervals) and extra ones (split intervals).
    const double low = 0.69 * mean;
    const double high = 1.44 * mean;
    sum = 0.0;
    count = 0;
    for (const QPointF &point : m_intervals) {
        const double rr = point.y();
        if (rr >= low && rr <= high) {
            sum += rr;
            ++count;
        }
    }
    // Nothing regular is left: the mean of no intervals is undefined, and the rate with it.
    if (count == 0)
        return std::numeric_limits<double>::quiet_NaN();
    return 60.0 / (sum / count);
}
