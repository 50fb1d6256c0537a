#include "analysis/CorvidaOnlineExperiment.h"
#include "support/CorvidaUnitEmulator.h"
#include "support/EDFRawFile.h"
#include "support/EdfLibProbe.h"
#include "support/RecordFiles.h"
#include "support/ScratchDisk.h"

#include <QDir>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {
QString expOf(const QString &edf)
{
    return edf.chopped(4) + QStringLiteral(".exp");
}

struct Result {
    int status = -1;
    QString out;
    QString err;
};

// Runs corvida-cli with a data folder of its own; the test's event loop keeps running meanwhile,
// so a unit emulator in this process can answer.
Result cli(const QString &data, const QStringList &arguments, int timeoutMs = 60000)
{
    QProcess p;
    QSignalSpy finished(&p, &QProcess::finished);
    p.start(QStringLiteral(CORVIDA_CLI), QStringList{QStringLiteral("--data"), data} + arguments);
    if (!p.waitForStarted() || !finished.wait(timeoutMs)) {
        p.kill();
        p.waitForFinished();
        return {};
    }
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList resultFields(const Result &r)
{
    const QStringList lines = r.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return lines.size() == 2 ? lines[1].split(QLatin1Char(';')) : QStringList();
}

// A saved record of the simulated unit, made in-process (faster than measuring for real).
QString makeRecord(const QString &folder)
{
    CorvidaOnlineExperiment e;
    QList<double> pressure, pulse;
    for (int i = 0; i < 20000; ++i) {
        const double t = i / 1000.0;
        pressure << (t < 2 ? 80 * t : std::max(0.0, 160 - 10 * (t - 2)));
        const double a = pressure.last() > 120 ? 0.005 : 0.3;
        pulse << a * std::sin(2 * M_PI * 7.5 * t);
    }
    e.setSamplingRate(1000);
    e.updateData({pressure, pulse});
    QString error;
    if (!e.save(folder, &error))
        return QString();
    return e.getFilepath().chopped(4) + QStringLiteral(".edf");
}
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
        QTest::newRow("bad limits")
            << QStringList{"measure", "--simulated", "--limits", "40/160"} << "bad limits";
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

    void analyzeWritesTheExpFileOnlyWithSave()
    {
        QTemporaryDir dir;
        const QString edf = makeRecord(dir.path());
        QVERIFY(!edf.isEmpty());
        const QString exp = edf.chopped(4) + QStringLiteral(".exp");
        {
            CorvidaExperiment e(exp); // a hand-placed systolic marker at 9 s
            e.setSBPTime(9.0);
        }
        const QByteArray before = RecordFiles::readAll(exp);
        const QByteArray edfBefore = RecordFiles::readAll(edf);
        Result r = cli(dir.path(), {"analyze", "--reset", edf});
        QCOMPARE(r.status, 0);
        const QStringList fields = resultFields(r);
        QCOMPARE(fields.size(), 7);
        QCOMPARE(fields[0], edf);
        QVERIFY(std::fabs(fields[1].toDouble() - 120.0) < 3.0); // the pulse comes back at 120 mmHg
        QVERIFY(std::fabs(fields[5].toDouble() - 450.0) < 5.0);
        const double automatic = fields[2].toDouble();
        QVERIFY(automatic != 9.0 && automatic >= 4.0);
        QCOMPARE(RecordFiles::readAll(exp), before);
        QCOMPARE(RecordFiles::readAll(edf), edfBefore);
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
        const QString made = makeRecord(dir.path());
        QVERIFY(!made.isEmpty());
        const QString edf = dir.filePath(QStringLiteral("NAME.EDF"));
        QVERIFY(QFile::rename(made, edf));
        const QString madeExp = made.chopped(4) + QStringLiteral(".exp");
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
        QVERIFY(QDir(disk.path()).mkdir(QStringLiteral("Records")));
        const QString records = disk.filePath(QStringLiteral("Records"));
        const QString edf = makeRecord(records);
        const QString exp = edf.chopped(4) + QStringLiteral(".exp");
        {
            CorvidaExperiment e(exp); // a hand-placed marker that a reset would move
            e.setSBPTime(9.0);
        }
        const QByteArray expBefore = RecordFiles::readAll(exp);
        const QByteArray edfBefore = RecordFiles::readAll(edf);
        QVERIFY(disk.fill(0));

        Result r = cli(disk.path(), {"analyze", "--reset", "--save", edf});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        QVERIFY2(r.err.contains(exp) || r.err.contains(edf), qPrintable(r.err));
        QCOMPARE(RecordFiles::readAll(exp), expBefore);
        QCOMPARE(RecordFiles::readAll(edf), edfBefore);

        r = cli(disk.path(), {"measure", "--simulated", "--seconds", "3"});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        QVERIFY2(r.err.contains(QStringLiteral("disk is full")), qPrintable(r.err));
        QVERIFY(!r.out.contains(QStringLiteral(".edf")));
        QCOMPARE(QDir(records).entryList(QDir::Files).size(), 2);
        QCOMPARE(RecordFiles::readAll(exp), expBefore);

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
        QVERIFY(QDir(disk.path()).mkdir(QStringLiteral("Records")));
        const QString records = disk.filePath(QStringLiteral("Records"));
        const QString edf = makeRecord(records);
        const QString exp = edf.chopped(4) + QStringLiteral(".exp");
        {
            CorvidaExperiment e(exp);
            e.setSBPTime(9.0);
        }
        const QByteArray expBefore = RecordFiles::readAll(exp);
        QVERIFY(disk.remountReadOnly());

        Result r = cli(disk.path(), {"analyze", "--reset", "--save", edf});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        r = cli(disk.path(), {"measure", "--simulated", "--seconds", "3"});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        QVERIFY2(r.err.contains(QStringLiteral("Cannot open \"") + records), qPrintable(r.err));
        QCOMPARE(QDir(records).entryList(QDir::Files).size(), 2);
        QCOMPARE(RecordFiles::readAll(exp), expBefore);
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

    void listShowsEveryRecordAndWhatIsWrong()
    {
        QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("Records")));
        const QString edf = makeRecord(dir.filePath(QStringLiteral("Records")));
        // A comment with both separators must stay one cell for a spreadsheet or a script.
        CorvidaExperiment(expOf(edf)).setComment(QStringLiteral("calm; tail \"warm\", 30 °C"));
        QFile broken(dir.filePath(QStringLiteral("Records/broken.edf")));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("not a recording");
        broken.close();
        const Result r = cli(dir.path(), {QStringLiteral("list")});
        QCOMPARE(r.status, 0);
        const QStringList lines = r.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[0], QStringLiteral("Title;Rodent;Comment;Pressure;file;problem"));
        QVERIFY(r.out.contains(QStringLiteral(";\"calm; tail \"\"warm\"\", 30 °C\";")));
        QVERIFY(r.out.contains(edf + QStringLiteral(";\n")));
        QVERIFY(r.out.contains(QStringLiteral("broken.edf;The recording cannot be read")));
    }

    // What a full disk or a crash inside a save leaves behind, as "list" reports it.
    void listNoLongerShowsCutOrUnfinishedRecordingsAsSound()
    {
        QTemporaryDir dir;
        const QString records = dir.filePath(QStringLiteral("Records"));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("Records")));
        const QString edf = makeRecord(records);
        const QByteArray bytes = RecordFiles::readAll(edf);
        QVERIFY(RecordFiles::writeAll(records + "/cut.edf", bytes.left(bytes.size() / 2)));
        QByteArray miscounted = bytes;
        miscounted.replace(236, 8, "1       ");
        QVERIFY(RecordFiles::writeAll(records + "/miscounted.edf", miscounted));
        QVERIFY(RecordFiles::writeAll(records + "/crashed.edf.part", bytes));
        const Result r = cli(dir.path(), {QStringLiteral("list")});
        QCOMPARE(r.status, 0);
        // "info" is the independent judge of the files the list calls unreadable.
        for (const char *name : {"cut.edf", "miscounted.edf"}) {
            const QString path = records + QLatin1Char('/') + QLatin1String(name);
            QVERIFY2(r.out.contains(path + QStringLiteral(";The recording cannot be read")),
                     qPrintable(r.out));
            QCOMPARE(cli(dir.path(), {QStringLiteral("info"), path}).status, 1);
        }
        QVERIFY2(r.out.contains(QStringLiteral("crashed.edf.part;;;;") + records +
                                QStringLiteral("/crashed.edf.part;\"An interrupted save; the "
                                               "recording is complete and can be recovered\"")),
                 qPrintable(r.out));
        QVERIFY(r.out.contains(edf + QStringLiteral(";\n")));
    }

    void recoverGivesAnInterruptedSaveAFreeNameAndOverwritesNothing()
    {
        QTemporaryDir dir;
        const QString records = dir.filePath(QStringLiteral("Records"));
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("Records")));
        const QString edf = makeRecord(records);
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
        const QString edf = makeRecord(records);
        const QString exp = edf.chopped(4) + QStringLiteral(".exp");
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
        const QString edf = makeRecord(dir.path());
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
        const CorvidaExperiment saved(fields[0].chopped(4) + ".exp");
        QCOMPARE(saved.getSN(), QStringLiteral("CV-0042"));
        QCOMPARE(saved.getRodent(), QStringLiteral("rat 9"));
        // A calibrated record carries no mark: its file is what it always was.
        QVERIFY(!fileBytes(fields[0].chopped(4) + ".exp").contains("Uncalibrated"));
        QVERIFY(!r.err.contains(QStringLiteral("not mmHg")));
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
        QVERIFY(fileBytes(edf.chopped(4) + ".exp").contains("Uncalibrated"));
        r = cli(dir.path(), {"list"});
        QVERIFY2(r.out.contains(QStringLiteral("(not calibrated)")), qPrintable(r.out));
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
