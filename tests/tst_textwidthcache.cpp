#include "ui/TextWidthCache.h"

#include <QtTest>

class TestTextWidthCache : public QObject
{
    Q_OBJECT
private slots:
    // Whatever came before, a width is that of the font asked for now: a font change or a long
    // run of new labels must not leave widths of another font or lose the text asked for.
    void widthIsThatOfTheFontAskedFor_data()
    {
        QTest::addColumn<int>("labels"); // distinct labels measured in between
        QTest::newRow("few labels") << 5;
        QTest::newRow("more labels than the cache keeps") << 1000;
    }

    void widthIsThatOfTheFontAskedFor()
    {
        QFETCH(int, labels);
        QFont small = QGuiApplication::font();
        small.setPixelSize(10);
        QFont large = small;
        large.setPixelSize(30);
        QFont bold = small;
        bold.setBold(true);
        TextWidthCache cache;
        const QString title = QStringLiteral("Pressure, mmHg");
        for (int i = 0; i < labels; ++i) {
            const QString label = QString::number(i * 7);
            QCOMPARE(cache.width(small, label), QFontMetricsF(small).horizontalAdvance(label));
        }
        for (const QFont &font : {small, large, bold, small}) {
            QCOMPARE(cache.width(font, title), QFontMetricsF(font).horizontalAdvance(title));
            QCOMPARE(cache.width(font, title), QFontMetricsF(font).horizontalAdvance(title));
        }
        QVERIFY(cache.width(large, title) > 2 * cache.width(small, title));
    }
};

QTEST_MAIN(TestTextWidthCache)
#include "tst_textwidthcache.moc"
