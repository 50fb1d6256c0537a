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
    void butterworthMatchesClosedFormResponse_data();
    void butterworthMatchesClosedFormResponse();
    void butterworthLowPassHasUnityDcGain();
    void butterworthOrderRoundedUpToEvenAndCapped_data();
    void butterworthOrderRoundedUpToEvenAndCapped();
    void butterworthFrequenciesClampedToNyquist();
    void butterworthUnknownTypePassesSamplesThrough();

    void notchRejectsMainsAndPassesTheRest_data();
    void notchRejectsMainsAndPassesTheRest();
    void notchBandPassTwinIsItsComplement();
    void notchTwoRemovesCentreFrequency();

    void movingAverageWindowFromCutoff_data();
    void movingAverageWindowFromCutoff();
    void movingAverageRampsInFromZeros();
    void movingAverageReseedsAfterReset();
    void movingAverageHighPassSettlesAtZero();

    void iirFollowsDifferenceEquation();
    void streamSplitAnywhereGivesSameOutput();
    void processOverloadsAgree();
    void processCountRules();
};

void TestFilters::butterworthMatchesClosedFormResponse_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("f1");
    QTest::addColumn<double>("f2");
    QTest::addColumn<double>("frequency");
    QTest::addColumn<double>("expected");

    const double fs = 1000;
    // The device's pressure and pulse low-passes: -3 dB at the cut-off, steep an octave above.
    QTest::newRow("lp15 at cutoff") << 0 << 15.0 << 15.0 << 15.0 << M_SQRT1_2;
    QTest::newRow("lp15 octave up") << 0 << 15.0 << 15.0 << 30.0 << butterLowPass(30, 15, fs, 4);
    QTest::newRow("lp30 octave up") << 0 << 30.0 << 30.0 << 60.0 << butterLowPass(60, 30, fs, 4);
    QTest::newRow("hp uses f2") << 1 << 200.0 << 20.0 << 20.0 << M_SQRT1_2;
    // Band-pass: high-pass at f1 then low-pass at f2, so the responses multiply.
    QTest::newRow("bandpass middle")
        << 2 << 10.0 << 100.0 << 40.0
        << butterHighPass(40, 10, fs, 4) * butterLowPass(40, 100, fs, 4);
    // Type 3 is low-pass at f1 then high-pass at f2 in series: still a product, not a notch.
    QTest::newRow("type3 serial") << 3 << 100.0 << 10.0 << 40.0
                                  << butterLowPass(40, 100, fs, 4) * butterHighPass(40, 10, fs, 4);
}

void TestFilters::butterworthMatchesClosedFormResponse()
{
    QFETCH(int, type);
    QFETCH(double, f1);
    QFETCH(double, f2);
    QFETCH(double, frequency);
    QFETCH(double, expected);
    ButterworthFilter filter(type, 4, 1000, float(f1), float(f2));
    const double gain = gainAt(filter, frequency, 1000, 3.0, 2.0);
    QVERIFY2(std::fabs(toDecibel(gain) - toDecibel(expected)) < 0.05,
             qPrintable(QString::number(toDecibel(gain))));
}

void TestFilters::butterworthLowPassHasUnityDcGain()
{
    ButterworthFilter filter(AbstractFilter::LowPass, 4, 1000, 15, 15);
    float y = 0;
    for (int i = 0; i < 3000; ++i)
        y = filter.Process(100.0f);
    QCOMPARE_LE(std::fabs(y - 100.0f), 1e-3f);
}

void TestFilters::butterworthOrderRoundedUpToEvenAndCapped_data()
{
    QTest::addColumn<int>("requested");
    QTest::addColumn<int>("designed");
    QTest::newRow("1") << 1 << 2;
    QTest::newRow("4") << 4 << 4;
    QTest::newRow("5") << 5 << 6;
    QTest::newRow("25") << 25 << 20;
}

void TestFilters::butterworthOrderRoundedUpToEvenAndCapped()
{
    QFETCH(int, requested);
    QFETCH(int, designed);
    ButterworthFilter filter(AbstractFilter::LowPass, requested, 1000, 100, 100);
    QCOMPARE(filter.designOrder(), designed);
    QCOMPARE(filter.stageA()->sectionCount(), designed / 2);
    // The order shows in the response: one octave above the cut-off.
    const double gain = gainAt(filter, 200, 1000);
    QVERIFY(std::fabs(toDecibel(gain) - toDecibel(butterLowPass(200, 100, 1000, designed))) < 0.1);
}

void TestFilters::butterworthFrequenciesClampedToNyquist()
{
    ButterworthFilter high(AbstractFilter::BandPass, 4, 1000, -5, 900);
    QCOMPARE(high.firstFrequency(), 0.0f);
    QCOMPARE(high.secondFrequency(), 500.0f);
}

void TestFilters::butterworthUnknownTypePassesSamplesThrough()
{
    ButterworthFilter filter(7, 4, 1000, 15, 15);
    const QList<float> x = noise(100, 1);
    QCOMPARE(filter.Process(x), x);
}

void TestFilters::notchRejectsMainsAndPassesTheRest_data()
{
    QTest::addColumn<double>("frequency");
    QTest::addColumn<double>("minDb");
    QTest::addColumn<double>("maxDb");
    QTest::newRow("50 Hz") << 50.0 << -200.0 << -40.0;
    QTest::newRow("near DC") << 1.0 << -0.01 << 0.01;
    QTest::newRow("45 Hz") << 45.0 << -0.5 << 0.1;
    QTest::newRow("200 Hz") << 200.0 << -0.1 << 0.1;
}

void TestFilters::notchRejectsMainsAndPassesTheRest()
{
    QFETCH(double, frequency);
    QFETCH(double, minDb);
    QFETCH(double, maxDb);
    NotchFilter filter(1000, 50, 1);
    const double db = toDecibel(gainAt(filter, frequency, 1000, 4.0, 2.0));
    QVERIFY2(db >= minDb && db <= maxDb, qPrintable(QString::number(db)));
}

void TestFilters::notchBandPassTwinIsItsComplement()
{
    QList<float> b, a;
    QVERIFY(NotchFilter::coefficients(AbstractFilter::BandPass, 1000, 50, 1, &b, &a));
    IIRFilter bandPass(b, a);
    QVERIFY(std::fabs(toDecibel(gainAt(bandPass, 50, 1000, 4, 2))) < 0.05);
    QVERIFY(toDecibel(gainAt(bandPass, 10, 1000, 4, 2)) < -20);
    QVERIFY(!NotchFilter::coefficients(AbstractFilter::LowPass, 1000, 50, 1, &b, &a));
    QVERIFY(b.isEmpty() && a.isEmpty());
}

void TestFilters::notchTwoRemovesCentreFrequency()
{
    NotchFilter2 filter(1000, 50, 4);
    QVERIFY(toDecibel(gainAt(filter, 50, 1000, 4, 2)) < -40);
    QVERIFY(std::fabs(toDecibel(gainAt(filter, 10, 1000, 4, 2))) < 0.1);
}

void TestFilters::movingAverageWindowFromCutoff_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("cutoff");
    QTest::addColumn<int>("length");
    QTest::newRow("pulse high-pass") << 1000.0 << 3.0 << 53;
    QTest::newRow("rounds up") << 100.0 << 3.0 << 5; // 5.305
    QTest::newRow("short") << 1000.0 << 200.0 << 1;
}

void TestFilters::movingAverageWindowFromCutoff()
{
    QFETCH(double, rate);
    QFETCH(double, cutoff);
    QFETCH(int, length);
    MovingAverageFilter filter(AbstractFilter::LowPass, float(rate), float(cutoff));
    QCOMPARE(filter.windowLength(), length);
}

void TestFilters::movingAverageRampsInFromZeros()
{
    MovingAverageFilter filter(AbstractFilter::LowPass, 1000, 3);
    const float c = 2.5f;
    for (int k = 1; k <= 53; ++k)
        QCOMPARE_LE(std::fabs(filter.Process(c) - k * c / 53.0f), 1e-5f);
    QCOMPARE_LE(std::fabs(filter.Process(c) - c), 1e-5f);
}

void TestFilters::movingAverageReseedsAfterReset()
{
    MovingAverageFilter filter(AbstractFilter::LowPass, 1000, 3);
    for (int i = 0; i < 200; ++i)
        filter.Process(float(i % 7));
    filter.Reset();
    // Right after a reset the average starts at the signal, not at zero.
    QCOMPARE(filter.Process(4.0f), 4.0f);
    QCOMPARE(filter.Process(4.0f), 4.0f);
    // The sum is seeded again from each new sample until the window has filled.
    QCOMPARE_LE(std::fabs(filter.Process(10.0f) - float(10.0 + (10.0 - 4.0) / 53.0)), 1e-5f);
}

void TestFilters::movingAverageHighPassSettlesAtZero()
{
    MovingAverageFilter filter(AbstractFilter::HighPass, 1000, 3);
    float y = 1;
    for (int i = 0; i < 53; ++i)
        y = filter.Process(3.0f);
    QCOMPARE_LE(std::fabs(y), 1e-5f);
}

void TestFilters::iirFollowsDifferenceEquation()
{
    const QList<float> x = noise(500, 7);
    // Second-order sections in series, then the overall gain.
    const QList<QList<float>> sections = {{0.2f, 0.4f, 0.2f, 1.0f, -0.5f, 0.25f},
                                          {1.0f, -1.0f, 0.0f, 1.0f, 0.3f, 0.1f}};
    QList<float> expected = x;
    for (const QList<float> &s : sections)
        expected = referenceDifferenceEquation({s[0], s[1], s[2]}, {s[3], s[4], s[5]}, expected);
    IIRFilter sectioned(sections, 0.8f);
    QList<float> y = sectioned.Process(x);
    for (qsizetype i = 0; i < x.size(); ++i)
        QCOMPARE_LE(std::fabs(y[i] - expected[i] * 0.8f), 1e-4f);

    // A general order with a[0] other than one.
    IIRFilter general(QList<float>{0.1f, 0.2f, 0.3f, 0.2f, 0.1f},
                      QList<float>{2.0f, -0.4f, 0.2f, -0.1f});
    expected = referenceDifferenceEquation({0.1, 0.2, 0.3, 0.2, 0.1}, {2.0, -0.4, 0.2, -0.1}, x);
    y = general.Process(x);
    for (qsizetype i = 0; i < x.size(); ++i)
        QCOMPARE_LE(std::fabs(y[i] - expected[i]), 1e-4f);
}

void TestFilters::streamSplitAnywhereGivesSameOutput()
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

void TestFilters::processOverloadsAgree()
{
    const QList<float> x = noise(64, 9);
    ButterworthFilter reference(AbstractFilter::LowPass, 4, 1000, 30, 30);
    const QList<float> expected = reference.Process(x);

    ButterworthFilter f1(AbstractFilter::LowPass, 4, 1000, 30, 30);
    QList<float> out1(x.size());
    f1.Process(x.constData(), out1.data(), int(x.size()));
    QCOMPARE(out1, expected);

    ButterworthFilter f2(AbstractFilter::LowPass, 4, 1000, 30, 30);
    QList<float> in2 = x, out2;
    f2.Process(&in2, &out2, -1);
    QCOMPARE(out2, expected);

    // One channel of interleaved data: the other channel is left alone.
    ButterworthFilter f3(AbstractFilter::LowPass, 4, 1000, 30, 30);
    QList<float> interleaved;
    for (float v : x)
        interleaved << v << -1.0f;
    f3.Process(interleaved.data(), int(x.size()), 2);
    for (qsizetype i = 0; i < x.size(); ++i) {
        QCOMPARE(interleaved[2 * i], expected[i]);
        QCOMPARE(interleaved[2 * i + 1], -1.0f);
    }
}

void TestFilters::processCountRules()
{
    const QList<float> x = noise(20, 4);
    MovingAverageFilter f(AbstractFilter::LowPass, 1000, 3);
    QList<float> untouched = x;
    f.Process(&untouched, 0);
    QCOMPARE(untouched, x);

    QList<float> firstFive = x;
    f.Process(&firstFive, 5);
    QCOMPARE(firstFive.mid(5), x.mid(5));
    QVERIFY(firstFive.mid(0, 5) != x.mid(0, 5));

    // An empty output list is filled with n zeros before the n outputs are written.
    MovingAverageFilter g(AbstractFilter::LowPass, 1000, 3);
    QList<float> in = x, out;
    g.Process(&in, &out, 8);
    QCOMPARE(out.size(), 8);
}

QTEST_GUILESS_MAIN(TestFilters)
#include "tst_filters.moc"
