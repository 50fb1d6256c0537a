#include "analysis/CorvidaOnlineExperiment.h"
#include "support/CorvidaUnitEmulator.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
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

QByteArray readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}
} // namespace

class TestCli : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void helpVersionAndUnknownCommand();
    void errorsAreOneLineAndStatusOne_data();
    void errorsAreOneLineAndStatusOne();
    void portsListsWithHeader();
    void analyzeChangesNothingWithoutSave();
    void analyzeSaveAndResetWriteTheExpFile();
    void analyzeJson();
    void infoDescribesTheFile();
    void measureWithSimulatedUnit();
    void measureWithUnitOnSerialPort();
};

void TestCli::helpVersionAndUnknownCommand()
{
    QTemporaryDir dir;
    Result r = cli(dir.path(), {QStringLiteral("--version")});
    QCOMPARE(r.status, 0);
    QVERIFY(r.out.startsWith(QStringLiteral("corvida-cli ")));
    r = cli(dir.path(), {QStringLiteral("--help")});
    QCOMPARE(r.status, 0);
    for (const char *command : {"ports", "measure", "analyze", "info"})
        QVERIFY(r.out.contains(QLatin1String(command)));
    r = cli(dir.path(), {QStringLiteral("frobnicate")});
    QCOMPARE(r.status, 1);
    QVERIFY(r.err.contains(QStringLiteral("unknown command")));
}

void TestCli::errorsAreOneLineAndStatusOne_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("no such file") << QStringList{"analyze", "/no/such/file.edf"} << "no such file";
    QTest::newRow("not an EDF+ file")
        << QStringList{"info", QStringLiteral(CORVIDA_CLI)} << "not an EDF+ file";
    QTest::newRow("bad limits") << QStringList{"measure", "--simulated", "--limits", "40/160"}
                                << "bad limits";
    QTest::newRow("limits not numbers")
        << QStringList{"measure", "--simulated", "--limits", "high"} << "bad limits";
    QTest::newRow("no such port") << QStringList{"measure", "--port", "/dev/no-such-port"}
                                  << "no such port";
    QTest::newRow("two units") << QStringList{"measure", "--simulated", "--port", "x"}
                               << "name one unit";
    QTest::newRow("no records") << QStringList{"analyze"} << "usage";
}

void TestCli::errorsAreOneLineAndStatusOne()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    QTemporaryDir dir;
    const Result r = cli(dir.path(), arguments);
    QCOMPARE(r.status, 1);
    QVERIFY2(r.err.contains(message), qPrintable(r.err));
    QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
}

void TestCli::portsListsWithHeader()
{
    QTemporaryDir dir;
    const Result r = cli(dir.path(), {QStringLiteral("ports")});
    QCOMPARE(r.status, 0);
    QVERIFY(r.out.startsWith(QStringLiteral("port;description;manufacturer;unit\n")));
}

void TestCli::analyzeChangesNothingWithoutSave()
{
    QTemporaryDir dir;
    const QString edf = makeRecord(dir.path());
    QVERIFY(!edf.isEmpty());
    const QString exp = edf.chopped(4) + QStringLiteral(".exp");
    const QByteArray before = readAll(exp);
    const QByteArray edfBefore = readAll(edf);
    const Result r = cli(dir.path(), {QStringLiteral("analyze"), QStringLiteral("--reset"), edf});
    QCOMPARE(r.status, 0);
    const QStringList fields = resultFields(r);
    QCOMPARE(fields.size(), 7);
    QCOMPARE(fields[0], edf);
    QVERIFY(std::fabs(fields[1].toDouble() - 120.0) < 3.0); // the pulse comes back at 120 mmHg
    QVERIFY(std::fabs(fields[5].toDouble() - 450.0) < 5.0);
    QCOMPARE(readAll(exp), before);
    QCOMPARE(readAll(edf), edfBefore);
}

void TestCli::analyzeSaveAndResetWriteTheExpFile()
{
    QTemporaryDir dir;
    const QString edf = makeRecord(dir.path());
    const QString exp = edf.chopped(4) + QStringLiteral(".exp");
    {
        CorvidaExperiment e(exp); // a hand-placed systolic marker at 9 s
        e.setSBPTime(9.0);
    }
    Result r = cli(dir.path(), {QStringLiteral("analyze"), QStringLiteral("--save"), edf});
    QCOMPARE(resultFields(r).value(2), QStringLiteral("9"));
    QCOMPARE(CorvidaExperiment(exp).getSBPTime(), 9.0);
    r = cli(dir.path(),
            {QStringLiteral("analyze"), QStringLiteral("--reset"), QStringLiteral("--save"), edf});
    QCOMPARE(r.status, 0);
    const double automatic = resultFields(r).value(2).toDouble();
    QVERIFY(automatic != 9.0 && automatic >= 4.0);
    QCOMPARE(CorvidaExperiment(exp).getSBPTime(), automatic);
}

void TestCli::analyzeJson()
{
    QTemporaryDir dir;
    const QString edf = makeRecord(dir.path());
    const Result r =
        cli(dir.path(), {QStringLiteral("analyze"), QStringLiteral("--json"), edf, edf});
    QCOMPARE(r.status, 0);
    const QJsonArray results = QJsonDocument::fromJson(r.out.toUtf8()).array();
    QCOMPARE(results.size(), 2);
    const QJsonObject first = results[0].toObject();
    QCOMPARE(first.keys(),
             (QStringList{"BPM", "DBP", "DBPTime", "SBP", "SBPTime", "beats", "file"}));
    QVERIFY(first[QStringLiteral("beats")].toInt() > 50);
}

void TestCli::infoDescribesTheFile()
{
    QTemporaryDir dir;
    const QString edf = makeRecord(dir.path());
    const Result r = cli(dir.path(), {QStringLiteral("info"), edf});
    QCOMPARE(r.status, 0);
    QVERIFY(r.out.contains(QStringLiteral("Channels:2")));
    QVERIFY(r.out.contains(QStringLiteral("1000")));
}

void TestCli::measureWithSimulatedUnit()
{
    QTemporaryDir dir;
    const Result r = cli(dir.path(), {"measure", "--simulated", "--limits", "120/30", "--seconds",
                                      "14", "--rodent", "rat 9"});
    QVERIFY2(r.status == 0, qPrintable(r.err));
    const QStringList fields = resultFields(r);
    QCOMPARE(fields.size(), 7);
    QVERIFY(QFile::exists(fields[0]));
    QVERIFY(fields[0].startsWith(dir.path() + QStringLiteral("/Records/")));
    QVERIFY2(std::fabs(fields[1].toDouble() - 120.0) < 10.0, qPrintable(r.out));
    QVERIFY(std::fabs(fields[5].toDouble() - 500.0) < 15.0);
    QCOMPARE(CorvidaExperiment(fields[0].chopped(4) + ".exp").getRodent(), QStringLiteral("rat 9"));
}

void TestCli::measureWithUnitOnSerialPort()
{
    CorvidaUnitEmulator unit;
    unit.setSerialNumber("CV-0042");
    unit.setSystolic(110);
    unit.setPulse(7.0, 3000);
    unit.setCuffRates(80, 8);
    QVERIFY(unit.plug());
    unit.setStreamTimerActive(true);
    QTemporaryDir dir;
    const Result r = cli(dir.path(), {"measure", "--port", unit.portPath(), "--limits", "160/40",
                                      "--seconds", "15"});
    QVERIFY2(r.status == 0, qPrintable(r.err));
    QCOMPARE(unit.upperLimit(), 160);
    QCOMPARE(unit.lowerLimit(), 40);
    const QStringList fields = resultFields(r);
    QVERIFY(QFile::exists(fields.value(0)));
    QVERIFY2(std::fabs(fields[1].toDouble() - 110.0) < 10.0, qPrintable(r.out));
    QVERIFY(std::fabs(fields[5].toDouble() - 420.0) < 15.0);
    QCOMPARE(CorvidaExperiment(fields[0].chopped(4) + ".exp").getSN(), QStringLiteral("CV-0042"));
}

QTEST_GUILESS_MAIN(TestCli)
#include "tst_cli.moc"
