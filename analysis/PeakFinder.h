#pragma once

#include <QList>
#include <QObject>
#include <QPointF>

// Finds the heart beats in a pulse (PPG) series: the systolic peak of every pulse wave, the lowest
// point before it, the beat-to-beat (RR) interval and the pulse amplitude, and from the intervals
// the mean heart rate. The rate limits are set for rodents, 180 to 900 beats per minute.
//
// The finder keeps the interval and amplitude series of its last run; the record reads them right
// after each run. Series points are (beat time in s, value); the beat time is the peak's sample
// index divided by the sampling rate.
class PeakFinder : public QObject
{
    Q_OBJECT
public:
    // The range of rates a rodent's heart beats at, in beats per minute.
    static constexpr int kMinBPM = 180;
    static constexpr int kMaxBPM = 900;

    PeakFinder(double samplingRate, double slopeThreshold, double halfWindow,
               QObject *parent = nullptr);

    double samplingRate() const { return m_samplingRate; }
    double slopeThreshold() const { return m_slopeThreshold; }
    double halfWindow() const { return m_halfWindow; }
    int minimumRate() const { return m_minimumRate; }
    int maximumRate() const { return m_maximumRate; }
    // How far the slope sums reach on each side of a peak, in whole samples (truncated).
    int halfWindowSamples() const;

    // Detects the beats between sample `first` and the end bound, which is `last` itself (not
    // included) or the end of the series when `last` is negative. Samples within the half-window
    // of either end of the series are never judged.
    //
    // peaks: cleared, then every accepted peak. valleys: cleared, then the valley of every beat
    // that has one. signedIndices: appended to (not cleared), -valley then peak for every beat
    // that has a valley; callers that want only this run's beats pass an empty list.
    // The three output lists must be distinct objects.
    void findPeaks(const QList<double> &series, int first, int last, QList<int> &signedIndices,
                   QList<int> &peaks, QList<int> &valleys);
    // The same over a plain block of samples, so a slice of a longer series (the last seconds of
    // a live recording) can be searched without copying it. Indices are relative to `series`.
    void findPeaks(const double *series, qsizetype length, int first, int last,
                   QList<int> &signedIndices, QList<int> &peaks, QList<int> &valleys);

    // Removes candidates that lie further than 60 / minimumRate seconds from both neighbours; after
    // a removal the previous candidate is judged again against its new neighbour. maximumRate is
    // accepted but not used: peaks that come too close are left for the heart-rate bands.
    void thinIsolatedPeaks(QList<int> &candidates, int minimumRate, int maximumRate) const;

    // Mean heart rate in beats per minute over the interval series of the last run: 0 when no
    // interval lies within the rate limits, NaN when all of those that do are irregular.
    double heartRate() const;

    // Beats whose interval to the previous beat lies within the rate limits and within 0.66 to
    // 1.33 times the mean of those intervals. The first kept beat is never judged against the
    // mean: the walk goes from the last kept beat down to the second, on purpose.
    QList<int> selectRegularBeats(const QList<int> &beats) const;
    // Index into `regular` of the first beat of a dense run (more than 9 beats in the following
    // 3000 samples) with the fewest beats in the 3000 samples before it; a later beat wins a tie.
    // 0 when no beat past sample 3000 qualifies.
    static int chooseSystolicBeat(const QList<int> &regular);
    // The time, after the systolic time and 15 to 50 mmHg below its pressure, where the growth
    // of the pulse amplitude bends most sharply into its plateau; 0 when no point qualifies.
    // Works on the amplitude series of the last run and fills the slope differences.
    double findDiastolicTime(double systolicTime, const QList<double> &pressure);
    // The same search over any amplitude series; slopeDifferences (when given) is cleared and
    // receives one value per candidate point.
    static double findDiastolicTime(double systolicTime, const QList<double> &pressure,
                                    const QList<QPointF> &amplitudes, double samplingRate,
                                    QList<double> *slopeDifferences);

    // The value of `series` at time t (seconds, truncated to a sample index); 0 outside it.
    static double valueAtTime(const QList<double> &series, double t, double samplingRate);

    QList<QPointF> intervalSeries() const { return m_intervals; }
    QList<QPointF> amplitudeSeries() const { return m_amplitudes; }
    QList<double> slopeDifferences() const { return m_slopeDifferences; }

private:
    // Whether the peak at i has a fall after and a rise before of at least the slope threshold.
    bool passesSlopeSums(const double *x, qsizetype i, qsizetype h) const;

    double m_samplingRate;
    double m_slopeThreshold;
    double m_halfWindow;
    int m_minimumRate;
    int m_maximumRate;
    QList<QPointF> m_intervals;  // (beat time, RR in s), one per beat that has a valley
    QList<QPointF> m_amplitudes; // (beat time, peak minus valley), one per beat that has a valley
    QList<double> m_slopeDifferences; // one per candidate point of the diastolic search
};
