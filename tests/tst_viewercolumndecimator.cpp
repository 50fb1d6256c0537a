#include "ui/ViewerColumnDecimator.h"

#include <QRandomGenerator>
#include <QtTest>

#include <map>

// The decimator is checked against a plain reference that sorts every sample into its pixel
// column with integer arithmetic: the scale is a whole number of pixels per second and the
// offset a whole number of samples, so the columns are exact and owe nothing to the decimator's
// floating-point path.
namespace {
struct Column {
    double lo = 0, hi = 0;
    qsizetype loAt = -1, hiAt = -1;
};

qint64 floorDiv(qint64 a, qint64 b)
{
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

std::map<qint64, Column> referenceColumns(const QList<double> &s, int rate, int offsetSeconds,
                                          int pps, int columns)
{
    std::map<qint64, Column> out;
    for (qsizetype i = 0; i < s.size(); ++i) {
        const qint64 c = floorDiv((qint64(i) - qint64(offsetSeconds) * rate) * pps, rate);
        if (c < 0 || c >= columns)
            continue;
        Column &col = out[c];
        if (col.loAt < 0 || s[i] < col.lo) {
            col.lo = s[i];
            col.loAt = i;
        }
        if (col.hiAt < 0 || s[i] > col.hi) {
            col.hi = s[i];
            col.hiAt = i;
        }
    }
    return out;
}

QList<double> noise(qsizetype n, quint32 seed)
{
    QRandomGenerator g(seed);
    QList<double> s(n);
    for (double &v : s)
        v = g.generateDouble() * 200.0 - 100.0;
    return s;
}
} // namespace

class TestViewerColumnDecimator : public QObject
{
    Q_OBJECT
private slots:
    void everyColumnKeepsItsExtremes_data();
    void everyColumnKeepsItsExtremes();
    void sparseSamplesAreKeptAsTheyAre();
    void bufferIsReusedWithoutGrowing();
};

void TestViewerColumnDecimator::everyColumnKeepsItsExtremes_data()
{
    QTest::addColumn<int>("samples");
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("pps");
    QTest::addColumn<int>("columns");
    // 120 s of 1000 Hz on 1920 pixels: 62.5 samples a column, alternating 62 and 63.
    QTest::newRow("120 s at 1920 px") << 120000 << 1000 << 0 << 16 << 1920;
    QTest::newRow("scrolled, series ends inside") << 100000 << 1000 << 45 << 16 << 960;
    QTest::newRow("two samples a column") << 5000 << 1000 << 0 << 500 << 10;
    QTest::newRow("odd rate") << 30000 << 250 << 10 << 3 << 200;
    QTest::newRow("window past the end") << 2000 << 1000 << 0 << 10 << 600;
}

void TestViewerColumnDecimator::everyColumnKeepsItsExtremes()
{
    QFETCH(int, samples);
    QFETCH(int, rate);
    QFETCH(int, offset);
    QFETCH(int, pps);
    QFETCH(int, columns);
    const QList<double> s = noise(samples, quint32(samples + offset));
    ViewerColumnDecimator::Mapping map;
    map.rate = rate;
    map.offset = offset;
    map.pixelsPerSecond = pps;
    map.left = 40;
    map.columns = columns;
    map.yOrigin = 0;
    map.yScale = 1; // y is the value itself
    std::vector<QPointF> out;
    ViewerColumnDecimator::decimate(s.constData(), s.size(), map, out);

    // At most two points a column, plus the columns just outside on either side.
    QVERIFY(out.size() <= size_t(2 * (columns + 2)));

    std::map<qint64, QList<double>> got;
    for (const QPointF &p : out)
        got[qint64(std::floor(p.x() - map.left))].append(p.y());
    const auto expected = referenceColumns(s, rate, offset, pps, columns);
    QVERIFY(!expected.empty());
    for (const auto &[c, col] : expected) {
        const QList<double> ys = got[c];
        QVERIFY2(!ys.isEmpty(), qPrintable(QStringLiteral("column %1 missing").arg(c)));
        // The extremes in the order they happened, so the line's shape is kept.
        const QList<double> want = col.loAt == col.hiAt  ? QList<double>{col.lo}
                                   : col.loAt < col.hiAt ? QList<double>{col.lo, col.hi}
                                                         : QList<double>{col.hi, col.lo};
        QCOMPARE(ys, want);
    }
    // And nothing drawn inside the plot where there are no samples.
    for (const auto &[c, ys] : got) {
        if (c >= 0 && c < columns)
            QVERIFY2(expected.count(c), qPrintable(QStringLiteral("stray column %1").arg(c)));
    }
}

void TestViewerColumnDecimator::sparseSamplesAreKeptAsTheyAre()
{
    // 10 Hz over 100 px a second: ten pixels between samples, so each sample is drawn where it
    // is, plus one before and after the window.
    QList<double> s;
    for (int i = 0; i < 100; ++i)
        s.append(i % 2 ? 1.0 : -1.0);
    ViewerColumnDecimator::Mapping map;
    map.rate = 10;
    map.offset = 5;
    map.pixelsPerSecond = 100;
    map.left = 0;
    map.columns = 200; // 5 s to 7 s
    std::vector<QPointF> out;
    ViewerColumnDecimator::decimate(s.constData(), s.size(), map, out);
    QCOMPARE(out.size(), size_t(1 + 21 + 1));
    QCOMPARE(out.front(), QPointF(-10, 1.0)); // sample 49, at 4.9 s
    QCOMPARE(out[1], QPointF(0, -1.0));       // sample 50, the left edge
    QCOMPARE(out.back(), QPointF(210, 1.0));  // sample 71, at 7.1 s
}

void TestViewerColumnDecimator::bufferIsReusedWithoutGrowing()
{
    // A long record and a short one need the same room: the buffer depends on the width only.
    ViewerColumnDecimator::Mapping map;
    map.rate = 1000;
    map.pixelsPerSecond = 16;
    map.columns = 1920;
    std::vector<QPointF> out;
    const QList<double> shortRecord = noise(120000, 1);
    ViewerColumnDecimator::decimate(shortRecord.constData(), shortRecord.size(), map, out);
    const size_t capacity = out.capacity();
    const QPointF *data = out.data();
    const QList<double> longRecord = noise(1200000, 2);
    map.offset = 600;
    ViewerColumnDecimator::decimate(longRecord.constData(), longRecord.size(), map, out);
    QVERIFY(out.size() <= size_t(2 * (1920 + 2)));
    QCOMPARE(out.capacity(), capacity);
    QCOMPARE(out.data(), data);
}

QTEST_GUILESS_MAIN(TestViewerColumnDecimator)
#include "tst_viewercolumndecimator.moc"
