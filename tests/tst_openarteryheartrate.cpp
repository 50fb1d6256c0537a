#include "analysis/OpenArteryHeartRate.h"

#include <QtTest>
#include <cmath>

// The refined heart rate on hand-made beat series: a cuff closed (200 mmHg) from 5 s to 15 s and
// open before and after, a heart at 400 beats/min, and the faults a pulse sensor adds.
class TestOpenArteryHeartRate : public QObject
{
    Q_OBJECT

    static constexpr double kRate = 1000.0;
    static constexpr double kInterval = 0.15;

    static QList<double> cuff()
    {
        QList<double> p(30 * int(kRate), 0.0);
        for (int i = 5 * int(kRate); i < 15 * int(kRate); ++i)
            p[i] = 200.0;
        return p;
    }
    // One beat of amplitude 1 every kInterval s over 30 s, none under the closed cuff.
    static QList<QPointF> heart()
    {
        QList<QPointF> beats;
        for (double t = 0.1; t < 29.9; t += kInterval) {
            if (t < 5.0 || t >= 15.0)
                beats << QPointF(t, 1.0);
        }
        return beats;
    }
    static void insertBeat(QList<QPointF> &beats, double t, double amplitude)
    {
        qsizetype at = 0;
        while (at < beats.size() && beats[at].x() < t)
            ++at;
        beats.insert(at, QPointF(t, amplitude));
    }

private slots:
    void countsTheHeartBeatsNotTheSensorsPeaks_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::newRow("clean") << QString();
        QTest::newRow("noise peaks under the closed cuff") << "closed";
        QTest::newRow("small noise peaks between beats") << "small";
        QTest::newRow("large extra peaks between beats") << "large";
        QTest::newRow("missed beats") << "missed";
        QTest::newRow("premature beats with their pause") << "premature";
    }
    void countsTheHeartBeatsNotTheSensorsPeaks()
    {
        QFETCH(QString, fault);
        QList<QPointF> beats = heart();
        if (fault == QLatin1String("closed")) {
            for (double t = 5.05; t < 15.0; t += 0.09)
                beats << QPointF(t, 0.3);
            std::sort(beats.begin(), beats.end(),
                      [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); });
        }
        for (int k = 10; k < beats.size() - 1; k += 12) {
            const double t = beats[k].x();
            if (fault == QLatin1String("small"))
                insertBeat(beats, t + 0.4 * kInterval, 0.2);
            if (fault == QLatin1String("large"))
                insertBeat(beats, t + 0.45 * kInterval, 0.9);
            if (fault == QLatin1String("missed"))
                beats.removeAt(k + 1);
            if (fault == QLatin1String("premature")) {
                // A beat 0.6 of an interval early and the pause after it: the two together last
                // two intervals.
                beats[k + 1].setX(t + 0.6 * kInterval);
            }
        }
        const double rate = OpenArteryHeartRate::estimate(beats, cuff(), kRate, 120.0);
        QVERIFY2(std::abs(rate - 400.0) < 2.0, qPrintable(QString::number(rate)));
    }

    void noRateWithoutEnoughOpenArteryBeats()
    {
        QList<QPointF> few;
        for (int k = 0; k < OpenArteryHeartRate::kLeastBeats - 1; ++k)
            few << QPointF(0.1 + k * kInterval, 1.0);
        QCOMPARE(OpenArteryHeartRate::estimate(few, cuff(), kRate, 120.0), 0.0);
        // No systolic pressure: nothing tells the open artery's beats apart.
        QCOMPARE(OpenArteryHeartRate::estimate(heart(), cuff(), kRate, 0.0), 0.0);
        // Every beat at or above the systolic pressure.
        QCOMPARE(OpenArteryHeartRate::estimate(heart(), QList<double>(30000, 150.0), kRate, 120.0),
                 0.0);
        QCOMPARE(OpenArteryHeartRate::estimate(heart(), {}, kRate, 120.0), 0.0);
    }
};

QTEST_GUILESS_MAIN(TestOpenArteryHeartRate)
#include "tst_openarteryheartrate.moc"
