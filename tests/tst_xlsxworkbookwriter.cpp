#include "storage/XLSXHelper.h"
#include "storage/XLSXWorkbookWriter.h"
#include "support/XlsxReader.h"

#include <QDateTime>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <xlsxwriter.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

namespace {
// The workbook as the spreadsheet library writes it on its own, the way exports were written
// before their sheets were written directly: what the faster writer must reproduce.
bool libraryWorkbook(const QList<XLSXSheet> &sheets, const QString &path)
{
    lxw_workbook_options options = {};
    options.constant_memory = LXW_TRUE;
    options.use_zip64 = LXW_TRUE;
    const QByteArray name = QFile::encodeName(path);
    lxw_workbook *workbook = workbook_new_opt(name.constData(), &options);
    if (!workbook)
        return false;
    lxw_format *dateFormat = workbook_add_format(workbook);
    format_set_num_format(dateFormat, "yyyy-mm-dd hh:mm:ss");
    QStringList taken;
    bool ok = true;
    for (const XLSXSheet &s : sheets) {
        const QString sheetName = XLSXHelper::sheetName(s.first, taken);
        taken << sheetName;
        lxw_worksheet *sheet = workbook_add_worksheet(workbook, sheetName.toUtf8().constData());
        // The first column as wide as its titles, by the rule the export uses.
        qsizetype longest = 0;
        for (qsizetype r = 0; r < s.second.size() && r < 64; ++r) {
            if (!s.second[r].isEmpty() && !XLSXHelper::isNumber(s.second[r].first()))
                longest = std::max(longest, s.second[r].first().toString().size());
        }
        const double width = std::min(60.0, double(longest) * 1.1 + 2);
        if (sheet && width > 8.43)
            worksheet_set_column(sheet, 0, 0, width, nullptr);
        ok = ok && sheet && XLSXHelper::fillSheet(sheet, s.second, 0, 0, dateFormat);
    }
    return workbook_close(workbook) == LXW_NO_ERROR && ok;
}

// Python's zip module compares the two archives member by member: the names of the members
// whose content differs, or that only one of them has. The document properties hold the time
// of writing and are left out.
QString differingMembers(const QString &a, const QString &b)
{
    QProcess p;
    p.start(QStringLiteral("/usr/bin/python3"),
            {QStringLiteral("-c"),
             QStringLiteral("import sys, zipfile\n"
                            "a, b = (zipfile.ZipFile(p) for p in sys.argv[1:3])\n"
                            "names = set(a.namelist()) | set(b.namelist())\n"
                            "names.discard('docProps/core.xml')\n"
                            "print(' '.join(sorted(n for n in names if n not in a.namelist() or "
                            "n not in b.namelist() or a.read(n) != b.read(n))))\n"),
             a, b});
    if (!p.waitForFinished(120000) || p.exitCode() != 0)
        return QStringLiteral("python: ") + QString::fromUtf8(p.readAllStandardError());
    return QString::fromUtf8(p.readAllStandardOutput()).trimmed();
}

XLSXTable recording(int samples, int seed)
{
    // Scaled 16-bit samples, as a record's file gives them: long decimals, and values that
    // cross zero where the tiny ones are.
    std::mt19937 engine(seed);
    std::uniform_int_distribution<int> digital(-32768, 32767);
    XLSXTable table = {{QStringLiteral("SBP"), 118.25, QStringLiteral("mmHg")},
                       {QStringLiteral("Rodent"), QStringLiteral("rat 17")},
                       {},
                       {QStringLiteral("Sampling rate"), 1000.0},
                       {QStringLiteral("Pressure, mmHg"), QStringLiteral("PPG, V")}};
    for (int i = 0; i < samples; ++i)
        table << QList<QVariant>{digital(engine) * (300.0 / 65535.0),
                                 std::sin(i * 0.0377) * 0.3 + digital(engine) * 1e-9};
    return table;
}
} // namespace

class TestXlsxWorkbookWriter : public QObject
{
    Q_OBJECT
private slots:
    // Every part of an export, sheets included, must be what the library itself writes for the
    // same tables, byte for byte: cell values, texts, dates, the used range, the column width.
    void workbookHoldsWhatTheLibraryWrites_data()
    {
        QTest::addColumn<QList<XLSXSheet>>("sheets");
        const QDateTime start(QDate(2026, 11, 21), QTime(9, 0, 1, 500));
        const XLSXTable summary = {
            {QStringLiteral("Name"), QStringLiteral("SBP"), QStringLiteral("Start")},
            {QStringLiteral("rat 1"), 121.5, start},
            {QStringLiteral("rat 2"), 80, QDateTime()},
            {QStringLiteral("rat <3> & co"), true, false},
        };
        const XLSXTable awkward = {
            {QVariant(), QString(), 2.99e-05, -0.0, 1e20, 1e-300},
            {},
            {0.1 + 0.2, std::nan(""), std::numeric_limits<double>::infinity(), 1.0f / 3.0f},
            {std::numeric_limits<qulonglong>::max(), qint64(-123456789012345), short(-7)},
            {QStringLiteral(" lead"), QStringLiteral("tail\t"), QStringLiteral("a\x01b\r\nc"),
             QStringLiteral("Крыса \"2\" 'x'"), QStringLiteral("_x0041_")},
            {QVariant(), QVariant(), QVariant(), QVariant(), QVariant(), QVariant(), 7},
        };
        QTest::newRow("summary and records")
            << QList<XLSXSheet>{{QStringLiteral("Summary"), summary},
                                {QStringLiteral("2026-11-21_09-00-00"), recording(20000, 1)},
                                {QStringLiteral("2026-11-21_09-00-00"), recording(3000, 2)}};
        QTest::newRow("odd cells, no dates")
            << QList<XLSXSheet>{{QStringLiteral("a/b:c"), awkward},
                                {QStringLiteral("empty"), XLSXTable{{}, {QString()}}},
                                {QStringLiteral("one cell"), XLSXTable{{}, {QVariant(), 5}}}};
        QTest::newRow("no sheets") << QList<XLSXSheet>{};
    }
    void workbookHoldsWhatTheLibraryWrites()
    {
        QFETCH(QList<XLSXSheet>, sheets);
        if (!QFile::exists(QStringLiteral("/usr/bin/python3")))
            QSKIP("no /usr/bin/python3 to read the archives");
        QTemporaryDir dir;
        const QString before = dir.filePath(QStringLiteral("library.xlsx"));
        const QString now = dir.filePath(QStringLiteral("export.xlsx"));
        QList<XLSXSheet> expected = sheets;
        if (expected.isEmpty()) // a workbook always has a sheet
            expected << XLSXSheet{QStringLiteral("Sheet1"), {}};
        QVERIFY(libraryWorkbook(expected, before));
        QVERIFY(XLSXHelper::dataToXLSX(sheets, now));
        QCOMPARE(differingMembers(before, now), QString());
        if (XlsxReader::available())
            QCOMPARE(XlsxReader::read(now), XlsxReader::read(before));
    }

    // The C library's "%.16G" is what the sheets held before; its digits, found by slow
    // arbitrary precision, must come out the same from the fast conversion.
    void numbersHaveTheDigitsOfPrintf()
    {
        std::mt19937_64 engine(11);
        std::uniform_real_distribution<double> unit(-1.0, 1.0);
        std::uniform_int_distribution<int> exponent(-320, 308);
        QList<double> values = {0.0,
                                -0.0,
                                1.0,
                                0.1,
                                2.99e-05,
                                1e15,
                                1e16,
                                1e17,
                                1e-5,
                                1e-4,
                                123456789012345678.0,
                                5e-324,
                                1.7e308,
                                0.30000000000000004};
        for (int i = 0; i < 200000; ++i)
            values << unit(engine) * std::pow(10.0, exponent(engine));
        for (int i = 0; i < 20000; ++i)
            values << std::round(unit(engine) * 32768) * (300.0 / 65535.0);
        int wrong = 0;
        for (const double v : std::as_const(values)) {
            char printed[64];
            std::snprintf(printed, sizeof printed, "%.16G", v);
            char fast[64];
            const int n = XLSXWorkbookWriter::numberText(v, fast);
            if (QByteArray(fast, n) != QByteArray(printed) && ++wrong < 5)
                qWarning() << v << printed << QByteArray(fast, n);
        }
        QCOMPARE(wrong, 0);
    }

    void sheetBeyondTheLimitsFailsAndLeavesNoFile_data()
    {
        QTest::addColumn<XLSXTable>("table");
        QTest::newRow("too many columns") << XLSXTable{QList<QVariant>(16385, 1.0)};
        QTest::newRow("text too long")
            << XLSXTable{{QStringLiteral("ok")}, {QString(32768, QLatin1Char('x'))}};
    }
    void sheetBeyondTheLimitsFailsAndLeavesNoFile()
    {
        QFETCH(XLSXTable, table);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("big.xlsx"));
        QString error;
        QVERIFY(!XLSXHelper::dataToXLSX({{QStringLiteral("big"), table}}, path, &error));
        QVERIFY(!error.isEmpty());
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
        // Just inside the limit is fine, as for the library.
        XLSXTable fits = table;
        fits.last().removeLast();
        if (fits.last().isEmpty())
            fits.last() << QString(32767, QLatin1Char('x'));
        QVERIFY(XLSXHelper::dataToXLSX({{QStringLiteral("big"), fits}}, path, &error));
    }
};

QTEST_GUILESS_MAIN(TestXlsxWorkbookWriter)
#include "tst_xlsxworkbookwriter.moc"
