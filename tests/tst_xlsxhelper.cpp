#include "storage/XLSXHelper.h"
#include "support/RecordFiles.h"
#include "support/XlsxReader.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

namespace {
QList<XLSXSheet> threeSheets()
{
    const XLSXTable summary = {
        {QStringLiteral("Name"), QStringLiteral("SBP"), QStringLiteral("DBP")},
        {QStringLiteral("rat 1"), 121.5, 80}};
    const XLSXTable first = {{QStringLiteral("SBP"), 121.5, QStringLiteral("mmHg")},
                             {QStringLiteral("Rodent"), QStringLiteral("rat 1; cage 4")},
                             {QStringLiteral("Comment"), QStringLiteral("said \"ok\"")}};
    const XLSXTable second = {{QStringLiteral("Rodent"), QStringLiteral("Крыса 2")}};
    return {{QStringLiteral("Summary"), summary},
            {QStringLiteral("2026-11-21_10-00-00"), first},
            {QStringLiteral("2026-11-21_10-05-00"), second}};
}
} // namespace

using RecordFiles::readAll;

class TestXlsxHelper : public QObject
{
    Q_OBJECT
private slots:
    void workbookReadsBackWithNumbersAndTexts()
    {
        if (!XlsxReader::available())
            QSKIP("openpyxl for /usr/bin/python3 is missing (scripts/install-deps.sh installs it)");
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("export.xlsx"));
        QVERIFY(XLSXHelper::dataToXLSX(threeSheets(), path));
        const QJsonArray book = XlsxReader::read(path);
        QCOMPARE(book.size(), 3);
        const QJsonArray summary = book[0].toObject()[QStringLiteral("rows")].toArray();
        QVERIFY(summary[1].toArray()[1].isDouble()); // numbers stay numbers, not texts
        QCOMPARE(summary[1].toArray()[2].toDouble(), 80.0);
        const QJsonArray second = book[2].toObject()[QStringLiteral("rows")].toArray();
        QCOMPARE(second[0].toArray()[1].toString(), QStringLiteral("Крыса 2"));
    }
    void csvLayoutIsByteExact()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("export.csv"));
        QVERIFY(XLSXHelper::dataToCSV(threeSheets(), path, ";", "\r\n"));
        const QByteArray expected =
            "\xEF\xBB\xBFSummary\r\nName;SBP;DBP;\r\nrat 1;121.5;80;\r\n\r\n"
            "2026-11-21_10-00-00\r\nSBP;121.5;mmHg;\r\nRodent;\"rat 1; cage 4\";\r\n"
            "Comment;\"said \"\"ok\"\"\";\r\n\r\n2026-11-21_10-05-00\r\nRodent;Крыса 2;\r\n\r\n";
        QCOMPARE(readAll(path), expected);
    }
    void failedWriteLeavesExistingFileAndNoLeftovers()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("keep.xlsx"));
        QVERIFY(XLSXHelper::saveTableToXLSX({{1, 2}}, path));
        const QByteArray before = readAll(path);
        // A row wider than a worksheet can hold makes the write fail half-way.
        QVERIFY(!XLSXHelper::dataToXLSX({{QStringLiteral("big"), {QList<QVariant>(16385, 1.0)}}},
                                        path));
        QCOMPARE(readAll(path), before);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"keep.xlsx"});
    }
    void sheetNamesAreMadeValidAndUnique_data()
    {
        QTest::addColumn<QString>("wanted");
        QTest::addColumn<QStringList>("taken");
        QTest::addColumn<QString>("expected");
        QTest::newRow("forbidden characters") << "a/b:c[1]?" << QStringList() << "a_b_c_1__";
        QTest::newRow("taken, any case") << "Summary" << QStringList{"SUMMARY"} << "Summary (2)";
        QTest::newRow("long and taken")
            << QString(31, QLatin1Char('y')) << QStringList{QString(31, QLatin1Char('y'))}
            << QString(27, QLatin1Char('y')) + " (2)";
    }
    void sheetNamesAreMadeValidAndUnique()
    {
        QFETCH(QString, wanted);
        QFETCH(QStringList, taken);
        QTEST(XLSXHelper::sheetName(wanted, taken), "expected");
    }
    void convertItemToNumber_data()
    {
        QTest::addColumn<QVariant>("in");
        QTest::addColumn<QVariant>("out");
        QTest::newRow("comma") << QVariant(QStringLiteral(" 12,5 ")) << QVariant(12.5);
        QTest::newRow("two commas") << QVariant("1,2,3") << QVariant("1,2,3");
    }
    void convertItemToNumber()
    {
        QFETCH(QVariant, in);
        QTEST(XLSXHelper::convertItemToNumber(in), "out");
    }
};

QTEST_GUILESS_MAIN(TestXlsxHelper)
#include "tst_xlsxhelper.moc"
