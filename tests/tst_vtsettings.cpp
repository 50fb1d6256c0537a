#include "support/RecordFiles.h"
#include "support/SampleSettings.h"

#include "settings/MetaDescriptor.h"

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#endif

Q_DECLARE_METATYPE(VTSettings::VTSettingsFormat)

using RecordFiles::readAll;

class VTSettingsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void everyValueTypeSurvivesAFileRoundTrip_data()
    {
        QTest::addColumn<VTSettings::VTSettingsFormat>("format");
        QTest::newRow("XML") << VTSettings::XML;
        QTest::newRow("JSON") << VTSettings::JSON;
    }
    void everyValueTypeSurvivesAFileRoundTrip()
    {
        QFETCH(VTSettings::VTSettingsFormat, format);
        const QString path = m_dir.filePath(QStringLiteral("roundtrip-%1").arg(int(format)));
        SampleSettings written(path, false, format);
        // A value of every kind, unlike the defaults, so one not written or not read shows up.
        const QVariantMap values = {
            {"Language", QStringLiteral("ru_RU")},
            {"Flag", false},
            {"Count", 42},
            {"Ratio", 0.1},
            {"Gain", QVariant::fromValue(0.3f)},
            {"Name", QStringLiteral("Rat <7> & \"co\"\n  second line ")},
            {"Tint", QColor(1, 2, 3, 4)},
            {"Kind", QVariant::fromValue(SampleSettings::Mode::Beta)},
            {"Blob", QByteArray("\x00\x01zz\xff", 5)},
            {"Anchor", QPointF(0.5, -1.25)},
            {"Stamp", QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5, 678), Qt::UTC)},
            {"Labels", QVariantMap{{"first key", "v1"}, {"a&b", "<x>"}, {"empty", ""}}},
        };
        for (auto it = values.cbegin(); it != values.cend(); ++it)
            QVERIFY2(written.setValue(it.key(), it.value()), qPrintable(it.key()));
        QVERIFY(written.save());

        SampleSettings read(path, false, format);
        read.loadDefaults();
        QVERIFY(read.reload());
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            const QVariant back = read.getValue(it.key()), sent = written.getValue(it.key());
            QVERIFY2(back == sent && back.metaType() == sent.metaType(), qPrintable(it.key()));
        }
    }
    void loadingKeepsWhatItCanRead_data()
    {
        QTest::addColumn<VTSettings::VTSettingsFormat>("format");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<double>("ratio");
        QTest::addColumn<bool>(
            "keptAside"); // unparsable as a whole: copied to .bad, defaults apply
        // From another version: the value after an unparsable one is still read.
        QTest::newRow("unparsable value")
            << VTSettings::XML
            << QByteArray("<SampleSettings><Count>many</Count><Ratio>0.5</Ratio>"
                          "</SampleSettings>")
            << 0.5 << false;
        QTest::newRow("XML cut off after a value")
            << VTSettings::XML << QByteArray("<SampleSettings>\n<Count>9</Count>\n<Ratio>0.5")
            << 0.25 << true;
        QTest::newRow("JSON array") << VTSettings::JSON << QByteArray("[1, 2]") << 0.25 << true;
    }
    void loadingKeepsWhatItCanRead()
    {
        QFETCH(VTSettings::VTSettingsFormat, format);
        QFETCH(QByteArray, content);
        QFETCH(bool, keptAside);
        const QString path = m_dir.filePath(QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(RecordFiles::writeAll(path, content));

        SampleSettings settings(path, false, format);
        settings.setValue(QStringLiteral("Count"), 3);
        settings.setValue(QStringLiteral("Flag"), false);
        settings.setAutoSave(true);
        QVERIFY(settings.reload());
        QCOMPARE(settings.getValue(QStringLiteral("Count")).toInt(), keptAside ? 7 : 3);
        QTEST(settings.getValue(QStringLiteral("Ratio")).toDouble(), "ratio");
        QCOMPARE(settings.getValue(QStringLiteral("Flag")).toBool(), keptAside);
        QCOMPARE(readAll(path + QStringLiteral(".bad")), keptAside ? content : QByteArray());
        QCOMPARE(readAll(path), content); // loading never writes, even with automatic saving on
    }
    void interruptedSaveLeavesThePreviousFileIntact()
    {
#ifndef Q_OS_UNIX
        QSKIP("needs fork and kill");
#else
        // A child process saves a large file over and over and is killed at some moment; whatever
        // the moment, the file must still be one complete save, never a truncated one.
        const QString path = m_dir.filePath(QStringLiteral("interrupted.xml"));
        QVariantMap labels;
        for (int i = 0; i < 20000; ++i)
            labels.insert(QStringLiteral("key %1").arg(i), QStringLiteral("value %1").arg(i));
        SampleSettings first(path, false);
        first.setValue(QStringLiteral("Labels"), labels);
        first.setValue(QStringLiteral("Count"), 1);
        QVERIFY(first.save());
        for (int attempt = 0; attempt < 20; ++attempt) {
            const pid_t child = fork();
            QVERIFY(child >= 0);
            if (child == 0) {
                first.setAutoSave(true);
                for (int i = 1;; ++i)
                    first.setProperty("Count", 1 + i % 2);
            }
            QTest::qSleep(10 + attempt * 7); // a real process is killed in real time
            kill(child, SIGKILL);
            int status = 0;
            waitpid(child, &status, 0);
            QVERIFY(WIFSIGNALED(status));

            SampleSettings reader(path, false);
            QVERIFY(reader.descriptor()->load(path));
            QCOMPARE(reader.getValue(QStringLiteral("Labels")).toMap().size(), labels.size());
            const int count = reader.getValue(QStringLiteral("Count")).toInt();
            QVERIFY(count == 1 || count == 2);
        }
#endif
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(VTSettingsTest)
#include "tst_vtsettings.moc"
