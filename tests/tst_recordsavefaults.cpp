#include "analysis/CorvidaOnlineExperiment.h"
#include "settings/CorvidaSettings.h"
#include "storage/EDFWriter.h"
#include "storage/RecordDatabase.h"
#include "storage/XLSXHelper.h"
#include "storage/ZipArchiveCheck.h"
#include "support/EdfLibProbe.h"
#include "support/RecordFiles.h"
#include "support/ScratchDisk.h"
#include "support/TailCuff.h"
#include "toolkit/QuorvexCommon.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>
#include <csignal>
#include <memory>
#include <optional>
#include <sys/resource.h>
#include <unistd.h>

namespace {
const QDateTime kStart(QDate(2026, 3, 14), QTime(9, 26, 53, 589));

// A measurement with markers to write, taken at a fixed second so that saves collide.
std::unique_ptr<CorvidaOnlineExperiment> measurement()
{
    std::unique_ptr<CorvidaOnlineExperiment> e = TailCuff::measurement();
    e->setStartDateTime(kStart);
    e->recalculate(false);
    return e;
}

// While it lives, no file of this process may grow past `bytes`: a write beyond fails as on a
// full disk, with no root needed (the signal the system would send is ignored).
struct FileSizeLimit {
    rlimit old = {};
    explicit FileSizeLimit(qint64 bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &old);
        rlimit limited = old;
        limited.rlim_cur = rlim_t(bytes);
        ::setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit() { ::setrlimit(RLIMIT_FSIZE, &old); }
};

QStringList filesIn(const QString &dir)
{
    QStringList names =
        QDir(dir).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    names.removeAll(QStringLiteral("filler"));
    return names;
}

// The bytes of every file of the folder, to show that nothing of it changed.
QMap<QString, QByteArray> snapshot(const QString &dir)
{
    QMap<QString, QByteArray> files;
    for (const QString &name : filesIn(dir))
        files.insert(name, RecordFiles::readAll(QDir(dir).filePath(name)));
    return files;
}

QString baseName()
{
    return QuorvexCommon::dateTimeFileString(kStart, true);
}

// Run as a child process: saves a measurement into `folder` and is killed at `point` of the save.
int killedSave(const QString &folder, const QString &point)
{
    std::unique_ptr<CorvidaOnlineExperiment> e = measurement();
    const auto die = [] { std::raise(SIGKILL); };
    if (point == QLatin1String("recording written"))
        QObject::connect(e.get(), &VTSettings::filePathChanged, die);
    else
        QObject::connect(e.get(), &VTSettings::saved, die);
    QString error;
    e->save(folder, &error);
    return 3; // not killed: the parent sees the wrong exit
}
} // namespace

class TestRecordSaveFaults : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void saveOnFullDiskFailsAndKeepsEarlierRecord_data()
    {
        QTest::addColumn<QString>("limit");
        QTest::newRow("disk full while writing the recording") << "disk";
        QTest::newRow("room for the recording, none for its properties") << "recording only";
        // Needs no root: the system refuses to let the file grow past the limit.
        QTest::newRow("file size limit") << "file size";
    }
    void saveOnFullDiskFailsAndKeepsEarlierRecord()
    {
        QFETCH(QString, limit);
        QTemporaryDir scratch;
        QVERIFY(measurement()->save(scratch.path()));
        const qint64 recordingBytes =
            QFileInfo(scratch.filePath(baseName() + QStringLiteral(".edf"))).size();

        ScratchDisk disk(4 << 20);
        const bool sizeLimit = limit == QLatin1String("file size");
        if (!sizeLimit && !disk.isMounted())
            QSKIP(qPrintable(disk.whyNot()));
        const QString folder = sizeLimit ? scratch.path() : disk.path();
        if (!sizeLimit)
            QVERIFY(measurement()->save(folder)); // the earlier record of the same second
        const auto before = snapshot(folder);
        const qint64 pages = (recordingBytes + 4095) / 4096;
        if (!sizeLimit)
            QVERIFY(disk.fill(limit == QLatin1String("recording only") ? pages * 4096 : 8192));

        std::unique_ptr<CorvidaOnlineExperiment> e = measurement();
        QString error;
        std::optional<FileSizeLimit> limited;
        if (sizeLimit)
            limited.emplace(recordingBytes / 2);
        const bool saved = e->save(folder, &error);
        limited.reset();
        QVERIFY(!saved);
        QVERIFY2(error.contains(folder), qPrintable(error));
        if (!sizeLimit)
            QVERIFY2(error.contains(QStringLiteral("disk is full")), qPrintable(error));
        QVERIFY(e->getFilepath().isEmpty());
        QCOMPARE(snapshot(folder), before);
    }

    void writerCloseIgnoresFailedWrite_data()
    {
        QTest::addColumn<bool>("fileSizeLimit");
        QTest::newRow("full disk") << false;
        QTest::newRow("file size limit") << true;
    }
    void writerCloseIgnoresFailedWrite()
    {
        QFETCH(bool, fileSizeLimit);
        ScratchDisk disk(64 * 1024);
        QTemporaryDir plain;
        if (!fileSizeLimit && !disk.isMounted())
            QSKIP(qPrintable(disk.whyNot()));
        const QString path = (fileSizeLimit ? plain.path() : disk.path()) + "/cut.edf";
        std::optional<FileSizeLimit> limited;
        if (fileSizeLimit)
            limited.emplace(40 * 1024);
        EDFWriter writer(path, {ChannelDim("A", 100.0), ChannelDim("B", 100.0)}, 1000);
        QVERIFY(writer.isOpen());
        const QList<float> samples(2 * 1000, 1.5f);
        for (int second = 0; second < 60; ++second)
            writer.writeData(samples);
        QVERIFY(!writer.close(true));
    }

    void propertiesOnFullDiskKeepTheirFile_data()
    {
        QTest::addColumn<bool>("settings");
        QTest::newRow("record properties") << false;
        QTest::newRow("Settings.xml") << true;
    }
    void propertiesOnFullDiskKeepTheirFile()
    {
        QFETCH(bool, settings);
        ScratchDisk disk(1 << 20);
        if (!disk.isMounted())
            QSKIP(qPrintable(disk.whyNot()));
        QString path;
        std::unique_ptr<VTSettings> store;
        if (settings) {
            path = disk.filePath(QStringLiteral("Settings.xml"));
            auto s = std::make_unique<CorvidaSettings>(path);
            QVERIFY(s->save());
            store = std::move(s);
        } else {
            std::unique_ptr<CorvidaOnlineExperiment> e = measurement();
            QVERIFY(e->save(disk.path()));
            path = e->getFilepath();
            store = std::move(e);
        }
        const QByteArray before = RecordFiles::readAll(path);
        QVERIFY(before.size() > 100);
        QVERIFY(disk.fill(0));
        // A longer text than before needs a new page the disk does not have.
        store->setValue(settings ? QStringLiteral("LastExportFolder") : QStringLiteral("Comment"),
                        QString(9000, QLatin1Char('c')));
        QVERIFY(!store->save());
        QCOMPARE(RecordFiles::readAll(path), before);
        QCOMPARE(filesIn(disk.path()).size(), settings ? 1 : 2);
    }

    void exportOnFullDiskLeavesNoFile_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("onlyTemporaryFull");
        QTest::newRow("CSV") << "out.csv" << false;
        QTest::newRow("XLSX") << "out.xlsx" << false;
        // The spreadsheet library wrote each sheet to a temporary file first and did not notice
        // when that write failed; the sheets now go straight into the workbook, so a full
        // temporary folder must not matter at all.
        QTest::newRow("XLSX, temporary folder full") << "out.xlsx" << true;
    }
    void exportOnFullDiskLeavesNoFile()
    {
        QFETCH(QString, name);
        QFETCH(bool, onlyTemporaryFull);
        ScratchDisk disk(1 << 20);
        if (!disk.isMounted())
            QSKIP(qPrintable(disk.whyNot()));
        QTemporaryDir elsewhere;
        const QString target =
            (onlyTemporaryFull ? elsewhere.path() : disk.path()) + QLatin1Char('/') + name;
        XLSXTable table;
        for (int i = 0; i < 40000; ++i)
            table << QList<QVariant>{i, i * 0.25, QStringLiteral("row %1").arg(i)};
        QVERIFY(disk.fill(64 * 1024));
        const QByteArray oldTmp = qgetenv("TMPDIR");
        if (onlyTemporaryFull)
            qputenv("TMPDIR", QFile::encodeName(disk.path()));
        QString error;
        const bool ok =
            name.endsWith(QLatin1String(".csv"))
                ? XLSXHelper::dataToCSV({{QStringLiteral("Sheet"), table}}, target,
                                        QStringLiteral(";"), QStringLiteral("\r\n"), &error)
                : XLSXHelper::dataToXLSX({{QStringLiteral("Sheet"), table}}, target, &error);
        if (onlyTemporaryFull) {
            qputenv("TMPDIR", oldTmp);
            QVERIFY2(ok, qPrintable(error));
            QString why;
            QVERIFY2(ZipArchiveCheck::isComplete(
                         target, {QStringLiteral("xl/worksheets/sheet1.xml")}, &why),
                     qPrintable(why));
            return;
        }
        QVERIFY(!ok);
        QVERIFY(!error.isEmpty());
        QVERIFY(!QFile::exists(target));
        QCOMPARE(filesIn(QFileInfo(target).path()), QStringList());
    }

    void saveIntoReadOnlyFolderFails()
    {
        ScratchDisk disk(1 << 20);
        // Root may write into any folder; only a read-only mount stops it.
        if (!disk.isMounted() && ::geteuid() == 0)
            QSKIP(qPrintable(disk.whyNot()));
        QTemporaryDir plain;
        const QString folder = disk.isMounted() ? disk.path() : plain.path();
        QVERIFY(measurement()->save(folder));
        const auto before = snapshot(folder);
        if (disk.isMounted())
            QVERIFY(disk.remountReadOnly());
        else
            QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));

        std::unique_ptr<CorvidaOnlineExperiment> e = measurement();
        QString error;
        const bool saved = e->save(folder, &error);
        QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QVERIFY(!saved);
        QVERIFY2(error.startsWith(QStringLiteral("Cannot open \"") + folder), qPrintable(error));
        QVERIFY(error.endsWith(QStringLiteral("for record")));
        QCOMPARE(snapshot(folder), before);
    }

    void twoSavesInOneSecondKeepBoth_data()
    {
        QTest::addColumn<QStringList>("present");
        QTest::addColumn<QString>("expected");
        const QString b = baseName();
        QTest::newRow("free") << QStringList() << b;
        QTest::newRow("record of the same second")
            << QStringList{b + ".edf", b + ".exp"} << b + " (2)";
        QTest::newRow("properties alone, other case")
            << QStringList{b.toUpper() + ".EXP"} << b + " (2)";
        QTest::newRow("recording alone, other case") << QStringList{b + ".EDF"} << b + " (2)";
        QTest::newRow("a save cut short") << QStringList{b + ".edf.part"} << b + " (2)";
        QTest::newRow("second and third taken")
            << QStringList{b + ".edf", b + " (2).edf", b + " (2).exp"} << b + " (3)";
    }
    void twoSavesInOneSecondKeepBoth()
    {
        QFETCH(QStringList, present);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        for (const QString &name : present)
            QVERIFY(RecordFiles::writeAll(dir.filePath(name), name.toUtf8()));
        const auto before = snapshot(dir.path());
        std::unique_ptr<CorvidaOnlineExperiment> e = measurement();
        QVERIFY(e->save(dir.path()));
        QCOMPARE(e->getFilepath(), dir.filePath(expected + ".exp"));
        QVERIFY(!EdfLibProbe::digitalSamples(dir.filePath(expected + ".edf")).isEmpty());
        for (auto it = before.cbegin(); it != before.cend(); ++it)
            QCOMPARE(RecordFiles::readAll(dir.filePath(it.key())), it.value());
        QCOMPARE(filesIn(dir.path()).size(), present.size() + 2);
    }

    void killedSaveLeavesEarlierRecordAndNoHalfPair_data()
    {
        QTest::addColumn<QString>("point");
        QTest::newRow("recording written, properties not") << "recording written";
        QTest::newRow("properties written, recording not in place") << "properties written";
    }
    void killedSaveLeavesEarlierRecordAndNoHalfPair()
    {
        QFETCH(QString, point);
        QTemporaryDir dir;
        QVERIFY(measurement()->save(dir.path()));
        const auto before = snapshot(dir.path());

        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("CORVIDA_KILLED_SAVE_FOLDER"), dir.path());
        env.insert(QStringLiteral("CORVIDA_KILLED_SAVE_POINT"), point);
        child.setProcessEnvironment(env);
        child.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(child.waitForFinished(60000));
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);

        // The earlier record is as it was, and the cut-short one is not listed as a record.
        for (auto it = before.cbegin(); it != before.cend(); ++it)
            QCOMPARE(RecordFiles::readAll(dir.filePath(it.key())), it.value());
        const QString second = baseName() + QStringLiteral(" (2)");
        QVERIFY(QFile::exists(dir.filePath(second + ".edf.part")));
        QVERIFY(!QFile::exists(dir.filePath(second + ".edf")));
        // Listed: the earlier record as sound, and the cut-short recording as an interrupted
        // save that can be recovered, never as a record of its own.
        RecordDatabase records(dir.path());
        records.reload();
        QCOMPARE(records.count(), 2);
        QList<RecordDatabase::Damage> damages;
        for (int row = 0; row < records.count(); ++row) {
            damages << records.damage(row);
            if (records.damage(row) == RecordDatabase::Damage::Unfinished)
                QVERIFY(records.edfPath(row).endsWith(second + ".edf.part"));
        }
        QVERIFY(damages.contains(RecordDatabase::Damage::None));
        QVERIFY(damages.contains(RecordDatabase::Damage::Unfinished));

        // The next save leaves what the cut-short one left for a person to recover.
        const auto leftovers = snapshot(dir.path());
        std::unique_ptr<CorvidaOnlineExperiment> e = measurement();
        QVERIFY(e->save(dir.path()));
        QCOMPARE(QFileInfo(e->getFilepath()).completeBaseName(), baseName() + " (3)");
        for (auto it = leftovers.cbegin(); it != leftovers.cend(); ++it)
            QCOMPARE(RecordFiles::readAll(dir.filePath(it.key())), it.value());
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QString folder = qEnvironmentVariable("CORVIDA_KILLED_SAVE_FOLDER");
    if (!folder.isEmpty())
        return killedSave(folder, qEnvironmentVariable("CORVIDA_KILLED_SAVE_POINT"));
    TestRecordSaveFaults test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_recordsavefaults.moc"
