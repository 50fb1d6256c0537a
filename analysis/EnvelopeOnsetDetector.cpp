#include "analysis/EnvelopeOnsetDetector.h"

#include "analysis/EnvelopeHingeFit.h"
#include "analysis/RiseOnsetFit.h"

#include <QCoreApplication>
#include <QDebug>
#include <algorithm>
#include <cmath>
#include <vector>

namespace {
// A cuff that never got this high cannot have closed a rodent's tail artery.
constexpr double kLowestTop = 40.0;
// The beats of the first second after the cuff's highest point show the closed artery: the
// operator inflates well above the systolic pressure.
constexpr double kFloorSeconds = 1.0;
// The rising part used for the line, as shares of the way from floor to plateau.
constexpr double kRiseLow = 0.2;
constexpr double kRiseHigh = 0.8;
// From this many beats in the rising part on, the line goes through the beats themselves.
constexpr int kRawLineBeats = 15;
// The pulse counts as back once this many smoothed beats in a row are above the low share.
constexpr int kSustainedBeats = 4;
// A beat is taken for movement when its amplitude is this many times the typical amplitude of
// the beats around it (a running median over kLocalBeats beats, wider than the longest burst of
// movement), and at least half the plateau: a moving tail swings the sensor far more than any
// pulse, but the pulse of the open artery is never much above its neighbours.
constexpr double kMovementFactor = 1.6;
constexpr int kLocalBeats = 25;
// Seconds without any beat found that show the artery still closed.
constexpr double kLongestSilence = 1.5;
// A floor of this share of the plateau or more is a noisy sensor's (see detect()).
constexpr double kNoisyFloor = 0.25;
// The pressure is averaged over this many samples before its crossings are looked for, so a
// noisy sample does not place a marker early.
constexpr int kPressureSmoothing = 50;

QString text(const char *source)
{
    return QCoreApplication::translate("EnvelopeOnsetDetector", source);
}

double percentile(QList<double> values, double share)
{
    if (values.isEmpty())
        return 0.0;
    std::sort(values.begin(), values.end());
    return values[qsizetype(share * double(values.size() - 1) + 0.5)];
}

// The first sample at or after `from` where the cuff pressure, averaged over a short window
// centred on it, is at or below `level`; -1 when it never is.
qsizetype firstCrossing(const QList<double> &pressure, qsizetype from, double level)
{
    const qsizetype n = pressure.size();
    const qsizetype half = kPressureSmoothing / 2;
    double sum = 0.0;
    qsizetype count = 0;
    for (qsizetype j = std::max<qsizetype>(0, from - half); j < std::min(n, from + half + 1); ++j) {
        sum += pressure[j];
        ++count;
    }
    for (qsizetype i = from; i < n; ++i) {
        if (count > 0 && sum / count <= level)
            return i;
        const qsizetype drop = i - half;
        const qsizetype add = i + half + 1;
        if (drop >= 0) {
            sum -= pressure[drop];
            --count;
        }
        if (add < n) {
            sum += pressure[add];
            ++count;
        }
    }
    return -1;
}
} // namespace

QList<double> EnvelopeOnsetDetector::runningMedian(const QList<double> &values, int width)
{
    QList<double> out;
    out.reserve(values.size());
    const qsizetype half = width / 2;
    std::vector<double> window;
    window.reserve(size_t(width));
    for (qsizetype i = 0; i < values.size(); ++i) {
        const qsizetype from = std::max<qsizetype>(0, i - half);
        const qsizetype to = std::min(values.size() - 1, i + half);
        window.assign(values.cbegin() + from, values.cbegin() + to + 1);
        // Only the middle is needed, not a sorted window.
        const auto middle = window.begin() + qsizetype(window.size()) / 2;
        std::nth_element(window.begin(), middle, window.end());
        if (window.size() % 2) {
            out << *middle;
        } else {
            const double below = *std::max_element(window.begin(), middle);
            out << 0.5 * (below + *middle);
        }
    }
    return out;
}

void EnvelopeOnsetDetector::dropMovement(QList<double> &times, QList<double> &amplitudes,
                                         QList<double> &cuff)
{
    // The typical amplitude around each beat; its upper values are the open artery's pulse.
    const QList<double> local = runningMedian(amplitudes, kLocalBeats);
    const double plateau = percentile(local, 0.9);
    const qsizetype n = amplitudes.size();
    QList<bool> moving(n, false);
    for (qsizetype k = 0; k < n; ++k) {
        if (amplitudes[k] > kMovementFactor * local[k] && amplitudes[k] > 0.5 * plateau) {
            // The edges of a burst are weaker but still not pulse: a beat on each side goes too.
            for (qsizetype j = std::max<qsizetype>(0, k - 1); j <= std::min(n - 1, k + 1); ++j)
                moving[j] = true;
        }
    }
    qsizetype kept = 0;
    for (qsizetype k = 0; k < n; ++k) {
        if (moving[k])
            continue;
        times[kept] = times[k];
        amplitudes[kept] = amplitudes[k];
        cuff[kept] = cuff[k];
        ++kept;
    }
    times.resize(kept);
    amplitudes.resize(kept);
    cuff.resize(kept);
}

EnvelopeOnsetDetector::Result EnvelopeOnsetDetector::detect(const QList<double> &pressure,
                                                            const QList<QPointF> &amplitudes,
                                                            double samplingRate)
{
    Result result;
    if (pressure.isEmpty() || samplingRate <= 0) {
        result.reason = text("No recording to search");
        return result;
    }
    const auto top = std::max_element(pressure.cbegin(), pressure.cend());
    const qsizetype topIndex = top - pressure.cbegin();
    if (*top < kLowestTop) {
        result.reason = text("The cuff was not inflated");
        return result;
    }
    const double topTime = double(topIndex) / samplingRate;

    // The beats of the deflation, with the cuff pressure at each.
    QList<double> times, raw, cuff;
    for (const QPointF &a : amplitudes) {
        const qsizetype i = qsizetype(a.x() * samplingRate);
        if (a.x() <= topTime || i < 0 || i >= pressure.size())
            continue;
        times << a.x();
        raw << a.y();
        cuff << pressure[i];
    }
    const QString noPulse = text("No pulse came back while the cuff was deflating");
    if (raw.size() < 2 * kSustainedBeats) {
        result.reason = noPulse;
        return result;
    }
    // Every beat of the deflation, before those of a moving animal are left out.
    const QList<double> everyBeat = times;
    dropMovement(times, raw, cuff);
    if (raw.size() < 2 * kSustainedBeats) {
        result.reason = noPulse;
        return result;
    }
    const QList<double> smooth = runningMedian(raw, 5);

    // Plateau: the open artery, which holds most of the beats from the diastolic pressure down,
    // so an upper quartile lands on it even when movement adds a few huge beats. Floor: what
    // the detector sees of a closed artery (noise), leaving out beats so large that only the
    // animal moving can have made them.
    const double upper = percentile(smooth, 0.75);
    // The level itself is the median of the beats near that quartile: breathing makes the
    // open-artery beats vary, and their upper quartile would put the knee too low.
    QList<double> open;
    for (double a : smooth) {
        if (a >= 0.8 * upper && a <= 1.5 * upper)
            open << a;
    }
    const double plateau = percentile(open, 0.5);
    QList<double> closed;
    for (qsizetype k = 0; k < raw.size() && times[k] <= topTime + kFloorSeconds; ++k) {
        if (raw[k] < 0.5 * plateau)
            closed << raw[k];
    }
    double floor = closed.isEmpty() ? 0.0 : percentile(closed, 0.5);
    if (plateau <= 0.0 || plateau - floor <= 0.0) {
        result.reason = noPulse;
        return result;
    }

    // Onset: the start of the run of beats above the low share that lasts to the end of the
    // recording. Once the artery is open it stays open as the cuff falls, so an earlier run that
    // breaks off again (the animal moving under a closed cuff) is not the pulse coming back.
    // Dips of up to kSustainedBeats - 1 beats inside the run are forgiven.
    // A stretch without any beat found, moving ones included, also ends the run: with the
    // artery open the peak finder finds beats all the time, so silence means it was still
    // closed, and a stray beat before the silence (the edge of a burst of movement) is not the
    // pulse coming back.
    const auto longestSilence = [&](double from, double to) {
        double longest = 0.0;
        for (auto at = std::lower_bound(everyBeat.cbegin(), everyBeat.cend(), from);
             at != everyBeat.cend() && at + 1 != everyBeat.cend() && *at < to; ++at)
            longest = std::max(longest, *(at + 1) - *at);
        return longest;
    };
    qsizetype runFrom = 0;
    const auto findOnset = [&](double low) {
        qsizetype onset = -1;
        int gap = 0;
        runFrom = 0;
        for (qsizetype k = smooth.size() - 1; k >= 0; --k) {
            if (onset >= 0 && longestSilence(times[k], times[k + 1]) > kLongestSilence) {
                runFrom = k + 1;
                break;
            }
            if (smooth[k] >= low) {
                onset = k;
                gap = 0;
            } else if (onset >= 0 && ++gap >= kSustainedBeats) {
                break;
            }
        }
        if (onset >= 0) {
            int run = 0;
            for (qsizetype k = onset; k < smooth.size() && run < kSustainedBeats; ++k)
                run = smooth[k] >= low ? run + 1 : 0;
            if (run < kSustainedBeats)
                onset = -1;
        }
        return onset;
    };
    qsizetype onset = findOnset(floor + kRiseLow * (plateau - floor));
    if (onset > 0) {
        // The first second holds few beats of the closed artery. With the onset known, the
        // first half of the time from the cuff's top to it is closed artery too, well above
        // SBP, and the median of its beats is a steadier floor.
        QList<double> before;
        const double closedUntil = 0.5 * (topTime + times[onset]);
        for (qsizetype k = 0; k < onset && times[k] <= closedUntil; ++k) {
            if (raw[k] < 0.5 * plateau)
                before << raw[k];
        }
        if (before.size() >= kSustainedBeats) {
            floor = percentile(before, 0.5);
            onset = findOnset(floor + kRiseLow * (plateau - floor));
        }
    }
    const double span = plateau - floor;
    const double low = floor + kRiseLow * span;
    const double high = floor + kRiseHigh * span;
    if (onset < 0) {
        result.reason = noPulse;
        return result;
    }

    // The line through the rising part: the beats from just before the onset until the
    // amplitude stays above the high share, those between the two shares.
    QList<qsizetype> rise;
    qsizetype k = std::max<qsizetype>(runFrom, onset - 2);
    for (; k < smooth.size(); ++k) {
        // The rise ends where the amplitude stays above the high share; a single burst above
        // it (movement) is stepped over.
        if (k > onset && smooth[k] >= high && k + 2 < smooth.size() && smooth[k + 1] >= high &&
            smooth[k + 2] >= high)
            break;
        if (smooth[k] < low || smooth[k] > high)
            continue;
        rise << k;
    }
    // With enough rising beats the least squares average breathing out of the beats as they
    // are; with few (a fast deflation, a small pulse) the smoothed ones give the steadier line.
    const QList<double> &y = rise.size() >= kRawLineBeats ? raw : smooth;
    double sx = 0, sy = 0, sxx = 0, sxy = 0;
    const int n = int(rise.size());
    for (qsizetype r : std::as_const(rise)) {
        sx += cuff[r];
        sy += y[r];
        sxx += cuff[r] * cuff[r];
        sxy += cuff[r] * y[r];
    }
    const qsizetype riseEnd = std::min(k, smooth.size() - 1);
    double systolic = cuff[onset];
    double diastolic = cuff[riseEnd];
    const double denominator = n * sxx - sx * sx;
    if (n >= 3 && denominator > 0) {
        const double slope = (n * sxy - sx * sy) / denominator;
        const double intercept = (sy - slope * sx) / n;
        // The amplitude grows as the cuff falls: a line that does not is no rise.
        if (slope < 0) {
            const double atFloor = (floor - intercept) / slope;
            const double atPlateau = (plateau - intercept) / slope;
            // A line that leaves the floor above the cuff's top or reaches the plateau below
            // zero is bent by something other than the pulse; the beats themselves are then
            // the better answer.
            if (atFloor <= *top && atFloor >= cuff[onset] && atPlateau >= 0 &&
                atPlateau <= cuff[onset]) {
                systolic = atFloor;
                diastolic = atPlateau;
            }
        }
    } else {
        qDebug() << "ENVELOPE: too few rising beats for a line, using the beats themselves";
    }

    // The knee is found again from the whole envelope: the rise and the plateau fitted together
    // weigh every beat, where the line above sees only the rising ones and the plateau level.
    const EnvelopeHingeFit::Result hinge = EnvelopeHingeFit::fit(cuff, smooth, *top);
    if (hinge.found && hinge.diastolic < systolic)
        diastolic = hinge.diastolic;
    // A noisy sensor shows the closed artery as noise peaks a quarter of the pulse or more. The
    // first returning beats then hardly stand out of it, the rising beats the line is drawn
    // through are mostly noise, and the line comes out far too flat. The fit of the whole
    // envelope holds then, once the noise is taken out of every beat: noise and pulse add
    // roughly as powers, so the pulse alone is what is left after the floor's power.
    if (hinge.found && floor >= kNoisyFloor * plateau) {
        QList<double> pulseOnly;
        pulseOnly.reserve(smooth.size());
        for (double a : smooth)
            pulseOnly << std::sqrt(std::max(0.0, a * a - hinge.floor * hinge.floor));
        const EnvelopeHingeFit::Result pulse = EnvelopeHingeFit::fit(cuff, pulseOnly, *top);
        const double corner = pulse.found ? pulse.systolic : hinge.systolic;
        if (corner > diastolic)
            systolic = corner;
    } else if (hinge.found && diastolic > 0 && systolic > diastolic) {
        // The straight line assumes the pulse grows evenly from SBP to DBP. If it grows slowly
        // at first, the line meets the floor too low; the fitted shape of the rise then finds
        // the corner higher. Beats too faint for the peak finder are missing just below SBP, so
        // every fit anchored on the visible beats can only fall short of SBP, never pass it:
        // the higher of the two is the nearer.
        const double curved =
            RiseOnsetFit::systolic(cuff, raw, hinge.floor, hinge.plateau, diastolic,
                                   systolic - 5.0, std::min(*top, systolic + 40.0));
        systolic = std::max(systolic, curved);
    }

    const qsizetype sbpIndex = firstCrossing(pressure, topIndex, systolic);
    if (sbpIndex < 0) {
        result.reason = noPulse;
        return result;
    }
    const qsizetype dbpIndex = firstCrossing(pressure, sbpIndex, diastolic);
    result.systolic = systolic;
    result.surelyOpenBelow = hinge.found ? std::min(systolic, hinge.systolic) : systolic;
    result.systolicTime = double(sbpIndex) / samplingRate;
    if (dbpIndex >= 0) {
        result.diastolic = diastolic;
        result.diastolicTime = double(dbpIndex) / samplingRate;
    }
    return result;
}
