#include "storage/XLSXHelper.h"
#include "support/RecordFiles.h"
#include "support/XlsxReader.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

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
// The CSV writer as it was before numbers went straight into the file buffer: one string per
// line, Qt's shortest number text. Kept to compare the bytes of the faster writer against.
QByteArray previousCsv(const QList<XLSXSheet> &sheets)
{
    QByteArray out("\xEF\xBB\xBF");
    for (const XLSXSheet &sheet : sheets) {
        out += sheet.first.toUtf8() + "\r\n";
        for (const QList<QVariant> &row : sheet.second) {
            QString line;
            for (const QVariant &cell : row) {
                if (cell.typeId() == QMetaType::Double)
                    line += QString::number(cell.toDouble(), 'g', QLocale::FloatingPointShortest);
                else if (XLSXHelper::isNumber(cell))
                    line += cell.toString();
                else
                    line += XLSXHelper::csvCell(cell, QStringLiteral(";"));
                line += QLatin1Char(';');
            }
            out += line.toUtf8() + "\r\n";
        }
        out += "\r\n";
    }
    return out;
}

// A record's full sheet: its results, then the pressure falling through the cuff and a pulse
// wave that crosses zero, where the tiny values are.
XLSXTable recordingSheet(int samples)
{
    XLSXTable table = {{QStringLiteral("SBP"), 118.0, QStringLiteral("mmHg")},
                       {QStringLiteral("Cycle"), 3, QStringLiteral("Acclimation")},
                       {QStringLiteral("Comment"), QStringLiteral("calm; \"good\" tail")},
                       {},
                       {QStringLiteral("Sampling rate"), 1000.0}};
    for (int i = 0; i < samples; ++i)
        table << QList<QVariant>{180.0 - 150.0 * i / samples,
                                 0.3 * std::sin(2.0 * M_PI * 6.1 * i / 1000.0 + 0.1)};
    table << QList<QVariant>{2.99e-05, -1e6};
    return table;
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
    // Only the numbers the previous writer put in exponent form may differ, and they must read
    // back as the same values.
    void csvOfARecordingKeepsThePreviousBytesSaveExponents()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("record.csv"));
        const QList<XLSXSheet> sheets = {
            {QStringLiteral("2026-11-21_09-00-00"), recordingSheet(20000)},
            {QStringLiteral("rat 2"), recordingSheet(1000)}};
        QVERIFY(XLSXHelper::dataToCSV(sheets, path, ";", "\r\n"));
        const QList<QByteArray> now = readAll(path).split('\n');
        const QList<QByteArray> before = previousCsv(sheets).split('\n');
        QCOMPARE(now.size(), before.size());
        int changed = 0;
        for (qsizetype i = 0; i < now.size(); ++i) {
            if (now[i] == before[i])
                continue;
            ++changed;
            QVERIFY2(before[i].contains('e') && !now[i].contains('e'), now[i].constData());
            const QList<QByteArray> a = now[i].split(';');
            const QList<QByteArray> b = before[i].split(';');
            QCOMPARE(a.size(), b.size());
            for (qsizetype c = 0; c + 1 < a.size(); ++c)
                QCOMPARE(a[c].toDouble(), b[c].toDouble());
        }
        // The pulse crosses zero a few times per second of recording.
        QVERIFY(changed > 2);
        QVERIFY(readAll(path).contains(";0.0000"));
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
