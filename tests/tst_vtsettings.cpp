#include "support/RecordFiles.h"
#include "support/SampleSettings.h"

#include "settings/MetaDescriptor.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
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
    // Count 3 and Flag false are set before reading; the defaults are Count 7, Ratio 0.25.
    void damagedFileNoLongerResetsWhatWasReadBeforeTheDamage_data()
    {
        QTest::addColumn<VTSettings::VTSettingsFormat>("format");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("count");
        QTest::addColumn<double>("ratio");
        QTest::addColumn<bool>("damaged");
        // From another version: the value after an unparsable one is still read.
        QTest::newRow("unparsable value")
            << VTSettings::XML
            << QByteArray("<SampleSettings><Count>many</Count><Ratio>0.5</Ratio>"
                          "</SampleSettings>")
            << 3 << 0.5 << false;
        QTest::newRow("XML cut off after a value")
            << VTSettings::XML << QByteArray("<SampleSettings>\n<Count>9</Count>\n<Ratio>0.5") << 9
            << 0.25 << true;
        QTest::newRow("JSON array")
            << VTSettings::JSON << QByteArray("[1, 2]") << 3 << 0.25 << true;
    }
    void damagedFileNoLongerResetsWhatWasReadBeforeTheDamage()
    {
        QFETCH(VTSettings::VTSettingsFormat, format);
        QFETCH(QByteArray, content);
        QFETCH(bool, damaged);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("settings"));
        QVERIFY(RecordFiles::writeAll(path, content));

        SampleSettings settings(path, false, format);
        settings.loadDefaults();
        settings.setValue(QStringLiteral("Count"), 3);
        settings.setValue(QStringLiteral("Flag"), false);
        settings.setAutoSave(true);
        QVERIFY(settings.reload());
        QTEST(settings.getValue(QStringLiteral("Count")).toInt(), "count");
        QTEST(settings.getValue(QStringLiteral("Ratio")).toDouble(), "ratio");
        QCOMPARE(settings.getValue(QStringLiteral("Flag")).toBool(), false);
        QCOMPARE(settings.fileState(),
                 damaged ? VTSettings::FileState::Damaged : VTSettings::FileState::Read);
        // Reading writes nothing, not even a copy, with automatic saving on.
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{"settings"});
        QCOMPARE(readAll(path), content);

        // The first save keeps the damaged file before it replaces it.
        settings.setProperty("Count", 11);
        QCOMPARE(readAll(path + QStringLiteral(".bad")), damaged ? content : QByteArray());
        SampleSettings back(path, false, format);
        QVERIFY(back.reload());
        QCOMPARE(back.getValue(QStringLiteral("Count")).toInt(), 11);
    }
    void keepAsideNoLongerDeletesAnEarlierCopy()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("Settings.xml"));
        const QByteArrayList damage = {"<SampleSettings><Count>1", "<SampleSettings><Count>2",
                                       "{not json"};
        QStringList kept;
        for (const QByteArray &bytes : damage) {
            QVERIFY(RecordFiles::writeAll(path, bytes));
            SampleSettings settings(path, false);
            settings.reload();
            QVERIFY(settings.save());
            kept << QFileInfo(settings.keptCopy()).fileName();
        }
        QCOMPARE(kept,
                 (QStringList{"Settings.xml.bad", "Settings.xml.2.bad", "Settings.xml.3.bad"}));
        for (int i = 0; i < damage.size(); ++i)
            QCOMPARE(readAll(dir.filePath(kept[i])), damage[i]);
    }
    // A file the program may not read keeps whatever it holds: no default is ever written over
    // it, and the failure is announced once per attempt for the window to report.
    void unreadableFileIsNoLongerOverwrittenWithDefaults()
    {
#ifndef Q_OS_UNIX
        QSKIP("needs POSIX permissions");
#else
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("Settings.xml"));
        const QByteArray content("<SampleSettings><Count>42</Count></SampleSettings>");
        QVERIFY(RecordFiles::writeAll(path, content));
        QVERIFY(QFile::setPermissions(path, QFileDevice::WriteOwner));
        // Root reads any file; run as an ordinary user for as long as the settings are read.
        const bool root = geteuid() == 0;
        if (root) {
            QVERIFY(QFile::setPermissions(dir.path(), QFileDevice::Permissions(0x7777)));
            QVERIFY(seteuid(65534) == 0);
        }
        SampleSettings settings(path, true);
        settings.reload();
        const VTSettings::FileState state = settings.fileState();
        QSignalSpy failures(&settings, &VTSettings::saveFailed);
        settings.setProperty("Count", 5);
        const bool saved = settings.save();
        if (root)
            QVERIFY(seteuid(0) == 0);
        QCOMPARE(state, VTSettings::FileState::Unreadable);
        QCOMPARE(settings.getValue(QStringLiteral("Count")).toInt(), 5);
        QVERIFY(!saved);
        QCOMPARE(failures.size(), 2); // the automatic save and the explicit one
        QVERIFY(settings.lastSaveFailed());
        QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
        QCOMPARE(readAll(path), content);
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{"Settings.xml"});
#endif
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
