#include "storage/DecimalText.h"

#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>

namespace {
// How cells were written before: Qt's shortest form, which switches to an exponent whenever that
// is shorter.
QByteArray previousText(double value)
{
    return std::isfinite(value)
               ? QString::number(value, 'g', QLocale::FloatingPointShortest).toLatin1()
               : QByteArray();
}

// Doubles spread over many decades with every kind of mantissa, as recordings and results give.
QList<double> manyValues(int count)
{
    QRandomGenerator random(20261124);
    QList<double> values;
    values.reserve(count);
    for (int i = 0; i < count; ++i) {
        const double mantissa = random.generateDouble() * 2.0 - 1.0;
        const int decade = int(random.bounded(-14, 22));
        double v = mantissa * std::pow(10.0, decade);
        if (i % 4 == 0) // a value with few digits, as calibrated readings often are
            v = std::round(v * 1000.0) / 1000.0;
        values << v;
    }
    return values;
}
} // namespace

class TestDecimalText : public QObject
{
    Q_OBJECT
private slots:
    void textReadsAsSpreadsheetsShowIt_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("small pulse value") << 2.99e-05 << QByteArray("0.0000299");
        QTest::newRow("negative small") << -4.5e-07 << QByteArray("-0.00000045");
        QTest::newRow("a million") << 1e6 << QByteArray("1000000");
        QTest::newRow("large plain") << 1.5e14 << QByteArray("150000000000000");
        QTest::newRow("pressure") << 121.5 << QByteArray("121.5");
        QTest::newRow("tenth") << 0.1 << QByteArray("0.1");
        QTest::newRow("third") << 1.0 / 3.0 << QByteArray("0.3333333333333333");
        QTest::newRow("zero") << 0.0 << QByteArray("0");
        QTest::newRow("negative zero") << -0.0 << QByteArray("0");
        QTest::newRow("below a billionth") << 1e-12 << QByteArray("1e-12");
        QTest::newRow("huge") << 1e20 << QByteArray("1e+20");
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << QByteArray();
        QTest::newRow("infinite") << -std::numeric_limits<double>::infinity() << QByteArray();
    }
    void textReadsAsSpreadsheetsShowIt()
    {
        QFETCH(double, value);
        QFETCH(QByteArray, text);
        QCOMPARE(DecimalText::of(value), text);
    }

    // Only the exponent form may change: every text that was a plain decimal before stays the
    // same bytes, and every new text reads back as exactly the same double.
    void onlyExponentTextsChangeAndAllReadBackExactly()
    {
        int unchanged = 0;
        int madePlain = 0;
        for (const double v : manyValues(200000)) {
            const QByteArray before = previousText(v);
            const QByteArray now = DecimalText::of(v);
            if (!before.contains('e')) {
                QCOMPARE(now, before);
                ++unchanged;
                continue;
            }
            const double magnitude = std::fabs(v);
            if (magnitude >= 1e-9 && magnitude < 1e15) {
                QVERIFY2(!now.contains('e'), now.constData());
                ++madePlain;
            } else {
                QCOMPARE(now, before);
            }
            bool ok = false;
            QCOMPARE(now.toDouble(&ok), v);
            QVERIFY(ok);
        }
        // The sample must exercise both ways, or the comparison above proves little.
        QVERIFY(unchanged > 10000);
        QVERIFY(madePlain > 10000);
    }

    void integersAsDecimalDigits_data()
    {
        QTest::addColumn<qlonglong>("value");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("zero") << 0LL << QByteArray("0");
        QTest::newRow("negative") << -80LL << QByteArray("-80");
        QTest::newRow("smallest") << std::numeric_limits<qlonglong>::min()
                                  << QByteArray("-9223372036854775808");
    }
    void integersAsDecimalDigits()
    {
        QFETCH(qlonglong, value);
        QFETCH(QByteArray, text);
        char buffer[DecimalText::kMaxLength];
        QCOMPARE(QByteArray(buffer, DecimalText::write(value, buffer)), text);
    }
};

QTEST_GUILESS_MAIN(TestDecimalText)
#include "tst_decimaltext.moc"
