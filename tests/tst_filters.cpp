#include "analysis/ButterworthFilter.h"
#include "analysis/IIRFilter.h"
#include "analysis/MovingAverageFilter.h"
#include "analysis/NotchFilter.h"
#include "analysis/NotchFilter2.h"
#include "support/SignalTools.h"

#include <QRandomGenerator>
#include <QtTest>
#include <cmath>

using SignalTools::gainAt;
using SignalTools::toDecibel;

namespace {
// Magnitude of a digital Butterworth low-pass made by the bilinear transform with pre-warping:
// |H(f)|^2 = 1 / (1 + (tan(pi f/fs) / tan(pi fc/fs))^(2N)).
double butterLowPass(double f, double fc, double fs, int order)
{
    const double r = std::tan(M_PI * f / fs) / std::tan(M_PI * fc / fs);
    return 1.0 / std::sqrt(1.0 + std::pow(r, 2 * order));
}
double butterHighPass(double f, double fc, double fs, int order)
{
    const double r = std::tan(M_PI * fc / fs) / std::tan(M_PI * f / fs);
    return 1.0 / std::sqrt(1.0 + std::pow(r, 2 * order));
}

// The difference equation written out plainly, as the reference for the optimised sections.
QList<float> referenceDifferenceEquation(const QList<double> &b, const QList<double> &a,
                                         const QList<float> &x)
{
    QList<float> y(x.size());
    for (qsizetype n = 0; n < x.size(); ++n) {
        double acc = 0;
        for (qsizetype k = 0; k < b.size(); ++k)
            if (n - k >= 0)
                acc += b[k] * x[n - k];
        for (qsizetype k = 1; k < a.size(); ++k)
            if (n - k >= 0)
                acc -= a[k] * y[n - k];
        y[n] = float(acc / a[0]);
    }
    return y;
}

QList<float> noise(int n, quint32 seed)
{
    QRandomGenerator rng(seed);
    QList<float> x(n);
    for (float &v : x)
        v = float(rng.generateDouble() * 2 - 1);
    return x;
}
} // namespace

class TestFilters : public QObject
{
    Q_OBJECT
private slots:
    void butterworthMatchesClosedFormResponse_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<double>("f1");
        QTest::addColumn<double>("f2");
        QTest::addColumn<double>("frequency");
        QTest::addColumn<double>("expected");
        QTest::addColumn<int>("order");

        const double fs = 1000;
        QTest::newRow("lp15 at cutoff") << 0 << 15.0 << 15.0 << 15.0 << M_SQRT1_2 << 4;
        QTest::newRow("lp15 near DC")
            << 0 << 15.0 << 15.0 << 1.0 << butterLowPass(1, 15, fs, 4) << 4;
        QTest::newRow("hp uses f2") << 1 << 200.0 << 20.0 << 20.0 << M_SQRT1_2 << 4;
        // Odd orders are rounded up to even, and no more than 20 are designed.
        QTest::newRow("order 5 gives 6")
            << 0 << 100.0 << 100.0 << 150.0 << butterLowPass(150, 100, fs, 6) << 5;
        QTest::newRow("order 25 gives 20")
            << 0 << 100.0 << 100.0 << 150.0 << butterLowPass(150, 100, fs, 20) << 25;
        // Band-pass: high-pass at f1 then low-pass at f2, so the responses multiply.
        QTest::newRow("bandpass middle")
            << 2 << 10.0 << 100.0 << 40.0
            << butterHighPass(40, 10, fs, 4) * butterLowPass(40, 100, fs, 4) << 4;
        // Type 3 is low-pass at f1 then high-pass at f2 in series: still a product, not a notch.
        QTest::newRow("type3 serial")
            << 3 << 100.0 << 10.0 << 40.0
            << butterLowPass(40, 100, fs, 4) * butterHighPass(40, 10, fs, 4) << 4;
    }
    void butterworthMatchesClosedFormResponse()
    {
        QFETCH(int, type);
        QFETCH(double, f1);
        QFETCH(double, f2);
        QFETCH(double, frequency);
        QFETCH(double, expected);
        QFETCH(int, order);
        ButterworthFilter filter(type, order, 1000, float(f1), float(f2));
        const double gain = gainAt(filter, frequency, 1000, 3.0, 2.0);
        QVERIFY2(std::fabs(toDecibel(gain) - toDecibel(expected)) < 0.05,
                 qPrintable(QString::number(toDecibel(gain))));
    }

    void notchRejectsMainsAndPassesTheRest_data()
    {
        QTest::addColumn<bool>("second"); // NotchFilter2 rather than NotchFilter
        QTest::addColumn<double>("frequency");
        QTest::addColumn<double>("minDb");
        QTest::addColumn<double>("maxDb");
        QTest::newRow("50 Hz") << false << 50.0 << -200.0 << -40.0;
        QTest::newRow("near DC") << false << 1.0 << -0.01 << 0.01;
        QTest::newRow("45 Hz") << false << 45.0 << -0.5 << 0.1;
        QTest::newRow("200 Hz") << false << 200.0 << -0.1 << 0.1;
        QTest::newRow("second, 50 Hz") << true << 50.0 << -200.0 << -40.0;
        QTest::newRow("second, 10 Hz") << true << 10.0 << -0.1 << 0.1;
    }
    void notchRejectsMainsAndPassesTheRest()
    {
        QFETCH(bool, second);
        QFETCH(double, frequency);
        QFETCH(double, minDb);
        QFETCH(double, maxDb);
        NotchFilter first(1000, 50, 1);
        NotchFilter2 other(1000, 50, 4);
        const double db = toDecibel(
            gainAt(second ? static_cast<AbstractFilter &>(other) : first, frequency, 1000, 4, 2));
        QVERIFY2(db >= minDb && db <= maxDb, qPrintable(QString::number(db)));
    }
    void movingAverageRampsInFromZerosAndReseedsAfterReset()
    {
        MovingAverageFilter filter(AbstractFilter::LowPass, 1000, 3);
        const float c = 2.5f;
        for (int k = 1; k <= 53; ++k)
            QCOMPARE_LE(std::fabs(filter.Process(c) - k * c / 53.0f), 1e-5f);
        for (int i = 0; i < 200; ++i)
            QCOMPARE_LE(std::fabs(filter.Process(c) - c), 1e-5f);
        filter.Reset();
        // Right after a reset the average starts at the signal, not at zero.
        QCOMPARE(filter.Process(4.0f), 4.0f);
        QCOMPARE(filter.Process(4.0f), 4.0f);
        // The sum is seeded again from each new sample until the window has filled.
        QCOMPARE_LE(std::fabs(filter.Process(10.0f) - float(10.0 + (10.0 - 4.0) / 53.0)), 1e-5f);
    }

    void iirFollowsDifferenceEquation()
    {
        const QList<float> x = noise(500, 7);
        // Second-order sections in series, then the overall gain.
        const QList<QList<float>> sections = {{0.2f, 0.4f, 0.2f, 1.0f, -0.5f, 0.25f},
                                              {1.0f, -1.0f, 0.0f, 1.0f, 0.3f, 0.1f}};
        QList<float> expected = x;
        for (const QList<float> &s : sections)
            expected =
                referenceDifferenceEquation({s[0], s[1], s[2]}, {s[3], s[4], s[5]}, expected);
        IIRFilter sectioned(sections, 0.8f);
        QList<float> y = sectioned.Process(x);
        for (qsizetype i = 0; i < x.size(); ++i)
            QCOMPARE_LE(std::fabs(y[i] - expected[i] * 0.8f), 1e-4f);

        // A general order with a[0] other than one.
        IIRFilter general(QList<float>{0.1f, 0.2f, 0.3f, 0.2f, 0.1f},
                          QList<float>{2.0f, -0.4f, 0.2f, -0.1f});
        expected =
            referenceDifferenceEquation({0.1, 0.2, 0.3, 0.2, 0.1}, {2.0, -0.4, 0.2, -0.1}, x);
        y = general.Process(x);
        for (qsizetype i = 0; i < x.size(); ++i)
            QCOMPARE_LE(std::fabs(y[i] - expected[i]), 1e-4f);
    }
    void streamSplitAnywhereGivesSameOutput()
    {
        const QList<float> x = noise(3000, 3);
        ButterworthFilter whole(AbstractFilter::BandPass, 6, 1000, 5, 40);
        MovingAverageFilter wholeMa(AbstractFilter::HighPass, 1000, 3);
        const QList<float> expected = wholeMa.Process(whole.Process(x));

        ButterworthFilter pieces(AbstractFilter::BandPass, 6, 1000, 5, 40);
        MovingAverageFilter piecesMa(AbstractFilter::HighPass, 1000, 3);
        QRandomGenerator rng(5);
        QList<float> y;
        for (qsizetype at = 0; at < x.size();) {
            const qsizetype n = std::min<qsizetype>(rng.bounded(1, 40), x.size() - at);
            QList<float> chunk = x.mid(at, n);
            pieces.Process(&chunk, -1);
            piecesMa.Process(&chunk, -1);
            y += chunk;
            at += n;
        }
        QCOMPARE(y, expected);
    }
};

QTEST_GUILESS_MAIN(TestFilters)
#include "tst_filters.moc"
