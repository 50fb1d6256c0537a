#include "toolkit/ConnectionHelper.h"
#include "toolkit/LogCapture.h"
#include "toolkit/QuorvexCommon.h"
#include "toolkit/Transliteration.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

class TestToolkit : public QObject
{
    Q_OBJECT
private slots:
    void dateTimeFileStringIsSafeInFileNames()
    {
        const QDateTime dt(QDate(2026, 3, 7), QTime(9, 5, 4, 321));
        QCOMPARE(QuorvexCommon::dateTimeFileString(dt), QStringLiteral("2026-03-07_09-05-04"));
        QCOMPARE(QuorvexCommon::dateTimeFileString(dt, false), QStringLiteral("2026-03-07_09-05"));
        // A null date-time means now: it must still be a usable, sortable name.
        const QString now = QuorvexCommon::dateTimeFileString(QDateTime());
        QCOMPARE(now.size(), 19);
        QVERIFY(now.startsWith(QString::number(QDate::currentDate().year())));
        for (const QChar c : now)
            QVERIFY(!QStringLiteral("\\/:*?\"<>| ").contains(c));
    }
    void timeToText_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("fraction dropped") << 59.99 << "0:59";
        QTest::newRow("minutes") << 754.0 << "12:34";
        QTest::newRow("hours") << 3723.0 << "1:02:03";
        QTest::newRow("negative") << -65.0 << "-1:05";
        QTest::newRow("nan") << qQNaN() << "-";
    }
    void timeToText()
    {
        QFETCH(double, seconds);
        QTEST(QuorvexCommon::timeToText(seconds), "text");
    }
    void transliteration_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("ascii");
        QTest::newRow("ascii unchanged") << "rat 7; cage (4)"
                                         << "rat 7; cage (4)";
        QTest::newRow("russian, capitals kept") << "Крыса Жужа ЦЫП"
                                                << "Krysa Zhuzha TsYP";
        QTest::newRow("soft and hard signs vanish") << "Мышь подъём"
                                                    << "Mysh podyom";
        QTest::newRow("accents dropped") << "Müller Ångström"
                                         << "Muller Angstrom";
        QTest::newRow("no ascii form") << "鼠 1"
                                       << "? 1";
    }
    void transliteration()
    {
        QFETCH(QString, text);
        QTEST(Transliteration::toAscii(text), "ascii");
    }

    void createDirMakesParentsAndRefusesAFile()
    {
        QTemporaryDir dir;
        const QString nested = dir.filePath(QStringLiteral("a/b/c"));
        QVERIFY(QuorvexCommon::CreateDirIfNotExists(nested));
        QVERIFY(QFileInfo(nested).isDir());
        QVERIFY(QuorvexCommon::CreateDirIfNotExists(nested)); // already there
        QFile file(dir.filePath(QStringLiteral("plain")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        QVERIFY(!QuorvexCommon::CreateDirIfNotExists(file.fileName()));
        QVERIFY(!QuorvexCommon::CreateDirIfNotExists(QString()));
    }
    void connectionHelperDropsConnections()
    {
        QTimer source;
        int calls = 0;
        {
            ConnectionHelper helper;
            helper << connect(&source, &QTimer::objectNameChanged, this, [&] { ++calls; });
            helper.add(connect(&source, &QTimer::objectNameChanged, this, [&] { ++calls; }));
            QCOMPARE(helper.count(), 2);
            source.setObjectName(QStringLiteral("one"));
            QCOMPARE(calls, 2);
        }
        source.setObjectName(QStringLiteral("two"));
        QCOMPARE(calls, 2);
    }
    void logCaptureNestsAndRestores()
    {
        LogCapture outer;
        qDebug() << "PORT NOT OPEN" << 1;
        {
            LogCapture inner;
            qDebug() << "GOT SN/DT";
            QCOMPARE(inner.lines().size(), 1);
            QVERIFY(!inner.contains(QStringLiteral("PORT NOT OPEN")));
        }
        qDebug() << "PORT NOT OPEN" << 2;
        QCOMPARE(outer.count(QStringLiteral("PORT NOT OPEN")), 2);
        QVERIFY(outer.contains(QStringLiteral("GOT SN/DT")));
    }
};

QTEST_GUILESS_MAIN(TestToolkit)
#include "tst_toolkit.moc"
