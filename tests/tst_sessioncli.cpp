#include "analysis/CorvidaOnlineExperiment.h"
#include "support/CliRun.h"
#include "support/CorvidaUnitEmulator.h"
#include "support/ExpFile.h"
#include "support/RecordFiles.h"
#include "support/XlsxArchive.h"
#include "support/XlsxReader.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>

namespace {
using CliRun::Result;

Result cli(const QString &data, const QStringList &arguments, int timeoutMs = 120000)
{
    return CliRun::run(QStringLiteral(CORVIDA_CLI), data, arguments, timeoutMs);
}

QJsonObject object(const QString &text)
{
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

QStringList recordsIn(const QString &data)
{
    return QDir(data + QStringLiteral("/Records")).entryList({"*.edf"}, QDir::Files);
}

// A recording whose pulse comes back below 120 mmHg, saved as cycle 1 of a session, or as an
// ordinary record without one. Returns the ".edf" path.
QString writeRecord(const QString &folder, const QString &session, int minute)
{
    CorvidaOnlineExperiment e;
    QList<double> pressure, pulse;
    for (int i = 0; i < 20000; ++i) {
        const double t = i / 1000.0;
        pressure << (t < 2 ? 80 * t : std::max(0.0, 160 - 10 * (t - 2)));
        pulse << (pressure.last() > 120 ? 0.005 : 0.3) * std::sin(2 * M_PI * 7.5 * t);
    }
    e.setSamplingRate(1000);
    e.updateData({pressure, pulse});
    e.setStartDateTime(QDateTime(QDate(2026, 5, 4), QTime(9, minute)));
    if (!session.isEmpty()) {
        e.setSession(session);
        e.setCycle(1);
        e.setPlanned(1);
        e.setAccepted(true);
    }
    return e.save(folder) ? e.getFilepath().chopped(4) + QStringLiteral(".edf") : QString();
}

// A number of the CLI's JSON against the same number elsewhere: both null, or equal.
bool sameNumber(const QJsonValue &a, const QJsonValue &b)
{
    if (a.isNull() || b.isNull())
        return a.isNull() && b.isNull();
    return qAbs(a.toDouble() - b.toDouble()) < 1e-9;
}
} // namespace

class TestSessionCli : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void badInputIsOneLineAndStatusOne_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        const QStringList sim = {"session", "--simulated"};
        QTest::newRow("no measurement cycles") << sim + QStringList{"--cycles", "0"} << "--cycles";
        QTest::newRow("negative cycles") << sim + QStringList{"--cycles", "-3"} << "--cycles";
        QTest::newRow("cycles not a number") << sim + QStringList{"--cycles", "ten"} << "--cycles";
        QTest::newRow("negative acclimation")
            << sim + QStringList{"--acclimation", "-1"} << "--acclimation";
        QTest::newRow("fractional acclimation")
            << sim + QStringList{"--acclimation", "2.5"} << "--acclimation";
        QTest::newRow("interval not a number")
            << sim + QStringList{"--interval", "soon"} << "--interval";
        QTest::newRow("negative interval") << sim + QStringList{"--interval", "-4"} << "--interval";
        QTest::newRow("bad limits") << sim + QStringList{"--limits", "30/120"} << "bad limits";
        QTest::newRow("no unit") << QStringList{"session"} << "name one unit";
        QTest::newRow("no such port")
            << QStringList{"session", "--port", "/dev/no-such-port"} << "no such port";
        QTest::newRow("unknown animal")
            << sim + QStringList{"--animal", "hamster"} << "unknown animal \"hamster\"";
        QTest::newRow("animal on a real unit")
            << QStringList{"session", "--port", "/dev/no-such-port", "--animal", "rat"}
            << "--animal is for a simulated unit";
        QTest::newRow("measure: unknown animal")
            << QStringList{"measure", "--simulated", "--animal", "gerbil"} << "unknown animal";
    }
    void badInputIsOneLineAndStatusOne()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        QTemporaryDir dir;
        const Result r = cli(dir.path(), arguments);
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains(message), qPrintable(r.err));
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        QVERIFY(recordsIn(dir.path()).isEmpty());
    }

    void simulatedSessionAgreesWithAnalyzeAndIsFoundAgain()
    {
        QTemporaryDir dir;
        const Result r =
            cli(dir.path(), {"session", "--simulated", "--limits", "120/30", "--acclimation", "1",
                             "--cycles", "1", "--interval", "0", "--rodent", "rat 3", "--json"});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        const QJsonObject session = object(r.out);
        QCOMPARE(session["rodent"].toString(), QStringLiteral("rat 3"));
        QVERIFY(!session["unit"].toString().isEmpty());
        QVERIFY(QDateTime::fromString(session["started"].toString(), Qt::ISODate).isValid());
        const QJsonArray cycles = session["cycles"].toArray();
        QCOMPARE(cycles.size(), 2);
        QCOMPARE(cycles[0].toObject()["acclimation"].toBool(), true);
        QCOMPARE(cycles[1].toObject()["acclimation"].toBool(), false);
        QCOMPARE(recordsIn(dir.path()).size(), 2);

        // Every cycle's numbers are those the records give when analysed on their own.
        QStringList files;
        for (const QJsonValue &c : cycles)
            files << c.toObject()["file"].toString();
        const Result analysed = cli(dir.path(), QStringList{"analyze", "--json"} + files);
        QVERIFY2(analysed.status == 0, qPrintable(analysed.err));
        const QJsonArray results = QJsonDocument::fromJson(analysed.out.toUtf8()).array();
        QCOMPARE(results.size(), 2);
        for (int i = 0; i < 2; ++i) {
            const QJsonObject c = cycles[i].toObject();
            const QJsonObject a = results[i].toObject();
            for (const char *key : {"SBP", "DBP", "BPM", "MAP"})
                QVERIFY2(sameNumber(c[key], a[key]), key);
        }
        // The simulated animal's systolic pressure is 120 mmHg.
        QVERIFY(qAbs(cycles[1].toObject()["SBP"].toDouble() - 120.0) < 8.0);

        const QJsonObject summary = session["summary"].toObject();
        QCOMPARE(summary["total"].toInt(), 1);
        const bool accepted = cycles[1].toObject()["accepted"].toBool();
        QCOMPARE(summary["accepted"].toInt(), accepted ? 1 : 0);
        QCOMPARE(summary["flagged"].toBool(), true); // one cycle is fewer than five accepted

        // The records folder alone gives the same session back.
        const Result listed = cli(dir.path(), {"sessions", "--json"});
        QVERIFY2(listed.status == 0, qPrintable(listed.err));
        const QJsonArray sessions = QJsonDocument::fromJson(listed.out.toUtf8()).array();
        QCOMPARE(sessions.size(), 1);
        QCOMPARE(sessions[0].toObject()["summary"].toObject(), summary);
        QCOMPARE(sessions[0].toObject()["cycles"].toArray(), cycles);
        QCOMPARE(sessions[0].toObject()["started"], session["started"]);
        const Result other = cli(dir.path(), {"sessions", "--rodent", "mouse 1", "--json"});
        QCOMPARE(QJsonDocument::fromJson(other.out.toUtf8()).array().size(), 0);

        // Exported, the records bring a block of their session and their verdicts.
        const QString csv = dir.filePath("day.csv");
        const Result exported =
            cli(dir.path(), QStringList{"export", "--essential", "--out", csv} + files);
        QVERIFY2(exported.status == 0, qPrintable(exported.err));
        QFile file(csv);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        const QStringList lines = text.split(QStringLiteral("\r\n"));
        QCOMPARE(lines.value(0), QStringLiteral("Summary"));
        const int sessionsAt = int(lines.indexOf(QStringLiteral("Sessions")));
        QVERIFY(sessionsAt > 0);
        QVERIFY(lines.value(sessionsAt + 2).startsWith(QStringLiteral("rat 3;")));
        QVERIFY(
            lines.value(sessionsAt + 2).contains(QStringLiteral(";%1/1;").arg(accepted ? 1 : 0)));
        QVERIFY(text.contains(QStringLiteral("Cycle;2;;")));
        QVERIFY(text.contains(QStringLiteral("Accepted;") + (accepted ? "Yes;" : "No;")));

        // In a workbook the sessions come after the summary, before the records.
        const QString xlsx = dir.filePath("day.xlsx");
        QCOMPARE(
            cli(dir.path(), QStringList{"export", "--essential", "--out", xlsx} + files).status, 0);
        const QString workbook = QString::fromUtf8(XlsxArchive::member(xlsx, "xl/workbook.xml"));
        const qsizetype summaryAt = workbook.indexOf(QLatin1String("name=\"Summary\""));
        const qsizetype sessionsSheetAt = workbook.indexOf(QLatin1String("name=\"Sessions\""));
        QVERIFY2(summaryAt > 0 && sessionsSheetAt > summaryAt, qPrintable(workbook));
        QCOMPARE(workbook.count(QLatin1String("<sheet ")), 4);
        if (XlsxReader::available()) {
            const QJsonArray book = XlsxReader::read(xlsx);
            const QJsonArray row = book[1].toObject()["rows"].toArray()[1].toArray();
            QVERIFY(row[4].isDouble());
            QVERIFY(sameNumber(row[4], summary["SBP"].toObject()["mean"]));
        }
    }

    void simulatedAnimalSessionFindsItsTruth()
    {
        // A simulated mouse is 115/80 mmHg at 600 beats per minute; the test signal beats at 500.
        QTemporaryDir dir;
        const Result r =
            cli(dir.path(), {"session", "--simulated", "--animal", "mouse", "--limits", "150/70",
                             "--acclimation", "0", "--cycles", "1", "--interval", "0", "--json"});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        const QJsonObject c = object(r.out)["cycles"].toArray()[0].toObject();
        QVERIFY2(c["accepted"].toBool(), qPrintable(r.out));
        QVERIFY2(qAbs(c["SBP"].toDouble() - 115.0) <= 10.0, qPrintable(r.out));
        QVERIFY2(qAbs(c["DBP"].toDouble() - 80.0) <= 15.0, qPrintable(r.out));
        QVERIFY2(qAbs(c["BPM"].toDouble() - 600.0) <= 0.035 * 600.0, qPrintable(r.out));
    }

    void olderRecordsAreListedButMakeNoSession()
    {
        QTemporaryDir dir;
        QCOMPARE(cli(dir.path(), {"sessions"}).status, 1); // no records folder yet
        const QString records = dir.filePath("Records");
        QVERIFY(QDir().mkpath(records));
        RecordFiles::Plan plan;
        plan.start = QDateTime(QDate(2026, 11, 21), QTime(10, 0));
        plan.rodent = QStringLiteral("rat 3");
        plan.sbp = 121;
        plan.dbp = 81;
        QVERIFY(!RecordFiles::write(records, plan).isEmpty());

        const Result listed = cli(dir.path(), {"sessions", "--json"});
        QCOMPARE(listed.status, 0);
        QCOMPARE(QJsonDocument::fromJson(listed.out.toUtf8()).array().size(), 0);
        const Result list = cli(dir.path(), {"list"});
        QCOMPARE(list.status, 0);
        // Listed as always, with MAP and the heart rate in columns of their own.
        QVERIFY2(list.out.contains(QStringLiteral(";rat 3;;121/81;94;")), qPrintable(list.out));
    }

    void operatorVerdictOverridesAndCanBeGivenBack()
    {
        QTemporaryDir dir;
        const QString records = dir.filePath("Records");
        QVERIFY(QDir().mkpath(records));
        const QString cycle = writeRecord(records, "2026-05-04T09:00:00 CV-1", 0);
        const QString ordinary = writeRecord(records, QString(), 5);
        QVERIFY(!cycle.isEmpty() && !ordinary.isEmpty());
        const QString exp = cycle.chopped(4) + ".exp";

        Result r = cli(dir.path(), {"verdict", "--reject", cycle});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        QCOMPARE(r.out, "file;accepted;reason\n" + cycle + ";no;Rejected by the operator\n");
        QCOMPARE(ExpFile::values(exp).value("Verdict"), QStringLiteral("2"));
        QCOMPARE(ExpFile::values(exp).value("Accepted"), QStringLiteral("true"));
        r = cli(dir.path(), {"sessions", "--json"});
        const QJsonObject session = QJsonDocument::fromJson(r.out.toUtf8()).array()[0].toObject();
        QCOMPARE(session["summary"].toObject()["accepted"].toInt(), 0);

        r = cli(dir.path(), {"verdict", "--automatic", cycle});
        QCOMPARE(r.out, "file;accepted;reason\n" + cycle + ";yes;\n");
        QCOMPARE(ExpFile::values(exp).value("Verdict"), QStringLiteral("0"));

        const QByteArray before = RecordFiles::readAll(ordinary.chopped(4) + ".exp");
        r = cli(dir.path(), {"verdict", "--accept", ordinary});
        QCOMPARE(r.status, 1);
        QVERIFY(r.err.contains("not a cycle of a session"));
        QCOMPARE(RecordFiles::readAll(ordinary.chopped(4) + ".exp"), before);
        QCOMPARE(cli(dir.path(), {"verdict", "--accept", "--reject", cycle}).status, 1);
    }

    void sessionOnASerialUnit()
    {
        CorvidaUnitEmulator unit;
        unit.setSerialNumber("CV-0077");
        unit.setSystolic(110);
        unit.setPulse(7.0, 3000);
        unit.setCuffRates(80, 8);
        QVERIFY(unit.plug());
        unit.setStreamTimerActive(true);
        QTemporaryDir dir;
        const Result r =
            cli(dir.path(), {"session", "--port", unit.portPath(), "--limits", "160/40",
                             "--acclimation", "0", "--cycles", "1", "--interval", "0"});
        QVERIFY2(r.status == 0, qPrintable(r.err));
        QCOMPARE(unit.upperLimit(), 160);
        QCOMPARE(unit.lowerLimit(), 40);
        const QStringList lines = r.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines.value(0), QStringLiteral("cycle;kind;file;SBP;DBP;MAP;BPM;accepted;reason"));
        const QStringList cells = lines.value(1).split(QLatin1Char(';'));
        QCOMPARE(cells.value(1), QStringLiteral("measurement"));
        QVERIFY(QFile::exists(cells.value(2)));
        QVERIFY2(qAbs(cells.value(3).toDouble() - 110.0) < 10.0, qPrintable(r.out));
        QVERIFY2(qAbs(cells.value(6).toDouble() - 420.0) < 15.0, qPrintable(r.out));
        QVERIFY(r.out.contains(QStringLiteral("\naccepted ")));
        QVERIFY(!unit.isMeasuring());
    }

    void interruptKeepsTheFinishedCycles()
    {
        QTemporaryDir dir;
        QProcess p;
        QSignalSpy finished(&p, &QProcess::finished);
        p.start(QStringLiteral(CORVIDA_CLI),
                {"--data", dir.path(), "session", "--simulated", "--limits", "120/30",
                 "--acclimation", "0", "--cycles", "5", "--interval", "30", "--json"});
        QVERIFY(p.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(recordsIn(dir.path()).size() == 1, 60000);
        ::kill(pid_t(p.processId()), SIGINT);
        QVERIFY(finished.wait(10000));
        QCOMPARE(p.exitCode(), 130);
        const QJsonObject session = object(QString::fromUtf8(p.readAllStandardOutput()));
        QCOMPARE(session["cycles"].toArray().size(), 1);
        QVERIFY(session["summary"].toObject()["flags"].toArray().first().toString().startsWith(
            QStringLiteral("Incomplete: 1 of 5")));
        QCOMPARE(recordsIn(dir.path()).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestSessionCli)
#include "tst_sessioncli.moc"
