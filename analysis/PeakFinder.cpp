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
    , m_minimumRate(kMinBPM)
    , m_maximumRate(kMaxBPM)
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

double PeakFinder::valueAtTime(const QList<double> &series, double t, double samplingRate)
{
    const double position = t * samplingRate;
    if (!std::isfinite(position) || position < 0 || position >= double(series.size()))
        return 0.0;
    return series[qsizetype(position)];
}

QList<int> PeakFinder::selectRegularBeats(const QList<int> &beats) const
{
    QList<int> regular;
    if (beats.size() < 2 || m_samplingRate <= 0)
        return regular;
    const double shortest = 60.0 / m_maximumRate;
    const double longest = 60.0 / m_minimumRate;
    QList<double> intervals;
    for (qsizetype j = 1; j < beats.size(); ++j) {
        const double interval = (beats[j] - beats[j - 1]) / m_samplingRate;
        if (interval >= shortest && interval <= longest) {
            intervals << interval;
            regular << beats[j];
        }
    }
    if (intervals.isEmpty())
        return regular;
    double sum = 0.0;
    for (double interval : std::as_const(intervals))
        sum += interval;
    const double mean = std::fabs(sum / double(intervals.size()));
    for (qsizetype i = intervals.size() - 1; i >= 1; --i) {
        if (intervals[i] < 0.66 * mean || intervals[i] > 1.33 * mean) {
            intervals.removeAt(i);
            regular.removeAt(i);
        }
    }
    return regular;
}

int PeakFinder::chooseSystolicBeat(const QList<int> &regular)
{
    // The window is a count of samples, whatever the sampling rate.
    constexpr int kWindow = 3000;
    double bestRatio = 1.0;
    int chosen = 0;
    const qsizetype n = regular.size();
    for (qsizetype i = 0; i < n; ++i) {
        if (regular[i] <= kWindow)
            continue;
        int after = 0;
        for (qsizetype j = i; j < n && qint64(regular[j]) - regular[i] < kWindow; ++j)
            ++after;
        int before = 0;
        for (qsizetype j = i; j >= 1 && qint64(regular[i]) - regular[j] < kWindow; --j)
            ++before;
        if (after > 9) {
            const double ratio = double(before) / double(after);
            if (ratio <= bestRatio) {
                bestRatio = ratio;
                chosen = int(i);
            }
        }
    }
    return chosen;
}

double PeakFinder::findDiastolicTime(double systolicTime, const QList<double> &pressure)
{
    return findDiastolicTime(systolicTime, pressure, m_amplitudes, m_samplingRate,
                             &m_slopeDifferences);
}

double PeakFinder::findDiastolicTime(double systolicTime, const QList<double> &pressure,
                                     const QList<QPointF> &a, double fs,
                                     QList<double> *slopeDifferences)
{
    if (slopeDifferences)
        slopeDifferences->clear();
    const auto p = [&](double t) { return valueAtTime(pressure, t, fs); };
    const qsizetype n = a.size();
    const double ps = p(systolicTime);
    double best = 0.0;
    double result = 0.0;
    for (qsizetype k = 0; k + 1 < n; ++k) {
        const double tk = a[k].x();
        const double pk = p(tk);
        if (pk < ps - 50.0 || pk > ps - 15.0 || !(tk > systolicTime))
            continue;
        // Amplitude growth over the 10 mmHg above the candidate (earlier, higher pressure)...
        double upper = 0.0;
        for (qsizetype m = k + 1; m > 0; --m) {
            if (p(a[m].x()) > pk + 10.0)
                break;
            upper += (a[m].y() - a[m - 1].y()) * 0.5 * (a[m].x() - a[m - 1].x());
        }
        // ... and over the 10 mmHg below it (later, lower pressure). A point before the first
        // one does not exist; it ends the sum.
        double lower = 0.0;
        for (qsizetype j = k - 1; j >= 0 && j < n - 1; ++j) {
            if (p(a[j].x()) < pk - 10.0)
                break;
            lower += (a[j + 1].y() - a[j].y()) * 0.5 * (a[j + 1].x() - a[j].x());
        }
        const double difference = std::fabs(upper - lower);
        if (slopeDifferences)
            slopeDifferences->append(difference);
        if (difference > best) {
            best = difference;
            result = tk;
        }
    }
    return result;
}
