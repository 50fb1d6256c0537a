#include "storage/ZipArchiveCheck.h"
#include "storage/ZipStreamWriter.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {
// The archive as Python's own zip module reads it: {member name: content}.
QJsonObject pythonRead(const QString &path)
{
    QProcess p;
    p.start(QStringLiteral("/usr/bin/python3"),
            {QStringLiteral("-c"),
             QStringLiteral("import sys, json, zipfile\n"
                            "z = zipfile.ZipFile(sys.argv[1])\n"
                            "json.dump({n: z.read(n).decode('latin-1') for n in z.namelist()}, "
                            "sys.stdout)\n"),
             path});
    if (!p.waitForFinished(120000) || p.exitCode() != 0)
        return {{QStringLiteral("error"), QString::fromUtf8(p.readAllStandardError())}};
    return QJsonDocument::fromJson(p.readAllStandardOutput()).object();
}

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
} // namespace

class TestZipStreamWriter : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        if (!QFile::exists(QStringLiteral("/usr/bin/python3")))
            QSKIP("no /usr/bin/python3 to read the archives");
    }

    // Deflated members written in pieces, an empty one, and one taken over as another archive
    // stores it; with more members than the plain directory can count, the archive needs its
    // zip64 end records.
    void membersReadBackWithAnIndependentReader_data()
    {
        QTest::addColumn<int>("extraMembers");
        QTest::newRow("a workbook's few") << 3;
        QTest::newRow("more than 65535") << 70000;
    }
    void membersReadBackWithAnIndependentReader()
    {
        QFETCH(int, extraMembers);
        QTemporaryDir dir;
        const QString other = dir.filePath(QStringLiteral("other.zip"));
        const QByteArray styles =
            QByteArray("<styleSheet>") + QByteArray(5000, 'x') + "</styleSheet>";
        QVERIFY(pythonZip(other, QStringLiteral("xl/styles.xml"), styles));
        QList<ZipStreamWriter::StoredMember> stored;
        QVERIFY(ZipStreamWriter::readMembers(other, &stored));
        QCOMPARE(stored.size(), 1);

        QByteArray big = "<sheetData>";
        for (int i = 0; i < 200000; ++i)
            big += "<row r=\"" + QByteArray::number(i) + "\"/>";
        big += "</sheetData>";
        const QString path = dir.filePath(QStringLiteral("out.zip"));
        ZipStreamWriter zip(path);
        QVERIFY(zip.open());
        QVERIFY(zip.beginMember(QStringLiteral("xl/worksheets/sheet1.xml")));
        for (qsizetype at = 0; at < big.size(); at += 70001)
            QVERIFY(zip.write(big.mid(at, 70001)));
        QVERIFY(zip.endMember());
        QVERIFY(zip.beginMember(QStringLiteral("empty.bin")));
        QVERIFY(zip.endMember());
        const ZipStreamWriter::StoredMember &s = stored.first();
        QVERIFY(zip.copyMember(s.name, s.method, s.crc, s.packed, s.size));
        for (int i = 0; i < extraMembers; ++i) {
            QVERIFY(zip.beginMember(QStringLiteral("m/%1").arg(i)));
            QVERIFY(zip.write(QByteArray::number(i)));
            QVERIFY(zip.endMember());
        }
        QVERIFY(zip.finish());

        const QJsonObject read = pythonRead(path);
        QCOMPARE(read.size(), 3 + extraMembers);
        QCOMPARE(read.value(QStringLiteral("xl/worksheets/sheet1.xml")).toString().toLatin1(), big);
        QCOMPARE(read.value(QStringLiteral("empty.bin")).toString(), QString());
        QCOMPARE(read.value(QStringLiteral("xl/styles.xml")).toString().toLatin1(), styles);
        QCOMPARE(read.value(QStringLiteral("m/%1").arg(extraMembers - 1)).toString(),
                 QString::number(extraMembers - 1));
        QString why;
        QVERIFY2(ZipArchiveCheck::isComplete(path, {QStringLiteral("xl/styles.xml")}, &why),
                 qPrintable(why));
    }

    void callsOutOfTurnFail()
    {
        QTemporaryDir dir;
        ZipStreamWriter zip(dir.filePath(QStringLiteral("out.zip")));
        QVERIFY(zip.open());
        QVERIFY(!zip.write(QByteArray("no member yet")));
        QVERIFY(!zip.ok());
        // The first fault stays, and nothing after it succeeds.
        QVERIFY(!zip.beginMember(QStringLiteral("a.xml")));
        QVERIFY(!zip.finish());
        QVERIFY(zip.errorString().contains(QLatin1String("outside a member")));
    }
};

QTEST_GUILESS_MAIN(TestZipStreamWriter)
#include "tst_zipstreamwriter.moc"
