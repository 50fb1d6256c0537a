#include "analysis/CorvidaExperiment.h"
#include "session/SessionCatalog.h"
#include "session/SessionStatistics.h"

#include <QJsonArray>
#include <QStandardPaths>
#include <QtTest>
#include <memory>
#include <vector>

namespace {
using Cycle = SessionStatistics::Cycle;

// An acclimation cycle (never counted), three accepted measurement cycles and a rejected one.
// By hand: SBP 120, 126, 114 -> mean 120, SD 6; DBP 80, 84, 86 -> 83.333, SD 3.0551;
// MAP 93.333, 98, 95.333 -> 95.556, SD 2.3412; rate 450, 470, 430 -> 450, SD 20.
QList<Cycle> day()
{
    return {{1, true, true, 200, 150, 600},
            {2, false, true, 120, 80, 450},
            {3, false, true, 126, 84, 470},
            {4, false, false, 180, 60, 300},
            {5, false, true, 114, 86, 430}};
}

std::unique_ptr<CorvidaExperiment> record(const QString &session, int cycle, bool acclimation,
                                          double sbp, double dbp, double bpm, bool accepted)
{
    auto r = std::make_unique<CorvidaExperiment>();
    r->setAutoSave(false);
    r->setSession(session);
    r->setCycle(cycle);
    r->setAcclimation(acclimation);
    r->setSBP(sbp);
    r->setDBP(dbp);
    r->setBPM(bpm);
    r->setAccepted(accepted);
    r->setRodent(QStringLiteral("R1"));
    r->setPlanned(3);
    return r;
}
} // namespace

class TestSessionStatistics : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void meanAndSpreadOfAcceptedMeasurementCycles()
    {
        const SessionStatistics::Summary s = SessionStatistics({3, 10.0}).summarize(day());
        QCOMPARE(s.total, 4);
        QCOMPARE(s.accepted, 3);
        QCOMPARE(s.sbp.mean, 120.0);
        QCOMPARE(s.sbp.sd, 6.0);
        QVERIFY(qAbs(s.dbp.mean - 83.3333) < 1e-3);
        QVERIFY(qAbs(s.dbp.sd - 3.0551) < 1e-3);
        QVERIFY(qAbs(s.map.mean - 95.5556) < 1e-3);
        QVERIFY(qAbs(s.map.sd - 2.3412) < 1e-3);
        QCOMPARE(s.bpm.mean, 450.0);
        QCOMPARE(s.bpm.sd, 20.0);
        QVERIFY(!s.flagged);
    }

    void flagsTellWhyTheDayShouldBeRepeated_data()
    {
        QTest::addColumn<int>("minAccepted");
        QTest::addColumn<double>("maxSD");
        QTest::addColumn<int>("planned");
        QTest::addColumn<QStringList>("flags");
        QTest::newRow("too few accepted")
            << 5 << 10.0 << 0 << QStringList{"Only 3 of 4 cycles accepted (at least 5 needed)"};
        QTest::newRow("SD of SBP above the limit")
            << 3 << 5.0 << 0 << QStringList{"SD of SBP 6.0 mmHg above 5.0"};
        QTest::newRow("SD at the limit is not flagged") << 3 << 6.0 << 0 << QStringList{};
        QTest::newRow("stopped early")
            << 3 << 10.0 << 6 << QStringList{"Incomplete: 4 of 6 cycles measured"};
    }
    void flagsTellWhyTheDayShouldBeRepeated()
    {
        QFETCH(int, minAccepted);
        QFETCH(double, maxSD);
        QFETCH(int, planned);
        QFETCH(QStringList, flags);
        const SessionStatistics::Summary s =
            SessionStatistics({minAccepted, maxSD}).summarize(day(), planned);
        QCOMPARE(s.flags, flags);
        QCOMPARE(s.flagged, !flags.isEmpty());
    }

    void numbersThatDoNotExistAreNullInJson()
    {
        // One accepted cycle has a mean but no spread; none accepted has neither.
        const QList<Cycle> one = {{1, false, true, 120, 80, 450}, {2, false, false, 0, 0, 0}};
        const QJsonObject a = SessionStatistics({1, 10.0}).summarize(one).toJson();
        QCOMPARE(a["SBP"].toObject()["mean"].toDouble(), 120.0);
        QVERIFY(a["SBP"].toObject()["sd"].isNull());
        QCOMPARE(a["MAP"].toObject()["mean"].toDouble(), 80 + 40 / 3.0);
        QCOMPARE(a["total"].toInt(), 2);
        const QList<Cycle> none = {{1, false, false, 120, 80, 450}};
        const QJsonObject b = SessionStatistics().summarize(none).toJson();
        QVERIFY(b["BPM"].toObject()["mean"].isNull());
        QCOMPARE(b["flagged"].toBool(), true);
        QCOMPARE(b["flags"].toArray().size(), 1);
    }

    void catalogFindsSessionsFromTheirRecordsAlone()
    {
        const QString morning = QStringLiteral("2026-03-02T09:15:00 CRV-0001");
        const QString earlier = QStringLiteral("2026-03-01T14:00:00 V2");
        std::vector<std::unique_ptr<CorvidaExperiment>> owned;
        owned.push_back(record(morning, 3, false, 126, 84, 470, true));
        owned.push_back(record(earlier, 1, false, 110, 70, 400, true));
        owned.push_back(std::make_unique<CorvidaExperiment>()); // an ordinary record
        owned.push_back(record(morning, 1, true, 200, 150, 600, true));
        owned.push_back(record(morning, 2, false, 120, 80, 450, true));
        owned.back()->setVerdict(CorvidaExperiment::VerdictRejected); // the operator said no
        owned.push_back(record(morning, 4, false, 114, 86, 430, true));
        QList<CorvidaExperiment *> records;
        for (const auto &r : owned)
            records << r.get();

        const QList<SessionCatalog::Session> sessions =
            SessionCatalog::group(records, SessionStatistics({1, 10.0}));
        QCOMPARE(sessions.size(), 2);
        QCOMPARE(sessions[0].id, earlier);
        QCOMPARE(sessions[0].unit, QStringLiteral("V2"));
        const SessionCatalog::Session &s = sessions[1];
        QCOMPARE(s.started, QDateTime(QDate(2026, 3, 2), QTime(9, 15)));
        QCOMPARE(s.unit, QStringLiteral("CRV-0001"));
        QList<int> order;
        for (const CorvidaExperiment *r : s.cycles)
            order << r->getCycle();
        QCOMPARE(order, (QList<int>{1, 2, 3, 4}));
        QCOMPARE(s.summary.total, 3);
        QCOMPARE(s.summary.accepted, 2);
        QCOMPARE(s.summary.sbp.mean, 120.0); // 126 and 114
        QVERIFY(s.summary.flags.isEmpty());

        const XLSXTable table = SessionCatalog::sessionsTable(sessions);
        QCOMPARE(table.size(), 3);
        QCOMPARE(table[0].size(), 13);
        QCOMPARE(table[2][0].toString(), QStringLiteral("R1"));
        QCOMPARE(table[2][1].toString(), QStringLiteral("2026-03-02 09:15:00"));
        QCOMPARE(table[2][3].toString(), QStringLiteral("2/3"));
        QCOMPARE(table[2][4].toDouble(), 120.0);
        QCOMPARE(table[2][5].toDouble(), std::sqrt(72.0));

        const QJsonObject json = SessionCatalog::sessionJson(s, {});
        const QJsonArray cycles = json["cycles"].toArray();
        QCOMPARE(cycles.size(), 4);
        QCOMPARE(cycles[1].toObject()["accepted"].toBool(), false);
        QCOMPARE(cycles[1].toObject()["reason"].toString(),
                 QStringLiteral("Rejected by the operator"));
        QCOMPARE(cycles[0].toObject()["acclimation"].toBool(), true);
        QCOMPARE(cycles[2].toObject()["MAP"].toDouble(), 84 + 42 / 3.0);
    }
};

QTEST_GUILESS_MAIN(TestSessionStatistics)
#include "tst_sessionstatistics.moc"
