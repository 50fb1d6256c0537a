#include "storage/XLSXHelper.h"
#include "support/XlsxReader.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QtTest>

namespace {
QList<XLSXSheet> threeSheets()
{
    const XLSXTable summary = {
        {QStringLiteral("Name"), QStringLiteral("SBP"), QStringLiteral("DBP")},
        {QStringLiteral("rat 1"), 121.5, 80},
        {QStringLiteral("rat 2"), 130.25, 91}};
    const XLSXTable first = {{QStringLiteral("SBP"), 121.5, QStringLiteral("mmHg")},
                             {QStringLiteral("Rodent"), QStringLiteral("rat 1; cage 4")},
                             {QStringLiteral("Comment"), QStringLiteral("said \"ok\"")}};
    const XLSXTable second = {{QStringLiteral("SBP"), 130.25, QStringLiteral("mmHg")},
                              {QStringLiteral("Rodent"), QStringLiteral("Крыса 2")}};
    return {{QStringLiteral("Summary"), summary},
            {QStringLiteral("2026-11-21_10-00-00"), first},
            {QStringLiteral("2026-11-21_10-05-00"), second}};
}

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
}
} // namespace

class TestXlsxHelper : public QObject
{
    Q_OBJECT
private slots:
    void workbookReadsBackWithNumbersAndTexts();
    void csvLayoutIsByteExact();
    void failedWriteLeavesExistingFileAndNoLeftovers();
    void unwritableFolderFails();
    void sheetNamesAreMadeValidAndUnique_data();
    void sheetNamesAreMadeValidAndUnique();
    void convertItemToNumber_data();
    void convertItemToNumber();
    void transposeFillsRaggedRows();
    void modelTablesWithHeaderAndTooltips();
};

void TestXlsxHelper::workbookReadsBackWithNumbersAndTexts()
{
    if (!XlsxReader::available())
        QSKIP("openpyxl for /usr/bin/python3 is missing (scripts/install-deps.sh installs it)");
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("export.xlsx"));
    QVERIFY(XLSXHelper::dataToXLSX(threeSheets(), path));
    QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("export.xlsx")});

    QString error;
    const QJsonArray book = XlsxReader::read(path, &error);
    QVERIFY2(book.size() == 3, qPrintable(error));
    QCOMPARE(book[2].toObject()[QStringLiteral("name")].toString(),
             QStringLiteral("2026-11-21_10-05-00"));
    const QJsonArray summary = book[0].toObject()[QStringLiteral("rows")].toArray();
    QCOMPARE(summary.size(), 3);
    QVERIFY(summary[1].toArray()[1].isDouble()); // numbers stay numbers, not texts
    QCOMPARE(summary[1].toArray()[1].toDouble(), 121.5);
    QCOMPARE(summary[2].toArray()[2].toDouble(), 91.0);
    const QJsonArray second = book[2].toObject()[QStringLiteral("rows")].toArray();
    QCOMPARE(second[1].toArray()[1].toString(), QStringLiteral("Крыса 2"));
}

void TestXlsxHelper::csvLayoutIsByteExact()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("export.csv"));
    QVERIFY(
        XLSXHelper::dataToCSV(threeSheets(), path, QStringLiteral(";"), QStringLiteral("\r\n")));
    QFile f(path);
    QVERIFY(f.open(QIODevice::ReadOnly));
    const QByteArray expected = "\xEF\xBB\xBF"
                                "Summary\r\n"
                                "Name;SBP;DBP;\r\n"
                                "rat 1;121.5;80;\r\n"
                                "rat 2;130.25;91;\r\n"
                                "\r\n"
                                "2026-11-21_10-00-00\r\n"
                                "SBP;121.5;mmHg;\r\n"
                                "Rodent;\"rat 1; cage 4\";\r\n"
                                "Comment;\"said \"\"ok\"\"\";\r\n"
                                "\r\n"
                                "2026-11-21_10-05-00\r\n"
                                "SBP;130.25;mmHg;\r\n"
                                "Rodent;" +
                                QStringLiteral("Крыса 2").toUtf8() +
                                ";\r\n"
                                "\r\n";
    QCOMPARE(f.readAll(), expected);
}

void TestXlsxHelper::failedWriteLeavesExistingFileAndNoLeftovers()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("keep.xlsx"));
    QVERIFY(XLSXHelper::saveTableToXLSX({{1, 2}}, path));
    QFile f(path);
    QVERIFY(f.open(QIODevice::ReadOnly));
    const QByteArray before = f.readAll();
    f.close();

    // A row wider than a worksheet can hold makes the write fail half-way.
    QList<QVariant> wide(16385, QVariant(1.0));
    QString error;
    QVERIFY(!XLSXHelper::dataToXLSX({{QStringLiteral("big"), {wide}}}, path, &error));
    QVERIFY(f.open(QIODevice::ReadOnly));
    QCOMPARE(f.readAll(), before);
    QCOMPARE(filesIn(dir.path()), QStringList{QStringLiteral("keep.xlsx")});
}

void TestXlsxHelper::unwritableFolderFails()
{
    const QString path = QStringLiteral("/nonexistent-folder-for-corvida/a.xlsx");
    QVERIFY(!XLSXHelper::dataToXLSX(threeSheets(), path));
    QVERIFY(!XLSXHelper::dataToCSV(threeSheets(),
                                   QStringLiteral("/nonexistent-folder-for-corvida/a.csv")));
}

void TestXlsxHelper::sheetNamesAreMadeValidAndUnique_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("expected");
    QTest::newRow("plain") << "2026-11-21_10-00-00 (A17)" << QStringList()
                           << "2026-11-21_10-00-00 (A17)";
    QTest::newRow("forbidden characters") << "a/b:c[1]?" << QStringList() << "a_b_c_1__";
    QTest::newRow("too long") << QString(40, QLatin1Char('x')) << QStringList()
                              << QString(31, QLatin1Char('x'));
    QTest::newRow("taken, any case") << "Summary" << QStringList{"SUMMARY"} << "Summary (2)";
    QTest::newRow("long and taken")
        << QString(31, QLatin1Char('y')) << QStringList{QString(31, QLatin1Char('y'))}
        << QString(27, QLatin1Char('y')) + " (2)";
    QTest::newRow("empty") << "''" << QStringList() << "Sheet";
}

void TestXlsxHelper::sheetNamesAreMadeValidAndUnique()
{
    QFETCH(QString, wanted);
    QFETCH(QStringList, taken);
    QFETCH(QString, expected);
    QCOMPARE(XLSXHelper::sheetName(wanted, taken), expected);
}

void TestXlsxHelper::convertItemToNumber_data()
{
    QTest::addColumn<QVariant>("in");
    QTest::addColumn<QVariant>("out");
    QTest::newRow("point") << QVariant(QStringLiteral("12.5")) << QVariant(12.5);
    QTest::newRow("comma") << QVariant(QStringLiteral(" 12,5 ")) << QVariant(12.5);
    QTest::newRow("two commas") << QVariant(QStringLiteral("1,2,3"))
                                << QVariant(QStringLiteral("1,2,3"));
    QTest::newRow("number stays") << QVariant(7) << QVariant(7);
}

void TestXlsxHelper::convertItemToNumber()
{
    QFETCH(QVariant, in);
    QFETCH(QVariant, out);
    QCOMPARE(XLSXHelper::convertItemToNumber(in), out);
}

void TestXlsxHelper::transposeFillsRaggedRows()
{
    const XLSXTable t = {{1, 2, 3}, {4}};
    const XLSXTable expected = {{1, 4}, {2, QVariant()}, {3, QVariant()}};
    QCOMPARE(XLSXHelper::transpose(t), expected);
}

void TestXlsxHelper::modelTablesWithHeaderAndTooltips()
{
    QStandardItemModel model(2, 2);
    model.setHorizontalHeaderLabels({QStringLiteral("Rodent"), QStringLiteral("SBP")});
    model.setHeaderData(1, Qt::Horizontal, QStringLiteral("Systolic pressure"), Qt::ToolTipRole);
    model.setData(model.index(0, 0), QStringLiteral("r1"));
    model.setData(model.index(0, 1), 120.0);
    model.setData(model.index(1, 0), QStringLiteral("r2"));
    model.setData(model.index(1, 1), 99.5);
    QCOMPARE(XLSXHelper::tableToCSVString(&model),
             QStringLiteral("Rodent;SBP;\r\nr1;120;\r\nr2;99.5;\r\n"));
    QCOMPARE(XLSXHelper::tableHeaderTooltips(&model),
             (QStringList{QString(), QStringLiteral("Systolic pressure")}));
    if (!XlsxReader::available())
        QSKIP("openpyxl for /usr/bin/python3 is missing");
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("table.xlsx"));
    QVERIFY(XLSXHelper::tableHeaderTooltipsToXLSX(&model, path, QStringLiteral("Records")));
    const QJsonObject sheet = XlsxReader::read(path)[0].toObject();
    QCOMPARE(sheet[QStringLiteral("name")].toString(), QStringLiteral("Records"));
    QCOMPARE(sheet[QStringLiteral("comments")].toObject()[QStringLiteral("B1")].toString(),
             QStringLiteral("Systolic pressure"));
    QCOMPARE(sheet[QStringLiteral("rows")].toArray()[2].toArray()[1].toDouble(), 99.5);
}

QTEST_GUILESS_MAIN(TestXlsxHelper)
#include "tst_xlsxhelper.moc"
