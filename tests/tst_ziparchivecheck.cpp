#include "storage/XLSXHelper.h"
#include "storage/ZipArchiveCheck.h"
#include "support/RecordFiles.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {
// An archive written by Python's own zip module, so the members can be anything a test wants.
bool pythonZip(const QString &path, const QString &member, const QByteArray &content)
{
    QProcess p;
    p.start(QStringLiteral("/usr/bin/python3"),
            {QStringLiteral("-c"),
             QStringLiteral("import sys, zipfile\n"
                            "with zipfile.ZipFile(sys.argv[1], 'w', zipfile.ZIP_DEFLATED) as z:\n"
                            "    z.writestr(sys.argv[2], sys.stdin.buffer.read())\n"),
             path, member});
    p.write(content);
    p.closeWriteChannel();
    return p.waitForFinished(30000) && p.exitCode() == 0;
}

QStringList sheets(int count)
{
    QStringList parts = {"[Content_Types].xml", "xl/workbook.xml"};
    for (int i = 1; i <= count; ++i)
        parts << QStringLiteral("xl/worksheets/sheet%1.xml").arg(i);
    return parts;
}
} // namespace

class TestZipArchiveCheck : public QObject
{
    Q_OBJECT
private slots:
    void workbookDamageIsFound_data()
    {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<int>("required");
        QTest::addColumn<bool>("complete");
        QTest::newRow("whole") << "" << 2 << true;
        QTest::newRow("a sheet missing") << "" << 3 << false;
        QTest::newRow("end cut off") << "cut end" << 2 << false;
        QTest::newRow("cut in half") << "cut half" << 2 << false;
        QTest::newRow("a byte of the first member changed") << "flip" << 2 << false;
    }
    void workbookDamageIsFound()
    {
        QFETCH(QString, damage);
        QFETCH(int, required);
        QFETCH(bool, complete);
        QTemporaryDir dir;
        const QString path = dir.filePath("book.xlsx");
        XLSXTable table;
        for (int i = 0; i < 2000; ++i)
            table << QList<QVariant>{i, i * 0.5, QStringLiteral("text %1").arg(i)};
        QVERIFY(XLSXHelper::dataToXLSX({{"One", table}, {"Two", table}}, path));
        QByteArray bytes = RecordFiles::readAll(path);
        if (damage == QLatin1String("cut end"))
            bytes.chop(30);
        else if (damage == QLatin1String("cut half"))
            bytes.truncate(bytes.size() / 2);
        else if (damage == QLatin1String("flip")) {
            // The first member's data begin behind its 30-byte header, name and extra field.
            const int start = 30 + uchar(bytes[26]) + 256 * uchar(bytes[27]) + uchar(bytes[28]) +
                              256 * uchar(bytes[29]);
            bytes[start + 5] = char(bytes[start + 5] ^ 0x55);
        }
        QVERIFY(RecordFiles::writeAll(path, bytes));
        QString why;
        QCOMPARE(ZipArchiveCheck::isComplete(path, sheets(required), &why), complete);
        QCOMPARE(why.isEmpty(), complete);
    }

    void unfinishedXmlIsFound_data()
    {
        QTest::addColumn<QByteArray>("sheet");
        QTest::addColumn<bool>("complete");
        QTest::newRow("finished") << QByteArray("<?xml version=\"1.0\"?><worksheet><sheetData>"
                                                "<row r=\"1\"/></sheetData></worksheet>")
                                  << true;
        // What a sheet looks like when its temporary file could not be written to the end: the
        // archive around it is sound.
        QTest::newRow("cut inside a row")
            << QByteArray("<?xml version=\"1.0\"?><worksheet><sheetData><row r=\"1\"><c r=\"A1\">")
            << false;
        QTest::newRow("empty") << QByteArray() << false;
        QByteArray rows;
        for (int i = 0; i < 60000; ++i)
            rows += "<row r=\"" + QByteArray::number(i) + "\"><c><v>1.25</v></c></row>";
        const QByteArray head("<?xml version=\"1.0\"?><worksheet><sheetData>");
        QTest::newRow("long sheet, finished") << head + rows + "</sheetData></worksheet>\n" << true;
        QTest::newRow("long sheet, cut off") << head + rows << false;
    }
    void unfinishedXmlIsFound()
    {
        QFETCH(QByteArray, sheet);
        QFETCH(bool, complete);
        QTemporaryDir dir;
        const QString path = dir.filePath("made.zip");
        QVERIFY(pythonZip(path, "xl/worksheets/sheet1.xml", sheet));
        QCOMPARE(ZipArchiveCheck::isComplete(path, {"xl/worksheets/sheet1.xml"}), complete);
    }
};

QTEST_GUILESS_MAIN(TestZipArchiveCheck)
#include "tst_ziparchivecheck.moc"
