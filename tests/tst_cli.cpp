#include "analysis/CorvidaOnlineExperiment.h"
#include "support/CorvidaUnitEmulator.h"
#include "support/RecordFiles.h"

#include <QDir>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {
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
        QCOMPARE(RecordFiles::readAll(exp), before);
        QCOMPARE(RecordFiles::readAll(edf), edfBefore);
        r = cli(dir.path(), {"analyze", "--save", edf});
        QCOMPARE(resultFields(r).value(2), QStringLiteral("9"));
        QCOMPARE(CorvidaExperiment(exp).getSBPTime(), 9.0);
        r = cli(dir.path(), {"analyze", "--reset", "--save", edf});
        QCOMPARE(r.status, 0);
        QCOMPARE(resultFields(r).value(2).toDouble(), automatic);
        QCOMPARE(CorvidaExperiment(exp).getSBPTime(), automatic);
    }

    void listShowsEveryRecordAndWhatIsWrong()
    {
        QTemporaryDir dir;
        QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("Records")));
        const QString edf = makeRecord(dir.filePath(QStringLiteral("Records")));
        QFile broken(dir.filePath(QStringLiteral("Records/broken.edf")));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("not a recording");
        broken.close();
        const Result r = cli(dir.path(), {QStringLiteral("list")});
        QCOMPARE(r.status, 0);
        const QStringList lines = r.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines[0], QStringLiteral("Title;Rodent;Comment;Pressure;file;problem"));
        QVERIFY(r.out.contains(edf + QStringLiteral(";\n")));
        QVERIFY(r.out.contains(QStringLiteral("broken.edf;The recording cannot be read")));
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
        QCOMPARE(text.count("\r\n"), 1 + 6 + 3 + 20000 + 1); // name, results, header rows, samples
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
    }
};

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
