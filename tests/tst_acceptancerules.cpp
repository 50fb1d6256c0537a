#include "analysis/CorvidaExperiment.h"
#include "session/AcceptanceRules.h"
#include "session/PulseGate.h"
#include "session/SessionVerdictKeeper.h"
#include "storage/RecordDatabase.h"
#include "support/ExpFile.h"
#include "support/MemoryRecord.h"
#include "support/PulseTrain.h"
#include "support/TailCuff.h"

#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>
#include <limits>

namespace {
AcceptanceRules::Facts good()
{
    AcceptanceRules::Facts f;
    f.sbp = 130;
    f.dbp = 90;
    f.bpm = 450;
    f.irregularPercent = 5;
    f.pulseBefore = true;
    return f;
}

// The pulse comes back below 120 mmHg (at 6 s) and grows to full height over the next 3 s.
void tailCuffRecording(QList<double> *pressure, QList<double> *pulse)
{
    TailCuff::series(pressure, pulse, 20.0, TailCuff::Pulse::Grows);
}
} // namespace

Q_DECLARE_METATYPE(AcceptanceRules::Facts)

class TestAcceptanceRules : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void judgesEachRuleWithItsReason_data()
    {
        QTest::addColumn<AcceptanceRules::Facts>("facts");
        QTest::addColumn<QString>("reason"); // empty: accepted
        using F = AcceptanceRules::Facts;
        const auto with = [](std::function<void(F &)> change) {
            F f = good();
            change(f);
            return f;
        };
        QTest::newRow("all good") << good() << QString();
        QTest::newRow("upper limits are inclusive") << with([](F &f) {
            f.bpm = 750;
            f.sbp = 250;
            f.dbp = 200;
            f.irregularPercent = 25;
        }) << QString();
        QTest::newRow("lower limits are inclusive") << with([](F &f) {
            f.bpm = 250;
            f.sbp = 60;
            f.dbp = 50;
        }) << QString();
        QTest::newRow("no pulse before")
            << with([](F &f) { f.pulseBefore = false; }) << "No pulse before inflation";
        QTest::newRow("no systolic") << with([](F &f) { f.sbp = 0; }) << "No systolic point found";
        QTest::newRow("no markers") << with([](F &f) { f.sbp = f.dbp = 0; })
                                    << "No systolic point found; No diastolic point found";
        QTest::newRow("heart rate high")
            << with([](F &f) { f.bpm = 800; }) << "Heart rate 800 bpm outside 250 to 750";
        QTest::newRow("no regular beat")
            << with([](F &f) { f.bpm = std::numeric_limits<double>::quiet_NaN(); })
            << "No heart rate found";
        QTest::newRow("SBP implausible")
            << with([](F &f) { f.sbp = 280; }) << "SBP 280 mmHg outside 60 to 250";
        QTest::newRow("DBP implausible")
            << with([](F &f) { f.dbp = 20; }) << "DBP 20 mmHg outside 30 to 200";
        QTest::newRow("pressures too close")
            << with([](F &f) { f.dbp = 125; }) << "SBP only 5 mmHg above DBP (at least 10 needed)";
        QTest::newRow("movement") << with([](F &f) { f.irregularPercent = 40; })
                                  << "Irregular beats (40 %), the animal probably moved";
        QTest::newRow("two faults, both named") << with([](F &f) {
            f.pulseBefore = false;
            f.irregularPercent = 60;
        }) << "No pulse before inflation; Irregular beats (60 %), the animal probably moved";
    }
    void judgesEachRuleWithItsReason()
    {
        QFETCH(AcceptanceRules::Facts, facts);
        QFETCH(QString, reason);
        const AcceptanceRules::Verdict v = AcceptanceRules().judge(facts);
        QCOMPARE(v.accepted, reason.isEmpty());
        QCOMPARE(v.reason, reason);
    }

    void irregularShareAgainstHandCounts_data()
    {
        QTest::addColumn<QList<QPointF>>("rates");
        QTest::addColumn<double>("from");
        QTest::addColumn<double>("percent");
        QTest::newRow("one of five off the median")
            << QList<QPointF>{{1, 400}, {2, 400}, {3, 410}, {4, 390}, {5, 600}} << 0.0 << 20.0;
        QTest::newRow("exactly a fifth off is still regular")
            << QList<QPointF>{{1, 400}, {2, 400}, {3, 480}, {4, 320}} << 0.0 << 0.0;
        QTest::newRow("beats before the start are not judged")
            << QList<QPointF>{{1, 900}, {2, 400}, {3, 400}, {4, 400}} << 1.5 << 0.0;
        QTest::newRow("a missed beat reads as half the rate")
            << QList<QPointF>{{1, 450}, {2, 450}, {3, 225}, {4, 450}} << 0.0 << 25.0;
        QTest::newRow("too few beats to tell")
            << QList<QPointF>{{1, 400}, {2, 400}} << 0.0 << 100.0;
    }
    void irregularShareAgainstHandCounts()
    {
        QFETCH(QList<QPointF>, rates);
        QFETCH(double, from);
        QFETCH(double, percent);
        QCOMPARE(AcceptanceRules::irregularPercent(rates, from), percent);
    }

    void pulseGateOpensOnlyForARegularStrongPulse_data()
    {
        QTest::addColumn<double>("bpm");
        QTest::addColumn<double>("amplitude");
        QTest::addColumn<QList<int>>("missing");
        QTest::addColumn<bool>("open");
        QTest::newRow("mouse pulse") << 600.0 << 0.5 << QList<int>{} << true;
        QTest::newRow("rat pulse") << 350.0 << 0.5 << QList<int>{} << true;
        QTest::newRow("too weak") << 450.0 << 0.005 << QList<int>{} << false;
        QTest::newRow("too slow for a rodent") << 200.0 << 0.5 << QList<int>{} << false;
        QTest::newRow("every third beat missing")
            << 450.0 << 0.5 << QList<int>{2, 5, 8, 11, 14, 17, 20} << false;
    }
    void pulseGateOpensOnlyForARegularStrongPulse()
    {
        QFETCH(double, bpm);
        QFETCH(double, amplitude);
        QFETCH(QList<int>, missing);
        QFETCH(bool, open);
        PulseTrain::Options o;
        o.beatsPerMinute = bpm;
        o.amplitude = amplitude;
        o.seconds = 3.0;
        o.missingBeats = missing;
        const PulseGate::Assessment a = PulseGate().assess(PulseTrain::make(o).samples, 1000.0);
        QCOMPARE(a.open, open);
        if (open)
            QVERIFY2(std::fabs(a.heartRate - bpm) < 0.05 * bpm,
                     qPrintable(QString::number(a.heartRate)));
    }

    void pulseGateStaysShutOnAFlatLine()
    {
        const PulseGate::Assessment a = PulseGate().assess(QList<double>(3000, 0.1), 1000.0);
        QVERIFY(!a.open);
        QCOMPARE(a.beats, 0);
    }

    void movingAMarkerReevaluatesButTheOperatorsVerdictStays()
    {
        QList<double> pressure, pulse;
        tailCuffRecording(&pressure, &pulse);
        MemoryRecord record;
        record.setAutoSave(false);
        record.setSeries(pressure, pulse, 1000);
        record.setSession(QStringLiteral("2026-01-05T09:00:00 V1"));
        record.setPulseBefore(true);
        record.recalculate(true);
        AcceptanceRules rules;
        const AcceptanceRules::Verdict first = rules.apply(record);
        QVERIFY2(first.accepted, qPrintable(first.reason));
        QVERIFY(record.getSBP() > 110 && record.getSBP() <= 121);
        QVERIFY(record.isAccepted());

        // A systolic marker moved to 1 s, where the cuff holds 80 mmHg, under the diastolic one.
        record.setSBPTime(1.0);
        const AcceptanceRules::Verdict moved = rules.apply(record);
        QVERIFY(!moved.accepted);
        QVERIFY2(moved.reason.contains(QLatin1String("above DBP")), qPrintable(moved.reason));
        QCOMPARE(record.verdictText(), moved.reason);

        record.setVerdict(CorvidaExperiment::VerdictAccepted);
        QVERIFY(record.isAccepted());
        QCOMPARE(record.verdictText(), QStringLiteral("Accepted by the operator"));
        record.setSBPTime(7.0);
        rules.apply(record);
        QCOMPARE(record.getVerdict(), qint32(CorvidaExperiment::VerdictAccepted));
        QCOMPARE(record.verdictText(), QStringLiteral("Accepted by the operator"));
    }

    void listedCycleIsJudgedAgainWhenItsMarkerMoves()
    {
        QTemporaryDir dir;
        QList<double> pressure, pulse;
        tailCuffRecording(&pressure, &pulse);
        MemoryRecord cycle, ordinary;
        for (MemoryRecord *r : {&cycle, &ordinary}) {
            r->setSeries(pressure, pulse, 1000);
            r->recalculate(true);
        }
        ordinary.setStartDateTime(cycle.startDateTime().addSecs(60));
        cycle.setSession(QStringLiteral("2026-01-05T09:00:00 V1"));
        cycle.setPulseBefore(true);
        AcceptanceRules().apply(cycle);
        QVERIFY(cycle.getAccepted());
        QVERIFY(cycle.save(dir.path()));
        QVERIFY(ordinary.save(dir.path()));

        RecordDatabase database(dir.path());
        database.reload();
        SessionVerdictKeeper keeper(&database, nullptr);
        QCOMPARE(database.count(), 2);
        for (CorvidaExperiment *r : database.records())
            r->setSBPTime(1.0); // 80 mmHg, under the diastolic marker

        const QMap<QString, QString> judged = ExpFile::values(cycle.getFilepath());
        QCOMPARE(judged.value("Accepted"), QStringLiteral("false"));
        QVERIFY2(judged.value("Reason").contains(QLatin1String("above DBP")),
                 qPrintable(judged.value("Reason")));
        QVERIFY(!ExpFile::values(ordinary.getFilepath()).contains("Accepted"));

        // Put back where the pulse returns, the cycle is accepted again.
        CorvidaExperiment *listed = database.record(database.rowOf(cycle.getFilepath()));
        listed->setSBPTime(cycle.getSBPTime());
        QCOMPARE(ExpFile::values(cycle.getFilepath()).value("Accepted"), QStringLiteral("true"));
    }

    void ordinaryRecordsWriteNoSessionData()
    {
        QTemporaryDir dir;
        QList<double> pressure, pulse;
        tailCuffRecording(&pressure, &pulse);
        MemoryRecord record;
        record.setSeries(pressure, pulse, 1000);
        record.setRodent(QStringLiteral("M1"));
        QVERIFY(record.save(dir.path()));
        const QString exp = record.getFilepath();
        const QMap<QString, QString> values = ExpFile::values(exp);
        QCOMPARE(values.value("Rodent"), QStringLiteral("M1"));
        for (const char *name : {"Session", "Cycle", "Acclimation", "PulseBefore", "Accepted",
                                 "Reason", "Verdict", "Planned"})
            QVERIFY2(!values.contains(QLatin1String(name)), name);

        // And such a file reads back as a record of no session.
        CorvidaExperiment again(exp);
        QVERIFY(!again.isSessionCycle());
        QCOMPARE(again.getCycle(), 0);
    }

    void sessionDataSurvivesTheFile()
    {
        QTemporaryDir dir;
        QList<double> pressure, pulse;
        tailCuffRecording(&pressure, &pulse);
        MemoryRecord record;
        record.setSeries(pressure, pulse, 1000);
        record.setSession(QStringLiteral("2026-01-05T09:00:00 V1"));
        record.setCycle(7);
        record.setAcclimation(false);
        record.setAccepted(false);
        record.setReason(QStringLiteral("No pulse before inflation"));
        record.setVerdict(CorvidaExperiment::VerdictAccepted);
        QVERIFY(record.save(dir.path()));
        const QMap<QString, QString> values = ExpFile::values(record.getFilepath());
        QCOMPARE(values.value("Cycle"), QStringLiteral("7"));
        QCOMPARE(values.value("Reason"), QStringLiteral("No pulse before inflation"));
        QCOMPARE(values.value("Verdict"), QStringLiteral("1"));

        CorvidaExperiment again(record.getFilepath());
        QCOMPARE(again.getSession(), QStringLiteral("2026-01-05T09:00:00 V1"));
        QCOMPARE(again.getCycle(), 7);
        QVERIFY(again.isAccepted());
        QVERIFY(!again.getAccepted());
    }
};

QTEST_GUILESS_MAIN(TestAcceptanceRules)
#include "tst_acceptancerules.moc"
