#include "analysis/PeakFinder.h"
#include "support/PulseTrain.h"

#include <QtTest>

Q_DECLARE_METATYPE(PulseTrain::Options)

namespace {

// Triangular pulses on a zero line; the valley after one is where its foot reaches zero.
QList<double> triangles(int length, const QList<int> &at, int halfWidth, double height = 1.0)
{
    QList<double> x(length, 0.0);
    for (int p : at)
        for (int d = -halfWidth + 1; d < halfWidth; ++d)
            x[p + d] = height * (1.0 - double(std::abs(d)) / halfWidth);
    return x;
}

struct Run {
    QList<int> signedIndices, peaks, valleys;
};

Run findAll(PeakFinder &finder, const QList<double> &x, int first = 0, int last = -1)
{
    Run run;
    finder.findPeaks(x, first, last, run.signedIndices, run.peaks, run.valleys);
    return run;
}

QList<int> range(int from, int step, int count)
{
    QList<int> out;
    for (int i = 0; i < count; ++i)
        out << from + i * step;
    return out;
}
} // namespace

class tst_PeakFinder : public QObject
{
    Q_OBJECT
private slots:
    void findsBeatsAndRateOfPulseTrains_data()
    {
        QTest::addColumn<PulseTrain::Options>("options");
        const auto row = [](const char *name, double bpm, double seconds, double noise,
                            double wander, const QList<int> &missing, double amplitude = 1.0,
                            double offset = 0.0) {
            QTest::newRow(name) << PulseTrain::Options{1000.0,  bpm,          seconds, amplitude,
                                                       offset,  noise,        wander,  0.2,
                                                       missing, unsigned(bpm)};
        };
        row("700/min noisy", 700, 10, 0.02, 0, {});
        row("400/min missed beats", 400, 15, 0.002, 0, {5, 12, 40, 41, 70});
        // The live view runs on the last 3 s only.
        row("3 s at 700/min with wander", 700, 3, 0.01, 0.2, {3});
        row("small wave 500/min", 500, 10, 0.001, 0, {}, 0.05);
        row("high baseline 600/min", 600, 10, 0.005, 0, {}, 0.4, 2.5);
    }
    // Every true beat clear of the series ends is found within a few samples, nothing else is
    // found, and the heart rate is within 1 % of the true rate. Missed beats leave double intervals
    // that the rate must ignore.
    void findsBeatsAndRateOfPulseTrains()
    {
        QFETCH(PulseTrain::Options, options);
        const double bpm = options.beatsPerMinute, amplitude = options.amplitude;
        const PulseTrain::Train train = PulseTrain::make(options);
        const int n = int(train.samples.size());

        PeakFinder finder(1000.0, 0.01, 0.05);
        const Run run = findAll(finder, train.samples);

        const int tolerance = 8, h = 50; // samples
        const auto clear = [&](const QList<int> &peaks) {
            QList<int> inside;
            for (int p : peaks)
                if (p > h + tolerance && p < n - h - tolerance)
                    inside.append(p);
            return inside;
        };
        const QList<int> expected = clear(train.peaks), found = clear(run.peaks);
        QCOMPARE(found.size(), expected.size());
        for (qsizetype k = 0; k < found.size(); ++k)
            QVERIFY2(std::abs(found[k] - expected[k]) <= tolerance, qPrintable(QString::number(k)));
        QVERIFY(std::abs(finder.heartRate() - bpm) <= 0.01 * bpm);

        // Every beat after the first has a valley, so one amplitude of about the wave's height
        // each.
        QCOMPARE(run.valleys.size(), run.peaks.size() - 1);
        const QList<QPointF> amplitudes = finder.amplitudeSeries();
        QCOMPARE(amplitudes.size(), run.valleys.size());
        for (qsizetype k = 0; k < amplitudes.size(); ++k) {
            QCOMPARE(amplitudes[k].x(), run.peaks[k + 1] / 1000.0);
            QVERIFY2(std::abs(amplitudes[k].y() - amplitude) < 0.1 * amplitude + 4 * options.noise,
                     qPrintable(QString::number(amplitudes[k].y())));
        }
    }
    void slopeSumsDecideWhichPeaksAreCandidates_data()
    {
        QTest::addColumn<double>("threshold");
        QTest::addColumn<QList<double>>("series");
        QTest::addColumn<QList<int>>("peaks");

        // At 96 Hz and 1/32 s the half-window is exactly 3 samples: indices 4 .. n-4 are judged.
        QTest::newRow("sums equal to the threshold")
            << 0.5 << QList<double>{0, 0, 0.5, 0.5, 0.5, 1, 0.75, 0.5, 0.5, 0, 0} << QList<int>{5};
        QTest::newRow("fall short of the threshold")
            << 0.5 << QList<double>{0, 0, 0, 0, 0, 1, 0.75, 0.75, 0.625, 0, 0} << QList<int>{};
        // The fall sum ends where a later sample within reach tops the peak, however low it ends.
        QTest::newRow("higher sample within reach after")
            << 0.5 << QList<double>{0, 0, 0, 0, 0, 1, 0.5, 1.5, 0, 0, 0, 0, 0, 0} << QList<int>{7};
        QTest::newRow("falling shoulder is no peak")
            << 0.1 << QList<double>{0, 0, 1, 2, 3, 2.8, 2.9, 2.0, 1.0, 0, 0} << QList<int>{4};
    }
    void slopeSumsDecideWhichPeaksAreCandidates()
    {
        QFETCH(double, threshold);
        QFETCH(QList<double>, series);
        QFETCH(QList<int>, peaks);

        PeakFinder finder(96.0, threshold, 1.0 / 32.0);
        QCOMPARE(findAll(finder, series).peaks, peaks);
    }
    void reportsValleysIntervalsAndAmplitudesOfEachBeat()
    {
        // Four beats at 1000 Hz. Between the second and third the line dips twice to the same
        // lowest value: the first of them is the valley.
        QList<double> x = triangles(1000, {100, 260, 430, 700}, 30, 2.0);
        x[300] = x[360] = -0.5;
        x[480] = x[481] = -0.25;
        PeakFinder finder(1000.0, 0.01, 0.05);
        const Run run = findAll(finder, x);
        QCOMPARE(run.peaks, (QList<int>{100, 260, 430, 700}));
        QCOMPARE(run.valleys, (QList<int>{130, 300, 480}));
        QCOMPARE(run.signedIndices, (QList<int>{-130, 260, -300, 430, -480, 700}));
        QCOMPARE(finder.intervalSeries(),
                 (QList<QPointF>{{0.26, 0.16}, {0.43, 0.17}, {0.7, 0.27}}));
        QCOMPARE(finder.amplitudeSeries(), (QList<QPointF>{{0.26, 2.0}, {0.43, 2.5}, {0.7, 2.25}}));
    }
    void heartRateUsesTwoBands_data()
    {
        QTest::addColumn<double>("rate");
        QTest::addColumn<QList<int>>("intervals"); // samples between successive peaks
        QTest::addColumn<double>("bpm");

        // 60 samples at 180 Hz is exactly 1/3 s.
        QTest::newRow("minimum rate included") << 180.0 << QList<int>{60, 60, 60} << 180.0;
        QTest::newRow("missed beat dropped") << 1000.0 << QList<int>{150, 150, 300, 150} << 400.0;
        // Mean 0.1016 s: 0.068 s is 0.669 times it.
        QTest::newRow("short interval below 0.69 mean")
            << 1000.0 << QList<int>{110, 110, 110, 110, 68} << 60.0 / 0.11;
        // Mean 0.2 s; 0.1 and 0.3 s both lie outside 0.138 .. 0.288 s.
        QTest::newRow("nothing regular") << 1000.0 << QList<int>{100, 300} << qQNaN();
    }
    void heartRateUsesTwoBands()
    {
        QFETCH(double, rate);
        QFETCH(QList<int>, intervals);
        QFETCH(double, bpm);

        QList<int> at{100};
        for (int interval : intervals)
            at.append(at.last() + interval);
        PeakFinder finder(rate, 0.01, 0.05);
        QCOMPARE(findAll(finder, triangles(at.last() + 100, at, 10)).peaks, at);
        const double measured = finder.heartRate();
        QVERIFY2(std::isnan(bpm) ? std::isnan(measured) : std::abs(measured - bpm) < 1e-9 * bpm,
                 qPrintable(QString::number(measured, 'g', 17)));
    }
    void badInputGivesNoBeats_data()
    {
        QTest::addColumn<double>("rate");
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("last");
        QTest::addColumn<bool>("undefinedSamples"); // every second one
        QTest::newRow("first after last") << 1000.0 << 5000 << 4000 << false;
        QTest::newRow("zero rate") << 0.0 << 0 << -1 << false;
        QTest::newRow("undefined samples") << 1000.0 << 0 << -1 << true;
    }
    void badInputGivesNoBeats()
    {
        QFETCH(double, rate);
        QFETCH(int, first);
        QFETCH(int, last);
        QFETCH(bool, undefinedSamples);
        QList<double> x = PulseTrain::make(PulseTrain::Options()).samples;
        for (qsizetype i = 0; undefinedSamples && i < x.size(); i += 2)
            x[i] = qQNaN();
        PeakFinder finder(rate, 0.01, 0.05);
        const Run run = findAll(finder, x, first, last);
        QVERIFY(run.peaks.isEmpty() && run.valleys.isEmpty() && run.signedIndices.isEmpty());
        QCOMPARE(finder.heartRate(), 0.0);
    }

    // From the beats to the pressure points: the regular beats, the systolic beat and the
    // diastolic bend.
    void regularBeats_data()
    {
        QTest::addColumn<double>("rate");
        QTest::addColumn<QList<int>>("beats");
        QTest::addColumn<QList<int>>("regular");
        // 60/900 s is admitted, 301 samples at 900 Hz (over 60/180 s) are not; beat 0 never enters.
        QTest::newRow("shortest interval admitted")
            << 900.0 << QList<int>{0, 60, 120} << QList<int>{60, 120};
        QTest::newRow("too long") << 900.0 << QList<int>{0, 301, 602} << QList<int>{};
        QTest::newRow("short first kept interval is not judged")
            << 1000.0 << QList<int>{0, 100, 300, 500, 700} << QList<int>{100, 300, 500, 700};
        QTest::newRow("later short interval removed")
            << 1000.0 << QList<int>{0, 200, 400, 500, 700, 900} << QList<int>{200, 400, 700, 900};
        QTest::newRow("long interval removed")
            << 1000.0 << QList<int>{0, 150, 300, 450, 750, 900} << QList<int>{150, 300, 450, 900};
    }
    void regularBeats()
    {
        QFETCH(double, rate);
        QFETCH(QList<int>, beats);
        PeakFinder finder(rate, 0.01, 0.05);
        QTEST(finder.selectRegularBeats(beats), "regular");
    }
    void systolicBeat_data()
    {
        QTest::addColumn<QList<int>>("regular");
        QTest::addColumn<int>("chosen");
        // Sparse beats, then a dense run: the first beat of the run has the fewest beats before it.
        QTest::newRow("start of dense run")
            << (QList<int>{1000, 2000, 2900} + range(3100, 150, 30)) << 3;
        QTest::newRow("10 after qualifies") << (QList<int>{100, 3001} + range(3100, 200, 9)) << 1;
        // Two runs of ten with one beat (themselves) in their window before: equal ratios.
        QTest::newRow("tie goes to the later beat")
            << (QList<int>{100} + range(3001, 100, 10) + range(20000, 100, 10)) << 11;
    }
    void systolicBeat()
    {
        QFETCH(QList<int>, regular);
        QTEST(PeakFinder::chooseSystolicBeat(regular), "chosen");
    }
    // Also the tie rule: with "later wins" the bend test would answer 8.25 s.
    void diastolicSearchFindsTheBend()
    {
        // The cuff falls 10 mmHg per second (100 samples per second); the pulse amplitude grows by
        // 1 per quarter second from the systolic point at 5 s until 8 s, then stays. All values are
        // exact in binary, so the equal slope differences at 7.75, 8.0 and 8.25 s are true ties and
        // the earliest of them wins.
        QList<double> pressure(2000);
        for (int i = 0; i < pressure.size(); ++i)
            pressure[i] = 200.0 - 10.0 * i / 100.0;
        QList<QPointF> amplitudes;
        for (int q = 0; q <= 60; ++q) {
            const double t = 3.0 + q * 0.25;
            const double a = t <= 5.0 ? 0.0 : (t <= 8.0 ? (t - 5.0) * 4.0 : 12.0);
            amplitudes << QPointF(t, a);
        }
        QList<double> differences;
        const double t =
            PeakFinder::findDiastolicTime(5.0, pressure, amplitudes, 100, &differences);
        QCOMPARE(t, 7.75);
        // Candidates from 6.5 s (135 mmHg) to 10 s (100 mmHg): 15 points, both ends included.
        QCOMPARE(differences.size(), 15);
        QCOMPARE(*std::max_element(differences.cbegin(), differences.cend()), 4 * 0.125);
    }
    void diastolicWindowBoundsAreInclusive_data()
    {
        QTest::addColumn<double>("below");
        QTest::addColumn<bool>("admitted");
        QTest::newRow("just under 15") << 14.99 << false;
        QTest::newRow("50 below") << 50.0 << true;
    }
    void diastolicWindowBoundsAreInclusive()
    {
        QFETCH(double, below);
        QFETCH(bool, admitted);
        QList<double> pressure(2000, 150.0);
        for (int i = 700; i < 800; ++i)
            pressure[i] = 150.0 - below;
        const QList<QPointF> amplitudes = {{7.0, 1.0}, {15.0, 2.0}};
        QList<double> differences;
        const double t =
            PeakFinder::findDiastolicTime(5.0, pressure, amplitudes, 100, &differences);
        QCOMPARE(differences.size(), admitted ? 1 : 0);
        QCOMPARE(t, 0.0); // a lone candidate has nothing above or below it to compare
    }
};

QTEST_APPLESS_MAIN(tst_PeakFinder)
#include "tst_PeakFinder.moc"
