#include "ui/ViewerColumnDecimator.h"

#include <QRandomGenerator>
#include <QtTest>

#include <map>

// Checked against a plain reference that sorts every sample into its pixel column in integers:
// whole pixels per second and a whole-second offset make the columns exact, owing nothing to
// the decimator's floating-point path.
class TestViewerColumnDecimator : public QObject
{
    Q_OBJECT
private slots:
    void everyColumnKeepsItsExtremes_data()
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
    void everyColumnKeepsItsExtremes()
    {
        QFETCH(int, samples);
        QFETCH(int, rate);
        QFETCH(int, offset);
        QFETCH(int, pps);
        QFETCH(int, columns);
        QRandomGenerator random(quint32(samples + offset));
        QList<double> s(samples);
        for (double &v : s)
            v = random.generateDouble() * 200.0 - 100.0;
        // y is the value itself; the plot starts 40 pixels in.
        const ViewerColumnDecimator::Mapping map{
            double(rate), double(offset), double(pps), 40.0, columns, 0.0, 1.0};
        std::vector<QPointF> out;
        ViewerColumnDecimator::decimate(s.constData(), s.size(), map, out);
        QVERIFY(out.size() <= size_t(2 * (columns + 2))); // two a column, one column each side
        std::map<qint64, QList<double>> got;
        for (const QPointF &p : out)
            got[qint64(std::floor(p.x() - map.left))].append(p.y());

        std::map<qint64, std::pair<qsizetype, qsizetype>> expected; // where its min and max are
        for (qsizetype i = 0; i < s.size(); ++i) {
            const qint64 scaled = (qint64(i) - qint64(offset) * rate) * pps;
            if (scaled < 0 || scaled / rate >= columns)
                continue;
            auto &[lo, hi] = expected.try_emplace(scaled / rate, i, i).first->second;
            lo = s[i] < s[lo] ? i : lo;
            hi = s[i] > s[hi] ? i : hi;
        }
        QVERIFY(!expected.empty());
        for (const auto &[c, extremes] : expected) {
            const auto [lo, hi] = extremes;
            // The extremes in the order they happened, so the line's shape is kept.
            const QList<double> want = lo == hi  ? QList<double>{s[lo]}
                                       : lo < hi ? QList<double>{s[lo], s[hi]}
                                                 : QList<double>{s[hi], s[lo]};
            QCOMPARE(got[c], want);
        }
        // And nothing drawn inside the plot where there are no samples.
        for (const auto &[c, ys] : got)
            QVERIFY2(c < 0 || c >= columns || expected.count(c), qPrintable(QString::number(c)));
    }
};

QTEST_GUILESS_MAIN(TestViewerColumnDecimator)
#include "tst_viewercolumndecimator.moc"
