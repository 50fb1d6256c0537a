#include "analysis/CorvidaExperiment.h"
#include "support/CliRun.h"
#include "support/CorvidaUnitEmulator.h"
#include "support/EDFRawFile.h"
#include "support/EdfLibProbe.h"
#include "support/RecordFiles.h"
#include "support/ScratchDisk.h"
#include "support/TailCuff.h"

#include <QDir>
#include <QProcess>
#include <QSerialPort>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>
#include <edflib.h>
#include <sys/resource.h>

namespace {
using CliRun::Result;
using TailCuff::expOf;

Result cli(const QString &data, const QStringList &arguments, int timeoutMs = 60000)
{
    return CliRun::run(QStringLiteral(CORVIDA_CLI), data, arguments, timeoutMs);
}

QStringList resultFields(const Result &r)
{
    const QStringList lines = r.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return lines.size() == 2 ? lines[1].split(QLatin1Char(';')) : QStringList();
}

// Seconds of samples in a recording as EDFlib itself reads it; -1 when it refuses the file.
double recordedSeconds(const QString &edf)
{
    edf_hdr_struct header;
    if (edfopen_file_readonly(QFile::encodeName(edf).constData(), &header,
                              EDFLIB_DO_NOT_READ_ANNOTATIONS) != 0)
        return -1;
    const double seconds = double(header.file_duration) / EDFLIB_TIME_DIMENSION;
    edfclose_file(header.handle);
    return seconds;
}

QStringList recordsIn(const QString &data)
{
    return QDir(data + QStringLiteral("/Records"))
        .entryList({QStringLiteral("*.edf")}, QDir::Files, QDir::Name);
}

// The lock file the serial port library keeps for an open port: found while a port of our own
// holds it, so the test does not depend on where the library puts it.
QString serialLockFile(const QString &portPath)
{
    QSerialPort holder(portPath);
    if (!holder.open(QIODevice::ReadWrite))
        return QString();
    // Named after the port's path with "_" for "/"; other tests' ports may be locked meanwhile.
    const QString name = QStringLiteral("LCK..") + QString(portPath).replace(QLatin1Char('/'), '_');
    QString found;
    for (const char *folder : {"/var/lock", "/run/lock", "/tmp", "/var/tmp"}) {
        if (QFile::exists(QDir(folder).filePath(name)))
            found = QDir(folder).filePath(name);
        if (!found.isEmpty())
            break;
    }
    holder.close();
    return QFile::exists(found) ? QString() : found; // closing must have removed it
}

// Processor seconds used by the children this process has waited for so far.
double childProcessorSeconds()
{
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// A saved record with a systolic marker placed by hand at 9 s (one that a reset would move),
// and its files' bytes as they were.
struct MarkedRecord {
    QString edf, exp;
    QByteArray edfBytes, expBytes;
    explicit MarkedRecord(const QString &folder)
        : edf(TailCuff::savedRecord(folder))
        , exp(expOf(edf))
    {
        if (!edf.isEmpty())
            CorvidaExperiment(exp).setSBPTime(9.0);
        edfBytes = RecordFiles::readAll(edf);
        expBytes = RecordFiles::readAll(exp);
    }
    bool unchanged() const
    {
        return RecordFiles::readAll(edf) == edfBytes && RecordFiles::readAll(exp) == expBytes;
    }
};
} // namespace

class TestCli : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void errorsAreOneLineAndStatusOne_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        QTest::newRow("no such file")
            << QStringList{"analyze", "/no/such/file.edf"} << "no such file";
        QTest::newRow("not an EDF+ file")
            << QStringList{"info", QStringLiteral(CORVIDA_CLI)} << "not an EDF+ file";
        QTest::newRow("limits upside down")
            << QStringList{"measure", "--simulated", "--limits", "40/160"} << "bad limits";
        // Regression: "nan" and "inf" read as numbers and went to the unit as 0/0.
        QTest::newRow("limits nan sent as 0/0")
            << QStringList{"measure", "--simulated", "--limits", "nan/40"} << "bad limits";
        QTest::newRow("limits inf")
            << QStringList{"measure", "--simulated", "--limits", "inf/40"} << "bad limits";
        QTest::newRow("limits negative")
            << QStringList{"measure", "--simulated", "--limits", "160/-40"} << "bad limits";
        QTest::newRow("limits equal as whole mmHg")
            << QStringList{"measure", "--simulated", "--limits", "120.8/120.1"} << "bad limits";
        QTest::newRow("seconds nan accepted")
            << QStringList{"measure", "--simulated", "--seconds", "nan"} << "at least one second";
        QTest::newRow("seconds zero")
            << QStringList{"measure", "--simulated", "--seconds", "0"} << "at least one second";
        QTest::newRow("seconds negative")
            << QStringList{"measure", "--simulated", "--seconds", "-5"} << "at least one second";
        // Regression: stream answered with status 2 and two lines.
        QTest::newRow("stream without unit status 2")
            << QStringList{"stream", "--seconds", "1"} << "only --simulated";
        QTest::newRow("stream seconds nan")
            << QStringList{"stream", "--simulated", "--seconds", "nan"} << "--seconds";
        QTest::newRow("stream unknown option")
            << QStringList{"stream", "--simulated", "--fast"} << "fast";
        QTest::newRow("no such port")
            << QStringList{"measure", "--port", "/dev/no-such-port"} << "no such port";
        QTest::newRow("two units")
            << QStringList{"measure", "--simulated", "--port", "x"} << "name one unit";
        QTest::newRow("no records") << QStringList{"analyze"} << "usage";
        QTest::newRow("unknown command") << QStringList{"frobnicate"} << "unknown command";
    }

    void errorsAreOneLineAndStatusOne()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        QTemporaryDir dir;
        const Result r = cli(dir.path(), arguments);
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains(message), qPrintable(r.err));
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
    }

    // Regression: "info --help" looked for a file named "--help".
    void everyCommandAnswersHelp_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("option"); // one the help must mention, empty for none
        const auto row = [](const char *name, const char *command, const char *option) {
            QTest::newRow(name) << QString(command) << QString(option);
        };
        row("ports", "ports", "");
        row("list", "list", "");
        row("info looked for a file named --help", "info", "");
        row("measure", "measure", "--seconds");
        row("analyze", "analyze", "--reset");
        row("export", "export", "--out");
        row("stream", "stream", "--measure");
    }
    void everyCommandAnswersHelp()
    {
        QFETCH(QString, command);
        QFETCH(QString, option);
        QTemporaryDir dir;
        const Result r = cli(dir.path(), {command, QStringLiteral("--help")});
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.startsWith(QStringLiteral("usage: corvida-cli ") + command),
                 qPrintable(r.out));
        QVERIFY(r.out.contains(option));
        QCOMPARE(r.err, QString());
        QVERIFY(!QDir(dir.filePath(QStringLiteral("Records"))).exists()); // nothing was run
    }

    // Regression: the clock stopped the recording before a second of samples had arrived, so
    // "--seconds 1" always failed with "Experiment is too short".
    void measureOfOneSecondKeepsOneSecond()
    {
        QTemporaryDir dir;
        const Result r = cli(dir.path(), {"measure", "--simulated", "--seconds", "1"});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        const QString edf = resultFields(r).value(0);
        QVERIFY(QFile::exists(edf));
        QVERIFY2(recordedSeconds(edf) >= 1.0, qPrintable(QString::number(recordedSeconds(edf))));
    }

    // Regression: waiting for the samples spun the event loop at 92-95 % of a core. A second of
    // a simulated unit takes well under 10 ms of processor time; the bound leaves room for
    // start-up, the analysis at the end and a slow (sanitizer) build, and still fails at a
    // fifth of the busy loop's share.
    void measureBusyWaitedOnTheEventLoop()
    {
        QTemporaryDir dir;
        QElapsedTimer wall;
        const double before = childProcessorSeconds();
        wall.start();
        const Result r = cli(dir.path(), {"measure", "--simulated", "--seconds", "5"});
        const double seconds = wall.elapsed() / 1000.0;
        const double used = childProcessorSeconds() - before;
        QCOMPARE(r.status, 0);
        QVERIFY2(used < 0.2 * seconds,
                 qPrintable(QStringLiteral("%1 s of processor in %2 s").arg(used).arg(seconds)));
    }

    // Regression: a port that another program holds was reported as a permission problem.
    void busyPortIsReportedAsBusy()
    {
        CorvidaUnitEmulator unit;
        QVERIFY(unit.plug());
        QSerialPort other(unit.portPath());
        QVERIFY(other.open(QIODevice::ReadWrite));
        QTemporaryDir dir;
        const Result r = cli(dir.path(), {"measure", "--port", unit.portPath(), "--seconds", "2"});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains(QStringLiteral("port busy")), qPrintable(r.err));
        QVERIFY(!r.err.contains(QStringLiteral("permission")));
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        QCOMPARE(unit.receivedBytes(), QByteArray()); // the unit was left alone
    }

    // Regression: Ctrl+C or SIGTERM during a measurement left the cuff cycle running, saved
    // nothing and left the port's lock file behind.
    void interruptedMeasureStopsTheUnitAndKeepsTheRecord_data()
    {
        QTest::addColumn<int>("signalNumber");
        QTest::addColumn<int>("samplesBefore"); // samples the unit sends before the signal
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("saved");
        QTest::newRow("Ctrl+C left the cuff running") << int(SIGINT) << 3000 << 130 << true;
        QTest::newRow("SIGTERM left the cuff running") << int(SIGTERM) << 3000 << 143 << true;
        QTest::newRow("Ctrl+C at once: too short to keep") << int(SIGINT) << 0 << 130 << false;
    }
    void interruptedMeasureStopsTheUnitAndKeepsTheRecord()
    {
        QFETCH(int, signalNumber);
        QFETCH(int, samplesBefore);
        CorvidaUnitEmulator unit;
        unit.setPulse(7.0, 3000);
        QVERIFY(unit.plug());
        unit.setStreamTimerActive(true);
        const QString lockFile = serialLockFile(unit.portPath());
        QVERIFY2(!lockFile.isEmpty(), "the serial port library keeps no lock file here");
        QTemporaryDir dir;
        QProcess p;
        QSignalSpy finished(&p, &QProcess::finished);
        p.start(QStringLiteral(CORVIDA_CLI),
                {"--data", dir.path(), "measure", "--port", unit.portPath(), "--limits", "160/40",
                 "--seconds", "120"});
        QTRY_VERIFY_WITH_TIMEOUT(unit.isMeasuring(), 20000);
        const qint64 start = unit.samplesSent();
        QTRY_VERIFY_WITH_TIMEOUT(unit.samplesSent() - start >= samplesBefore, 20000);
        QVERIFY(QFile::exists(lockFile)); // the check below can see a lock file
        unit.clearReceived();
        QCOMPARE(::kill(pid_t(p.processId()), signalNumber), 0);
        QVERIFY(finished.wait(30000));

        QCOMPARE(p.exitStatus(), QProcess::NormalExit);
        QTEST(p.exitCode(), "status");
        // Stop-measuring and stop, on the wire, before anything else.
        const QByteArray stop = CorvidaUnitEmulator::packet(4) + CorvidaUnitEmulator::packet(2);
        QVERIFY2(unit.receivedBytes().startsWith(stop),
                 unit.receivedBytes().toHex(' ').constData());
        QVERIFY(!unit.isMeasuring());
        QVERIFY(!unit.isStreaming());
        QVERIFY(!QFile::exists(lockFile));
        const QString err = QString::fromUtf8(p.readAllStandardError());
        QCOMPARE(err.count(QLatin1Char('\n')), 1);
        QVERIFY2(err.startsWith(QStringLiteral("corvida-cli: stopped by ")), qPrintable(err));
        const QStringList records = recordsIn(dir.path());
        QFETCH(bool, saved);
        if (!saved) {
            QVERIFY2(err.contains(QStringLiteral("nothing was saved")), qPrintable(err));
            QCOMPARE(records, QStringList());
            return;
        }
        QVERIFY2(err.contains(QStringLiteral("saved")), qPrintable(err));
        QCOMPARE(records.size(), 1);
        const QString edf = dir.filePath(QStringLiteral("Records/") + records[0]);
        const QStringList lines =
            QString::fromUtf8(p.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines[1].section(';', 0, 0), edf);
        // At least what the unit had sent when the signal came, and far less than was asked.
        const double seconds = recordedSeconds(edf);
        QVERIFY2(seconds >= samplesBefore / 1000.0 - 0.1 && seconds < 60,
                 qPrintable(QString::number(seconds)));
        QVERIFY(QFile::exists(expOf(edf)));
    }

    void analyzeWritesTheExpFileOnlyWithSave()
    {
        QTemporaryDir dir;
        const MarkedRecord record(dir.path());
        const QString &edf = record.edf, &exp = record.exp;
        QVERIFY(!edf.isEmpty());
        Result r = cli(dir.path(), {"analyze", "--reset", edf});
        QCOMPARE(r.status, 0);
        const QStringList fields = resultFields(r);
        QCOMPARE(fields.size(), 8);
        QCOMPARE(fields[0], edf);
        QVERIFY(std::fabs(fields[1].toDouble() - 120.0) < 3.0); // the pulse comes back at 120 mmHg
        QVERIFY(std::fabs(fields[5].toDouble() - 450.0) < 5.0);
        // MAP is worked out from the two pressures printed beside it.
        QVERIFY(std::fabs(fields[7].toDouble() -
                          (fields[3].toDouble() +
                           (fields[1].toDouble() - fields[3].toDouble()) / 3.0)) < 1e-6);
        const double automatic = fields[2].toDouble();
        QVERIFY(automatic != 9.0 && automatic >= 4.0);
        QVERIFY(record.unchanged());
        r = cli(dir.path(), {"analyze", "--save", edf});
        QCOMPARE(resultFields(r).value(2), QStringLiteral("9"));
        QCOMPARE(CorvidaExperiment(exp).getSBPTime(), 9.0);
        QCOMPARE(EdfLibProbe::onsetsOf(edf, "SBP"), QList<qint64>{9000});
        r = cli(dir.path(), {"analyze", "--reset", "--save", edf});
        QCOMPARE(r.status, 0);
        QCOMPARE(resultFields(r).value(2).toDouble(), automatic);
        QCOMPARE(CorvidaExperiment(exp).getSBPTime(), automatic);
        // The recording's own marks were reset with the markers.
        QCOMPARE(EdfLibProbe::onsetsOf(edf, "SBP"), QList<qint64>{qRound64(automatic * 1000)});
    }

    void upperCaseEdfIsOpenedAsGiven_data()
    {
        QTest::addColumn<QString>("expName");
        QTest::newRow("NAME.EDF with NAME.exp") << "NAME.exp";
        QTest::newRow("NAME.EDF with NAME.EXP") << "NAME.EXP";
        QTest::newRow("NAME.EDF alone") << "";
    }
    void upperCaseEdfIsOpenedAsGiven()
    {
        QFETCH(QString, expName);
        QTemporaryDir dir;
        const QString made = TailCuff::savedRecord(dir.path());
        QVERIFY(!made.isEmpty());
        const QString edf = dir.filePath(QStringLiteral("NAME.EDF"));
        QVERIFY(QFile::rename(made, edf));
        const QString madeExp = expOf(made);
        if (expName.isEmpty())
            QVERIFY(QFile::remove(madeExp));
        else
            QVERIFY(QFile::rename(madeExp, dir.filePath(expName)));

        Result r = cli(dir.path(), {"analyze", edf});
        QCOMPARE(r.status, 0);
        QVERIFY2(resultFields(r).value(6).toInt() > 100, qPrintable(r.out)); // 7.5 beats a second
        r = cli(dir.path(), {"analyze", "--save", edf});
        QCOMPARE(r.status, 0);
        const QString exp = dir.filePath(expName.isEmpty() ? QStringLiteral("NAME.exp") : expName);
        QVERIFY(std::fabs(CorvidaExperiment(exp).getBPM() - 450.0) < 5.0);
        const QString csv = dir.filePath(QStringLiteral("out.csv"));
        r = cli(dir.path(), {"export", "--full", "--out", csv, edf});
        QCOMPARE(r.status, 0);
        QCOMPARE(RecordFiles::readAll(csv).count("\r\n"), 1 + 5 + 3 + 20000 + 1);
    }

    void saveOnFullDiskExitsNonZeroAndKeepsTheRecord()
    {
        ScratchDisk disk(4 << 20);
        if (!disk.isMounted())
            QSKIP(qPrintable(disk.whyNot()));
        const QString records = disk.filePath(QStringLiteral("Records"));
        QVERIFY(QDir().mkdir(records));
        const MarkedRecord record(records);
        const QString &edf = record.edf;
        QVERIFY(disk.fill(0));

        Result r = cli(disk.path(), {"analyze", "--reset", "--save", edf});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        QVERIFY2(r.err.contains(record.exp) || r.err.contains(edf), qPrintable(r.err));
        QVERIFY(record.unchanged());

        r = cli(disk.path(), {"measure", "--simulated", "--seconds", "3"});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        QVERIFY2(r.err.contains(QStringLiteral("disk is full")), qPrintable(r.err));
        QVERIFY(!r.out.contains(QStringLiteral(".edf")));
        QCOMPARE(QDir(records).entryList(QDir::Files).size(), 2);
        QVERIFY(record.unchanged());

        for (const QString &name : {QStringLiteral("out.xlsx"), QStringLiteral("out.csv")}) {
            r = cli(disk.path(), {"export", "--full", "--out", disk.filePath(name), edf});
            QCOMPARE(r.status, 1);
            QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
            QVERIFY(r.err.contains(QStringLiteral("Error saving")));
            QVERIFY(!QFile::exists(disk.filePath(name)));
        }
    }

    void readOnlyRecordsFolderExitsNonZero()
    {
        ScratchDisk disk(4 << 20);
        if (!disk.isMounted())
            QSKIP(qPrintable(disk.whyNot()));
        const QString records = disk.filePath(QStringLiteral("Records"));
        QVERIFY(QDir().mkdir(records));
        const MarkedRecord record(records);
        const QString &edf = record.edf;
        QVERIFY(disk.remountReadOnly());

        Result r = cli(disk.path(), {"analyze", "--reset", "--save", edf});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        r = cli(disk.path(), {"measure", "--simulated", "--seconds", "3"});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        QVERIFY2(r.err.contains(QStringLiteral("Cannot open \"") + records), qPrintable(r.err));
        QCOMPARE(QDir(records).entryList(QDir::Files).size(), 2);
        QVERIFY(record.unchanged());
    }

    void twoMeasurementsAtOnceKeepBoth()
    {
        QTemporaryDir dir;
        QList<QProcess *> runs;
        for (int i = 0; i < 2; ++i) {
            runs << new QProcess(this);
            runs.last()->start(QStringLiteral(CORVIDA_CLI),
                               {"--data", dir.path(), "measure", "--simulated", "--seconds", "3"});
        }
        QStringList saved;
        for (QProcess *p : std::as_const(runs)) {
            QVERIFY(p->waitForFinished(60000));
            QCOMPARE(p->exitCode(), 0);
            const QStringList lines =
                QString::fromUtf8(p->readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
            saved << lines.value(1).section(QLatin1Char(';'), 0, 0);
            delete p;
        }
        QVERIFY(saved[0] != saved[1]);
        for (const QString &edf : saved)
            QCOMPARE(EdfLibProbe::digitalSamples(edf).size(), 2);
        QCOMPARE(QDir(dir.filePath("Records")).entryList(QDir::Files).size(), 4);
    }

    // Every record and what is wrong with it, as a full disk or a crash inside a save leaves
    // them: none of these may be listed as sound.
    void listNoLongerShowsCutOrUnfinishedRecordingsAsSound()
    {
        QTemporaryDir dir;
        const QString records = dir.filePath(QStringLiteral("Records"));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("Records")));
        const QString edf = TailCuff::savedRecord(records);
        const QByteArray bytes = RecordFiles::readAll(edf);
        // A comment with both separators must stay one cell for a spreadsheet or a script.
        CorvidaExperiment(expOf(edf)).setComment(QStringLiteral("calm; tail \"warm\", 30 °C"));
        QVERIFY(RecordFiles::writeAll(records + "/broken.edf", "not a recording"));
        QVERIFY(RecordFiles::writeAll(records + "/cut.edf", bytes.left(bytes.size() / 2)));
        QByteArray miscounted = bytes;
        miscounted.replace(236, 8, "1       ");
        QVERIFY(RecordFiles::writeAll(records + "/miscounted.edf", miscounted));
        QVERIFY(RecordFiles::writeAll(records + "/crashed.edf.part", bytes));
        const Result r = cli(dir.path(), {QStringLiteral("list")});
        QCOMPARE(r.status, 0);
        const QStringList lines = r.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 6);
        QCOMPARE(lines[0],
                 QStringLiteral("Title;Rodent;Comment;Pressure;MAP;Heart rate;file;problem"));
        QVERIFY(r.out.contains(QStringLiteral(";\"calm; tail \"\"warm\"\", 30 °C\";")));
        QVERIFY(r.out.contains(edf + QStringLiteral(";\n")));
        // "info" is the independent judge of the files the list calls unreadable.
        for (const char *name : {"broken.edf", "cut.edf", "miscounted.edf"}) {
            const QString path = records + QLatin1Char('/') + QLatin1String(name);
            QVERIFY2(r.out.contains(path + QStringLiteral(";The recording cannot be read")),
                     qPrintable(r.out));
            QCOMPARE(cli(dir.path(), {QStringLiteral("info"), path}).status, 1);
        }
        QVERIFY2(r.out.contains(QStringLiteral("crashed.edf.part;;;;;;") + records +
                                QStringLiteral("/crashed.edf.part;\"An interrupted save; the "
                                               "recording is complete and can be recovered\"")),
                 qPrintable(r.out));
    }

    void recoverGivesAnInterruptedSaveAFreeNameAndOverwritesNothing()
    {
        QTemporaryDir dir;
        const QString records = dir.filePath(QStringLiteral("Records"));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("Records")));
        const QString edf = TailCuff::savedRecord(records);
        const QByteArray original = RecordFiles::readAll(edf);
        // The same recording left by a save that was interrupted under the same name.
        const QString part = edf + QStringLiteral(".part");
        QByteArray recording = original;
        const int headerBytes = original.mid(184, 8).trimmed().toInt();
        recording[headerBytes] = char(recording[headerBytes] ^ 0x55); // tell the two apart
        QVERIFY(RecordFiles::writeAll(part, recording));
        Result r = cli(dir.path(), {QStringLiteral("recover"), part});
        QCOMPARE(r.status, 0);
        const QString recovered = edf.chopped(4) + QStringLiteral(" (2).edf");
        QCOMPARE(r.out, recovered + QLatin1Char('\n'));
        QCOMPARE(RecordFiles::readAll(recovered), recording);
        QCOMPARE(RecordFiles::readAll(edf), original);
        QVERIFY(!QFile::exists(part));
        QCOMPARE(cli(dir.path(), {QStringLiteral("info"), recovered}).status, 0);

        // An incomplete one stays where it is, untouched.
        QVERIFY(RecordFiles::writeAll(part, original.left(original.size() - 10)));
        r = cli(dir.path(), {QStringLiteral("recover"), part});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        QVERIFY(r.err.contains(QStringLiteral("incomplete")));
        QCOMPARE(RecordFiles::readAll(part), original.left(original.size() - 10));
    }

    // list, info and analyze without --save read a folder with a damaged properties file.
    void readOnlyCommandsNoLongerWriteIntoTheRecordsFolder_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("list") << QStringList{"list"};
        QTest::newRow("info") << QStringList{"info", "RECORD"};
        QTest::newRow("analyze") << QStringList{"analyze", "RECORD"};
    }
    void readOnlyCommandsNoLongerWriteIntoTheRecordsFolder()
    {
        QFETCH(QStringList, arguments);
        QTemporaryDir dir;
        const QString records = dir.filePath(QStringLiteral("Records"));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("Records")));
        const QString edf = TailCuff::savedRecord(records);
        const QString exp = expOf(edf);
        QVERIFY(RecordFiles::writeAll(exp, "<CorvidaExperiment><Rodent>rat 3</Rodent><SBP>1"));
        const QStringList before = QDir(records).entryList(QDir::Files | QDir::Hidden);
        arguments.replaceInStrings(QStringLiteral("RECORD"), edf);
        QCOMPARE(cli(dir.path(), arguments).status, 0);
        QCOMPARE(QDir(records).entryList(QDir::Files | QDir::Hidden), before);
        QCOMPARE(RecordFiles::readAll(exp),
                 QByteArray("<CorvidaExperiment><Rodent>rat 3</Rodent><SBP>1"));
    }

    void exportWritesTheChosenContent()
    {
        QTemporaryDir dir;
        const QString edf = TailCuff::savedRecord(dir.path());
        const QString csv = dir.filePath(QStringLiteral("out.csv"));
        Result r = cli(dir.path(), {"export", "--full", "--out", csv, edf});
        QCOMPARE(r.status, 0);
        const QByteArray text = RecordFiles::readAll(csv);
        QVERIFY(text.startsWith("\xEF\xBB\xBF"));
        QVERIFY(text.contains("Sampling rate;1000;\r\n"));
        QCOMPARE(text.count("\r\n"), 1 + 5 + 3 + 20000 + 1); // name, results, header rows, samples
        r = cli(dir.path(),
                {"export", "--essential", "--out", dir.filePath("no/dir/out.xlsx"), edf});
        QCOMPARE(r.status, 1);
        QVERIFY(r.err.contains(QStringLiteral("Error saving")));
        r = cli(dir.path(), {"export", "--essential", "--out", dir.filePath("out.txt"), edf});
        QCOMPARE(r.status, 1);
    }

    void measureWithUnitOnSerialPort()
    {
        CorvidaUnitEmulator unit;
        unit.setSerialNumber("CV-0042");
        unit.setSystolic(110);
        unit.setPulse(7.0, 3000);
        unit.setCuffRates(80, 8);
        QVERIFY(unit.plug());
        unit.setStreamTimerActive(true);
        QTemporaryDir dir;
        const Result r = cli(dir.path(), {"measure", "--port", unit.portPath(), "--limits",
                                          "160/40", "--seconds", "15", "--rodent", "rat 9"});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        QCOMPARE(unit.upperLimit(), 160);
        QCOMPARE(unit.lowerLimit(), 40);
        const QStringList fields = resultFields(r);
        QVERIFY(QFile::exists(fields.value(0)));
        QVERIFY(fields[0].startsWith(dir.path() + QStringLiteral("/Records/")));
        QVERIFY2(std::fabs(fields[1].toDouble() - 110.0) < 10.0, qPrintable(r.out));
        QVERIFY(std::fabs(fields[5].toDouble() - 420.0) < 15.0);
        const CorvidaExperiment saved(expOf(fields[0]));
        QCOMPARE(saved.getSN(), QStringLiteral("CV-0042"));
        QCOMPARE(saved.getRodent(), QStringLiteral("rat 9"));
        // A calibrated record carries no mark: its file is what it always was.
        QVERIFY(!RecordFiles::readAll(expOf(fields[0])).contains("Uncalibrated"));
        QVERIFY(!r.err.contains(QStringLiteral("not mmHg")));
        // The line printed at the end is what `analyze` of the saved record prints.
        const Result analyzed = cli(dir.path(), {"analyze", fields[0]});
        QCOMPARE(resultFields(analyzed), fields);
    }
    // Nine bytes of line noise used to stop the data for good, and measure exited 0 with the
    // few seconds recorded before them.
    void measureReportsALinkLostToLineNoise()
    {
        CorvidaUnitEmulator unit;
        QVERIFY(unit.plug());
        unit.setStreamTimerActive(true);
        QTemporaryDir dir;
        QTimer::singleShot(3000, &unit, [&unit] {
            unit.sendLineNoise(QByteArray::fromHex("a7013cfe00991204ee"));
        });
        const Result r = cli(dir.path(), {"measure", "--port", unit.portPath(), "--seconds", "30"});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains(QStringLiteral("link to the unit was lost")), qPrintable(r.err));
        // What came before the noise is saved: a couple of seconds, not the 30 asked for.
        const QString edf = resultFields(r).value(0);
        QVERIFY2(QFile::exists(edf), qPrintable(r.out));
        const int seconds = EDFRawFile(edf).recordCount();
        QVERIFY2(seconds >= 1 && seconds < 10, qPrintable(QString::number(seconds)));
    }
    // A unit whose calibration was refused measured in sensor units, and the record was saved
    // and printed as mmHg (SBP 533.8).
    void measureWithRefusedCalibrationWarnsAndMarksTheRecord()
    {
        CorvidaUnitEmulator unit;
        unit.setCalibration(500, 0, 500, 200); // two equal sensor values give no line
        QVERIFY(unit.plug());
        unit.setStreamTimerActive(true);
        QTemporaryDir dir;
        Result r = cli(dir.path(), {"measure", "--port", unit.portPath(), "--seconds", "3"});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        QVERIFY2(r.err.contains(QStringLiteral("not mmHg")), qPrintable(r.err));
        const QString edf = resultFields(r).value(0);
        QVERIFY(RecordFiles::readAll(expOf(edf)).contains("Uncalibrated"));
        r = cli(dir.path(), {"list"});
        QVERIFY2(r.out.contains(QStringLiteral("(not calibrated)")), qPrintable(r.out));
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
