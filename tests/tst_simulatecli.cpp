#include "support/CliRun.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <edflib.h>

// "corvida-cli simulate" and "analyze --method", run as the real executable: the recording is
// read back with EDFlib's own calls, the truth and the results as the JSON a script reads.
namespace {
using CliRun::Result;

Result cli(const QString &data, const QStringList &arguments, int timeoutMs = 60000)
{
    return CliRun::run(QStringLiteral(CORVIDA_CLI), data, arguments, timeoutMs);
}

QByteArray fileBytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}
} // namespace

class TestSimulateCli : public QObject
{
    Q_OBJECT

private slots:
    void simulateWritesARecordPairAndPrintsItsTruth()
    {
        QTemporaryDir dir;
        const QString edf = dir.filePath(QStringLiteral("rat.edf"));
        const Result r = cli(dir.path(), {QStringLiteral("simulate"), QStringLiteral("--animal"),
                                          QStringLiteral("rat"), QStringLiteral("--seed"),
                                          QStringLiteral("9"), QStringLiteral("--out"), edf});
        QCOMPARE(r.status, 0);
        const QJsonObject truth = QJsonDocument::fromJson(r.out.toUtf8()).object();
        QCOMPARE(truth.value(QStringLiteral("animal")).toString(), QStringLiteral("rat"));
        QCOMPARE(truth.value(QStringLiteral("condition")).toString(), QStringLiteral("clean"));
        QCOMPARE(truth.value(QStringLiteral("SBP")).toDouble(), 125.0);
        QCOMPARE(truth.value(QStringLiteral("DBP")).toDouble(), 85.0);
        QVERIFY(std::abs(truth.value(QStringLiteral("BPM")).toDouble() - 360.0) < 7.2);
        QVERIFY(QFile::exists(dir.filePath(QStringLiteral("rat.exp"))));
        // Nothing else is left in the folder (the work folder of the save is gone).
        QCOMPARE(QDir(dir.path())
                     .entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden),
                 QStringList({QStringLiteral("rat.edf"), QStringLiteral("rat.exp")}));

        // EDFlib reads it: Pressure and Pulse at 1000 Hz.
        edf_hdr_struct hdr;
        QCOMPARE(
            edfopen_file_readonly(edf.toLocal8Bit().constData(), &hdr, EDFLIB_READ_ALL_ANNOTATIONS),
            0);
        QVERIFY(hdr.edfsignals >= 2);
        QCOMPARE(QString::fromLatin1(hdr.signalparam[0].label).trimmed(),
                 QStringLiteral("Pressure"));
        QCOMPARE(QString::fromLatin1(hdr.signalparam[1].label).trimmed(), QStringLiteral("Pulse"));
        QCOMPARE(hdr.signalparam[0].smp_in_datarecord * 10000000LL / hdr.datarecord_duration,
                 1000LL);
        QList<double> pressure(hdr.signalparam[0].smp_in_file);
        QCOMPARE(edfread_physical_samples(hdr.handle, 0, int(pressure.size()), pressure.data()),
                 int(pressure.size()));
        edfclose_file(hdr.handle);
        const double top = *std::max_element(pressure.cbegin(), pressure.cend());
        QVERIFY2(top > 165 && top < 175, qPrintable(QString::number(top)));
        // The cuff passes the true SBP at the time the truth gives.
        const double t = truth.value(QStringLiteral("SBPTime")).toDouble();
        QVERIFY(std::abs(pressure[qsizetype(t * 1000)] - 125.0) < 1.5);
    }

    void refusesBadInputInOneLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("says");
        QTest::newRow("unknown animal")
            << QStringList{QStringLiteral("--animal"), QStringLiteral("hamster")}
            << QStringLiteral("hamster");
        QTest::newRow("no animal") << QStringList() << QStringLiteral("--animal");
        QTest::newRow("unknown condition")
            << QStringList{QStringLiteral("--animal"), QStringLiteral("mouse"),
                           QStringLiteral("--condition"), QStringLiteral("warm")}
            << QStringLiteral("warm");
        QTest::newRow("seed not a number")
            << QStringList{QStringLiteral("--animal"), QStringLiteral("mouse"),
                           QStringLiteral("--seed"), QStringLiteral("x1")}
            << QStringLiteral("--seed");
        QTest::newRow("negative seed")
            << QStringList{QStringLiteral("--animal"), QStringLiteral("mouse"),
                           QStringLiteral("--seed"), QStringLiteral("-1")}
            << QStringLiteral("--seed");
        QTest::newRow("seed beyond 32 bits")
            << QStringList{QStringLiteral("--animal"), QStringLiteral("mouse"),
                           QStringLiteral("--seed"), QStringLiteral("4294967296")}
            << QStringLiteral("--seed");
    }
    void refusesBadInputInOneLine()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, says);
        QTemporaryDir dir;
        const QString edf = dir.filePath(QStringLiteral("x.edf"));
        const Result r = cli(dir.path(), QStringList{QStringLiteral("simulate")} + arguments +
                                             QStringList{QStringLiteral("--out"), edf});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        QVERIFY2(r.err.contains(says), qPrintable(r.err));
        QVERIFY(r.out.isEmpty());
        QVERIFY(!QFile::exists(edf));
    }

    void neverWritesOverAnExistingRecording()
    {
        QTemporaryDir dir;
        const QString edf = dir.filePath(QStringLiteral("taken.edf"));
        QFile f(edf);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("precious");
        f.close();
        const Result r = cli(dir.path(), {QStringLiteral("simulate"), QStringLiteral("--animal"),
                                          QStringLiteral("mouse"), QStringLiteral("--out"), edf});
        QCOMPARE(r.status, 1);
        QCOMPARE(fileBytes(edf), QByteArray("precious"));
    }

    // The refined way is written into the record only when chosen; going back to the usual way
    // leaves the properties file as the usual way writes it. With no pulse the refined way
    // places nothing and says why.
    void methodIsTheRecordsOwnAndWrittenOnlyWhenRefined()
    {
        QTemporaryDir dir;
        const QString edf = dir.filePath(QStringLiteral("m.edf"));
        const QString exp = dir.filePath(QStringLiteral("m.exp"));
        QCOMPARE(cli(dir.path(), {QStringLiteral("simulate"), QStringLiteral("--animal"),
                                  QStringLiteral("mouse"), QStringLiteral("--out"), edf})
                     .status,
                 0);
        QVERIFY(!fileBytes(exp).contains("Method"));
        const auto analyze = [&](const QStringList &extra) {
            const Result r =
                cli(dir.path(), QStringList{QStringLiteral("analyze"), QStringLiteral("--json")} +
                                    extra + QStringList{edf});
            return QJsonDocument::fromJson(r.out.toUtf8()).array().first().toObject();
        };
        const QJsonObject documented =
            analyze({QStringLiteral("--reset"), QStringLiteral("--save")});
        QCOMPARE(documented.value(QStringLiteral("method")).toString(),
                 QStringLiteral("documented"));
        const QByteArray usual = fileBytes(exp);
        QVERIFY(!usual.contains("Method"));

        const QJsonObject refined =
            analyze({QStringLiteral("--reset"), QStringLiteral("--save"),
                     QStringLiteral("--method"), QStringLiteral("refined")});
        QCOMPARE(refined.value(QStringLiteral("method")).toString(), QStringLiteral("refined"));
        QVERIFY(std::abs(refined.value(QStringLiteral("SBP")).toDouble() - 115.0) < 3.0);
        QVERIFY(fileBytes(exp).contains("refined"));
        // A plain recalculation keeps the record's own way.
        QCOMPARE(analyze({QStringLiteral("--reset")}).value(QStringLiteral("method")).toString(),
                 QStringLiteral("refined"));

        analyze({QStringLiteral("--reset"), QStringLiteral("--save"), QStringLiteral("--method"),
                 QStringLiteral("documented")});
        QCOMPARE(fileBytes(exp), usual);

        const Result bad = cli(dir.path(), {QStringLiteral("analyze"), QStringLiteral("--method"),
                                            QStringLiteral("best"), edf});
        QCOMPARE(bad.status, 1);
        QVERIFY(bad.err.contains(QStringLiteral("best")));
    }
};

QTEST_GUILESS_MAIN(TestSimulateCli)
#include "tst_simulatecli.moc"
