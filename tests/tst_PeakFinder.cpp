#include "analysis/PeakFinder.h"
#include "support/PulseTrain.h"

#include <QtTest>

#include <cmath>

Q_DECLARE_METATYPE(PulseTrain::Options)

namespace {

// A zero line with a triangular pulse of the given height at each index. Each peak is exact, and
// the valley after a pulse is the first sample where its foot reaches zero (peak + halfWidth).
QList<double> triangles(int length, const QList<int> &at, int halfWidth, double height = 1.0)
{
    QList<double> x(length, 0.0);
    for (int p : at)
        for (int d = -halfWidth + 1; d < halfWidth; ++d)
            x[p + d] = height * (1.0 - double(std::abs(d)) / halfWidth);
    return x;
}

struct Run {
    QList<int> signedIndices;
    QList<int> peaks;
    QList<int> valleys;
};

Run findAll(PeakFinder &finder, const QList<double> &x, int first = 0, int last = -1)
{
    Run run;
    finder.findPeaks(x, first, last, run.signedIndices, run.peaks, run.valleys);
    return run;
}

} // namespace

class tst_PeakFinder : public QObject
{
    Q_OBJECT
private slots:
    void findsBeatsAndRateOfPulseTrains_data();
    void findsBeatsAndRateOfPulseTrains();
    void judgesOnlySamplesWithFullHalfWindow_data();
    void judgesOnlySamplesWithFullHalfWindow();
    void slopeSumsDecideWhichPeaksAreCandidates_data();
    void slopeSumsDecideWhichPeaksAreCandidates();
    void reportsValleysIntervalsAndAmplitudesOfEachBeat();
    void beatWithoutValleyStaysButGivesNoInterval();
    void removesIsolatedPeaks_data();
    void removesIsolatedPeaks();
    void heartRateUsesTwoBands_data();
    void heartRateUsesTwoBands();
    void nextRunReplacesStaleIntervals();
    void badInputGivesNoBeats_data();
    void badInputGivesNoBeats();
};

void tst_PeakFinder::findsBeatsAndRateOfPulseTrains_data()
{
    QTest::addColumn<PulseTrain::Options>("options");
    const auto row = [](const char *name, double bpm, double seconds, double noise,
                        double wander = 0.0, const QList<int> &missing = {}) {
        PulseTrain::Options o;
        o.beatsPerMinute = bpm;
        o.seconds = seconds;
        o.noise = noise;
        o.wanderAmplitude = wander;
        o.missingBeats = missing;
        o.seed = unsigned(bpm);
        QTest::newRow(name) << o;
    };
    row("300/min clean", 300, 10, 0);
    row("700/min noisy", 700, 10, 0.02);
    row("380/min wander", 380, 20, 0.01, 0.5);
    row("400/min missed beats", 400, 15, 0.002, 0, {5, 12, 40, 41, 70});
    // The live view runs on the last 3 s only.
    row("3 s at 700/min", 700, 3, 0.01, 0.2, {3});
    PulseTrain::Options small;
    small.beatsPerMinute = 500;
    small.amplitude = 0.05;
    small.noise = 0.001;
    small.seed = 500;
    QTest::newRow("small wave 500/min") << small;
    PulseTrain::Options high;
    high.beatsPerMinute = 600;
    high.amplitude = 0.4;
    high.offset = 2.5;
    high.noise = 0.005;
    high.seed = 600;
    QTest::newRow("high baseline 600/min") << high;
}

// Every true beat clear of the series ends is found within a few samples, nothing else is found,
// and the heart rate is within 1 % of the true rate. Missed beats leave double intervals that the
// rate must ignore.
void tst_PeakFinder::findsBeatsAndRateOfPulseTrains()
{
    QFETCH(PulseTrain::Options, options);
    const double bpm = options.beatsPerMinute, amplitude = options.amplitude;
    const double noise = options.noise;
    const PulseTrain::Train train = PulseTrain::make(options);
    const int n = int(train.samples.size());

    PeakFinder finder(1000.0, 0.01, 0.05);
    const Run run = findAll(finder, train.samples);

    const int tolerance = 8; // samples
    const int h = 50;
    QList<int> expected;
    for (int p : train.peaks)
        if (p > h + tolerance && p < n - h - tolerance)
            expected.append(p);
    QList<int> found;
    for (int p : run.peaks)
        if (p > h + tolerance && p < n - h - tolerance)
            found.append(p);
    QCOMPARE(found.size(), expected.size());
    for (qsizetype k = 0; k < found.size(); ++k)
        QVERIFY2(std::abs(found[k] - expected[k]) <= tolerance, qPrintable(QString::number(k)));

    QVERIFY(std::abs(finder.heartRate() - bpm) <= 0.01 * bpm);

    // Every beat after the first has a valley, normally at the foot of its upstroke, so one
    // interval and one amplitude of about the wave's height per beat.
    QCOMPARE(run.valleys.size(), run.peaks.size() - 1);
    const QList<QPointF> amplitudes = finder.amplitudeSeries();
    QCOMPARE(amplitudes.size(), run.valleys.size());
    const double period = 60.0 / bpm * 1000.0;
    for (qsizetype k = 0; k < amplitudes.size(); ++k) {
        QCOMPARE(amplitudes[k].x(), run.peaks[k + 1] / 1000.0);
        QVERIFY2(std::abs(amplitudes[k].y() - amplitude) < 0.1 * amplitude + 4 * noise,
                 qPrintable(QString::number(amplitudes[k].y())));
        // After a missed beat the lowest point may lie anywhere on the flat stretch.
        if (run.peaks[k + 1] - run.peaks[k] > 1.5 * period)
            continue;
        const int upstroke = run.peaks[k + 1] - run.valleys[k];
        QVERIFY2(upstroke > 0 && upstroke < 0.5 * period, qPrintable(QString::number(upstroke)));
    }
}

void tst_PeakFinder::judgesOnlySamplesWithFullHalfWindow_data()
{
    QTest::addColumn<double>("halfWindow");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("peak");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<bool>("found");

    // 0.05 s at 1000 Hz is 50 samples: judged are 50 < i < length - 50.
    QTest::newRow("at h") << 0.05 << 400 << 50 << 0 << -1 << false;
    QTest::newRow("at h + 1") << 0.05 << 400 << 51 << 0 << -1 << true;
    QTest::newRow("at n - h") << 0.05 << 400 << 350 << 0 << -1 << false;
    // 0.0379 s at 1000 Hz is 37.9 samples, truncated to 37.
    QTest::newRow("window truncated") << 0.0379 << 400 << 38 << 0 << -1 << true;
    QTest::newRow("first sample is judged") << 0.05 << 400 << 120 << 120 << -1 << true;
    QTest::newRow("before first sample") << 0.05 << 400 << 120 << 121 << -1 << false;
    QTest::newRow("last sample not judged") << 0.05 << 400 << 120 << 0 << 120 << false;
    QTest::newRow("last beyond the end") << 0.05 << 400 << 349 << 0 << 5000 << true;
    QTest::newRow("negative first") << 0.05 << 400 << 51 << -20 << -1 << true;
}

void tst_PeakFinder::judgesOnlySamplesWithFullHalfWindow()
{
    QFETCH(double, halfWindow);
    QFETCH(int, length);
    QFETCH(int, peak);
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(bool, found);

    // A narrow spike whose slope sums are complete within a few samples, wherever it sits.
    QList<double> x(length, 0.0);
    x[peak] = 1.0;
    PeakFinder finder(1000.0, 0.01, halfWindow);
    const Run run = findAll(finder, x, first, last);
    QCOMPARE(run.peaks, found ? QList<int>{peak} : QList<int>{});
}

void tst_PeakFinder::slopeSumsDecideWhichPeaksAreCandidates_data()
{
    QTest::addColumn<double>("threshold");
    QTest::addColumn<QList<double>>("series");
    QTest::addColumn<QList<int>>("peaks");

    // At 96 Hz and 1/32 s the half-window is exactly 3 samples: indices 4 .. n-4 are judged.
    QTest::newRow("plain peak") << 0.5 << QList<double>{0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0}
                                << QList<int>{5};
    QTest::newRow("flat top counts at its first sample")
        << 0.5 << QList<double>{0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0} << QList<int>{5};
    QTest::newRow("sums equal to the threshold")
        << 0.5 << QList<double>{0, 0, 0.5, 0.5, 0.5, 1, 0.75, 0.5, 0.5, 0, 0} << QList<int>{5};
    QTest::newRow("fall short of the threshold")
        << 0.5 << QList<double>{0, 0, 0, 0, 0, 1, 0.75, 0.75, 0.625, 0, 0} << QList<int>{};
    QTest::newRow("rise short of the threshold")
        << 0.5 << QList<double>{0, 0, 0.625, 0.75, 0.75, 1, 0, 0, 0, 0, 0} << QList<int>{};
    // The fall sum ends as soon as a later sample within reach tops the peak, even though the
    // line is far lower again by the end of the half-window.
    QTest::newRow("higher sample within reach after")
        << 0.5 << QList<double>{0, 0, 0, 0, 0, 1, 0.5, 1.5, 0, 0, 0, 0, 0, 0} << QList<int>{7};
    QTest::newRow("negative threshold keeps stopped sums")
        << -1.0 << QList<double>{0, 0, 0, 0, 0, 1, 0.5, 1.5, 0, 0, 0, 0, 0, 0} << QList<int>{5, 7};
    QTest::newRow("higher sample within reach before")
        << 0.5 << QList<double>{0, 0, 0, 0, 0, 0, 1.5, 0.5, 1, 0, 0, 0, 0} << QList<int>{6};
    QTest::newRow("higher sample just out of reach")
        << 0.5 << QList<double>{0, 0, 0, 0, 0, 1, 0.5, 0.25, 0, 2, 0, 0, 0, 0} << QList<int>{5, 9};
    QTest::newRow("falling shoulder is no peak")
        << 0.1 << QList<double>{0, 0, 1, 2, 3, 2.8, 2.9, 2.0, 1.0, 0, 0} << QList<int>{4};
}

void tst_PeakFinder::slopeSumsDecideWhichPeaksAreCandidates()
{
    QFETCH(double, threshold);
    QFETCH(QList<double>, series);
    QFETCH(QList<int>, peaks);

    PeakFinder finder(96.0, threshold, 1.0 / 32.0);
    QCOMPARE(finder.halfWindowSamples(), 3);
    QCOMPARE(findAll(finder, series).peaks, peaks);
}

void tst_PeakFinder::reportsValleysIntervalsAndAmplitudesOfEachBeat()
{
    // Four beats at 1000 Hz. Between the second and third the line dips twice to the same
    // lowest value: the first of them is the valley.
    QList<double> x = triangles(1000, {100, 260, 430, 700}, 30, 2.0);
    x[300] = -0.5;
    x[360] = -0.5;
    x[480] = -0.25;
    x[481] = -0.25;

    PeakFinder finder(1000.0, 0.01, 0.05);
    // Whatever the caller had in the lists: peaks and valleys are replaced, the signed list grows.
    QList<int> signedIndices{7};
    QList<int> peaks{1, 2, 3};
    QList<int> valleys{4};
    finder.findPeaks(x, 0, -1, signedIndices, peaks, valleys);

    QCOMPARE(peaks, (QList<int>{100, 260, 430, 700}));
    QCOMPARE(valleys, (QList<int>{130, 300, 480}));
    QCOMPARE(signedIndices, (QList<int>{7, -130, 260, -300, 430, -480, 700}));
    QCOMPARE(finder.intervalSeries(), (QList<QPointF>{{0.26, 0.16}, {0.43, 0.17}, {0.7, 0.27}}));
    QCOMPARE(finder.amplitudeSeries(), (QList<QPointF>{{0.26, 2.0}, {0.43, 2.5}, {0.7, 2.25}}));
}

void tst_PeakFinder::beatWithoutValleyStaysButGivesNoInterval()
{
    // With a zero threshold a peak may sit on a plateau that never drops below it before the
    // next peak rises from that plateau: the second beat has no valley.
    QList<double> x(400, 0.0);
    for (int i = 100; i < 250; ++i)
        x[i] = 1.0;
    x[99] = 0.5;
    for (int i = 250; i < 260; ++i)
        x[i] = 1.0 + 0.1 * (i - 249);
    // x[259] = 2.0 is the second peak; afterwards a third beat with a clear valley.
    for (int i = 260; i < 300; ++i)
        x[i] = 0.0;
    x[320] = 1.5;

    PeakFinder finder(1000.0, 0.0, 0.05);
    const Run run = findAll(finder, x);
    QCOMPARE(run.peaks, (QList<int>{100, 259, 320}));
    QCOMPARE(run.valleys, (QList<int>{260}));
    QCOMPARE(run.signedIndices, (QList<int>{-260, 320}));
    QCOMPARE(finder.intervalSeries(), (QList<QPointF>{{0.32, 0.061}}));
    QCOMPARE(finder.amplitudeSeries(), (QList<QPointF>{{0.32, 1.5}}));
}

void tst_PeakFinder::removesIsolatedPeaks_data()
{
    QTest::addColumn<int>("minimumRate");
    QTest::addColumn<int>("maximumRate");
    QTest::addColumn<QList<int>>("candidates");
    QTest::addColumn<QList<int>>("kept");

    // At 1000 Hz and 180 per minute the longest admitted interval is 333.3 samples.
    QTest::newRow("nothing to judge") << 180 << 900 << QList<int>{5000} << QList<int>{5000};
    QTest::newRow("regular train")
        << 180 << 900 << QList<int>{0, 300, 600, 933} << QList<int>{0, 300, 600, 933};
    QTest::newRow("lone beat in a gap")
        << 180 << 900 << QList<int>{0, 100, 500, 900, 1000} << QList<int>{0, 100, 900, 1000};
    QTest::newRow("two lone beats in a row")
        << 180 << 900 << QList<int>{0, 100, 500, 900, 1300, 1400} << QList<int>{0, 100, 1300, 1400};
    QTest::newRow("isolated first and last")
        << 180 << 900 << QList<int>{0, 400, 500, 1000} << QList<int>{400, 500};
    QTest::newRow("one interval just long enough")
        << 180 << 900 << QList<int>{0, 333, 1000} << QList<int>{0, 333};
    QTest::newRow("interval exactly at the limit is kept")
        << 200 << 900 << QList<int>{0, 300, 600, 901} << QList<int>{0, 300, 600};
    QTest::newRow("all far apart leaves the last one")
        << 180 << 900 << QList<int>{0, 1000, 2000} << QList<int>{2000};
    // The maximum rate plays no part: very close peaks stay, whatever it is.
    QTest::newRow("close peaks with low maximum")
        << 180 << 200 << QList<int>{0, 10, 20, 30} << QList<int>{0, 10, 20, 30};
}

void tst_PeakFinder::removesIsolatedPeaks()
{
    QFETCH(int, minimumRate);
    QFETCH(int, maximumRate);
    QFETCH(QList<int>, candidates);
    QFETCH(QList<int>, kept);

    PeakFinder finder(1000.0, 0.01, 0.05);
    finder.thinIsolatedPeaks(candidates, minimumRate, maximumRate);
    QCOMPARE(candidates, kept);
}

void tst_PeakFinder::heartRateUsesTwoBands_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<QList<int>>("intervals"); // samples between successive peaks
    QTest::addColumn<double>("bpm");

    // 60 samples at 180 Hz is exactly 1/3 s, at 900 Hz exactly 1/15 s.
    QTest::newRow("minimum rate included") << 180.0 << QList<int>{60, 60, 60} << 180.0;
    QTest::newRow("maximum rate included") << 900.0 << QList<int>{60, 60, 60} << 900.0;
    QTest::newRow("nothing within the limits") << 1000.0 << QList<int>{60, 60, 60} << 0.0;
    QTest::newRow("missed beat dropped") << 1000.0 << QList<int>{150, 150, 300, 150} << 400.0;
    // Means 0.1 and 0.1016 s: 0.14 s is 1.40 times the first, 0.068 s is 0.669 times the second.
    QTest::newRow("long interval within 1.44 mean")
        << 1000.0 << QList<int>{90, 90, 90, 90, 140} << 600.0;
    QTest::newRow("short interval below 0.69 mean")
        << 1000.0 << QList<int>{110, 110, 110, 110, 68} << 60.0 / 0.11;
    // The second pass looks at every interval again, including those the rate limits left out.
    QTest::newRow("second pass admits a longer one")
        << 1000.0 << QList<int>{300, 340, 300} << 60.0 / (0.94 / 3.0);
    QTest::newRow("second pass admits a shorter one")
        << 1000.0 << QList<int>{70, 70, 65} << 60.0 / (0.205 / 3.0);
    // Mean 0.2 s; 0.1 and 0.3 s both lie outside 0.138 .. 0.288 s.
    QTest::newRow("nothing regular") << 1000.0 << QList<int>{100, 300} << qQNaN();
}

void tst_PeakFinder::heartRateUsesTwoBands()
{
    QFETCH(double, rate);
    QFETCH(QList<int>, intervals);
    QFETCH(double, bpm);

    QList<int> at{100};
    for (int interval : intervals)
        at.append(at.last() + interval);
    const QList<double> x = triangles(at.last() + 100, at, 10);

    PeakFinder finder(rate, 0.01, 0.05);
    const Run run = findAll(finder, x);
    QCOMPARE(run.peaks, at);
    QCOMPARE(finder.intervalSeries().size(), intervals.size());

    const double measured = finder.heartRate();
    if (std::isnan(bpm))
        QVERIFY(std::isnan(measured));
    else
        QVERIFY2(std::abs(measured - bpm) < 1e-9 * std::max(1.0, bpm),
                 qPrintable(QString::number(measured, 'g', 17)));
}

void tst_PeakFinder::nextRunReplacesStaleIntervals()
{
    PeakFinder finder(1000.0, 0.01, 0.05);
    QCOMPARE(finder.heartRate(), 0.0);

    PulseTrain::Options options;
    options.seconds = 5.0;
    findAll(finder, PulseTrain::make(options).samples);
    QVERIFY(finder.heartRate() > 0.0);

    const Run run = findAll(finder, QList<double>(3000, 0.7));
    QVERIFY(run.peaks.isEmpty() && finder.intervalSeries().isEmpty());
    QVERIFY(finder.amplitudeSeries().isEmpty());
    QCOMPARE(finder.heartRate(), 0.0);
}

void tst_PeakFinder::badInputGivesNoBeats_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<QList<double>>("series");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");

    const QList<double> train = PulseTrain::make(PulseTrain::Options()).samples;
    QList<double> undefined = train;
    for (qsizetype i = 0; i < undefined.size(); i += 2)
        undefined[i] = qQNaN();

    QTest::newRow("empty") << 1000.0 << QList<double>{} << 0 << -1;
    QTest::newRow("shorter than two half-windows") << 1000.0 << train.mid(0, 101) << 0 << -1;
    QTest::newRow("first after last") << 1000.0 << train << 5000 << 4000;
    QTest::newRow("zero rate") << 0.0 << train << 0 << -1;
    QTest::newRow("first beyond the end") << 1000.0 << train << 20000 << -1;
    QTest::newRow("negative rate") << -1000.0 << train << 0 << -1;
    QTest::newRow("undefined rate") << qQNaN() << train << 0 << -1;
    QTest::newRow("endless rate") << qInf() << train << 0 << -1;
    QTest::newRow("undefined samples") << 1000.0 << undefined << 0 << -1;
}

void tst_PeakFinder::badInputGivesNoBeats()
{
    QFETCH(double, rate);
    QFETCH(QList<double>, series);
    QFETCH(int, first);
    QFETCH(int, last);

    PeakFinder finder(rate, 0.01, 0.05);
    const Run run = findAll(finder, series, first, last);
    QVERIFY(run.peaks.isEmpty() && run.valleys.isEmpty() && run.signedIndices.isEmpty());
    QCOMPARE(finder.heartRate(), 0.0);
}

QTEST_APPLESS_MAIN(tst_PeakFinder)
#include "tst_PeakFinder.moc"
