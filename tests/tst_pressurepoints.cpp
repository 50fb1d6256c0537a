#include "analysis/PeakFinder.h"

#include <QtTest>

namespace {
QList<int> range(int from, int step, int count)
{
    QList<int> out;
    for (int i = 0; i < count; ++i)
        out << from + i * step;
    return out;
}
} // namespace

class TestPressurePoints : public QObject
{
    Q_OBJECT
private slots:
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

QTEST_GUILESS_MAIN(TestPressurePoints)
#include "tst_pressurepoints.moc"
