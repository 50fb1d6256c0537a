#include "analysis/CorvidaExperiment.h"
#include "device/ComCorvidaDevice.h"
#include "device/VirtualCorvidaDevice.h"
#include "session/SessionCatalog.h"
#include "session/SessionRun.h"
#include "support/CorvidaUnitEmulator.h"
#include "support/ExpFile.h"
#include "support/RecordFiles.h"
#include "support/ScratchDisk.h"
#include "support/SessionRig.h"

#include <QDir>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

namespace {
constexpr qint64 kStepMs = SessionRig::kStepMs;
using Rig = SessionRig;

QStringList files(const QString &folder, const QString &pattern)
{
    return QDir(folder).entryList({pattern}, QDir::Files, QDir::Name);
}
} // namespace

class TestSessionRun : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void cyclesFollowTheTimelineAndBecomeRecords()
    {
        QTemporaryDir dir;
        Rig rig(dir.path(), Rig::plan120(1, 2));
        QSignalSpy states(rig.run.get(), &SessionRun::stateChanged);
        QSignalSpy started(rig.run.get(), &SessionRun::cycleStarted);
        QList<qint64> startTimes, endTimes;
        connect(rig.run.get(), &SessionRun::cycleStarted, this, [&] { startTimes << rig.now; });
        connect(rig.run.get(), &SessionRun::cycleFinished, this, [&] { endTimes << rig.now; });
        QVERIFY(rig.start());
        QVERIFY(rig.advanceUntil([&] { return !rig.run->isRunning(); }));
        QCOMPARE(rig.run->state(), SessionRun::State::Finished);

        using S = SessionRun::State;
        QList<S> seen;
        for (const QList<QVariant> &args : states)
            seen << args[0].value<S>();
        const QList<S> expected = {S::WaitingForPulse, S::Measuring, S::Interval,
                                   S::WaitingForPulse, S::Measuring, S::Interval,
                                   S::WaitingForPulse, S::Measuring, S::Finished};
        QCOMPARE(seen, expected);
        // Acclimation 1 of 1, then cycle 1 of 2 and 2 of 2.
        QCOMPARE(started.size(), 3);
        QCOMPARE(started[0], (QList<QVariant>{1, true, 1, 1, true}));
        QCOMPARE(started[2], (QList<QVariant>{3, false, 2, 2, true}));

        // With the noise fixed at its mean the cuff gains 0.17 mmHg a sample for the 950
        // samples of the first second's ticks (161.5 mmHg), then loses 0.01 mmHg a sample: it
        // is below the lower limit of 30 after 13150 more samples, and the cycle ends 1 s later.
        QCOMPARE(endTimes.size(), 3);
        for (int i = 0; i < 3; ++i) {
            const qint64 length = endTimes[i] - startTimes[i];
            QVERIFY2(length >= 15000 && length <= 15400, qPrintable(QString::number(length)));
        }
        // The next cycle waits the interval and then at most a gate check for the pulse.
        for (int i = 1; i < 3; ++i) {
            const qint64 gap = startTimes[i] - endTimes[i - 1];
            QVERIFY2(gap >= 5000 && gap <= 5600, qPrintable(QString::number(gap)));
        }

        const QStringList exp = files(dir.path(), QStringLiteral("*.exp"));
        QCOMPARE(exp.size(), 3);
        QCOMPARE(files(dir.path(), QStringLiteral("*.edf")).size(), 3);
        QStringList cycles;
        for (const QString &name : exp) {
            const QMap<QString, QString> v = ExpFile::values(dir.filePath(name));
            QCOMPARE(v.value("Session"), rig.run->sessionId());
            QCOMPARE(v.value("Rodent"), QStringLiteral("R7"));
            QCOMPARE(v.value("Planned"), QStringLiteral("2"));
            QCOMPARE(v.value("PulseBefore"), QStringLiteral("true"));
            cycles << v.value("Cycle") + QLatin1Char(':') + v.value("Acclimation");
            // The simulated animal's systolic pressure is 120 mmHg.
            QVERIFY2(std::fabs(v.value("SBP").toDouble() - 120.0) < 8.0,
                     qPrintable(v.value("SBP")));
            QVERIFY(v.contains("Accepted"));
        }
        cycles.sort();
        QCOMPARE(cycles, (QStringList{"1:true", "2:false", "3:false"}));
        QVERIFY(!rig.device.isMeasuring());
    }

    void gateThatNeverOpensStartsTheCycleMarkedWithoutPulse()
    {
        QTemporaryDir dir;
        SessionPlan plan = Rig::plan120(0, 1);
        plan.gate.minAmplitude = 1000.0; // no tail gives that much
        Rig rig(dir.path(), plan);
        QSignalSpy started(rig.run.get(), &SessionRun::cycleStarted);
        QVERIFY(rig.start());
        rig.advance(plan.pulseWaitMs - 200);
        QCOMPARE(started.size(), 0);
        QCOMPARE(rig.run->state(), SessionRun::State::WaitingForPulse);
        rig.advance(400);
        QCOMPARE(started.size(), 1);
        QCOMPARE(started[0][4].toBool(), false);
        QVERIFY(rig.advanceUntil([&] { return !rig.run->isRunning(); }));
        const SessionRun::CycleResult r = rig.run->results().value(0);
        QVERIFY(!r.accepted);
        QVERIFY2(r.reason.contains(QLatin1String("No pulse before inflation")),
                 qPrintable(r.reason));
    }

    void serialUnitGateWaitsForAPulse_data()
    {
        QTest::addColumn<bool>("pulseAtRest");
        QTest::newRow("pulse at rest") << true;
        QTest::newRow("cold tail, pulse only later") << false;
    }
    void serialUnitGateWaitsForAPulse()
    {
        QFETCH(bool, pulseAtRest);
        qint64 now = 1'750'000'000'000;
        CorvidaUnitEmulator unit;
        unit.setClock([&now] { return now; });
        unit.setSystolic(110);
        unit.setPulse(7.0, pulseAtRest ? 3000 : 0);
        unit.setCuffRates(80, 8);
        if (!unit.plug())
            QSKIP("no pseudo-terminals on this machine");
        ComCorvidaDevice device(unit.portPath());
        device.setWatchdogActive(false);
        device.connectDevice();
        QVERIFY(QTest::qWaitFor([&] { return device.isConnected() && device.isCalibrated(); }));
        qint64 samples = 0;
        connect(&device, &BaseCorvidaDevice::pressurePulseData, this,
                [&](const QList<QList<float>> &f) { samples += f[0].size(); });

        QTemporaryDir dir;
        SessionPlan plan = Rig::plan120(0, 1);
        plan.upperPressure = 160;
        plan.lowerPressure = 40;
        plan.pulseWaitMs = 8000;
        SessionRun run(&device, dir.path(), plan);
        run.setClock([&now] { return now; });
        run.setTickTimerActive(false);
        qint64 startedAt = 0;
        connect(&run, &SessionRun::cycleStarted, this, [&] {
            startedAt = now;
            unit.setPulse(7.0, 3000); // the tail has warmed up
        });
        QVERIFY(run.start());
        QVERIFY(QTest::qWaitFor([&] { return unit.isStreaming(); }));
        const qint64 begin = now;
        // Each step the unit sends 50 ms of samples and the test waits until they have come
        // through the port; the clock itself only moves here.
        for (int i = 0; i < 2000 && run.isRunning(); ++i) {
            now += kStepMs;
            const qint64 expected = samples + kStepMs;
            unit.tick();
            QVERIFY(QTest::qWaitFor([&] { return samples >= expected; }));
            run.tick();
        }
        QCOMPARE(run.state(), SessionRun::State::Finished);
        const SessionRun::CycleResult r = run.results().value(0);
        QVERIFY2(std::fabs(r.sbp - 110.0) < 10.0, qPrintable(QString::number(r.sbp)));
        if (pulseAtRest) {
            // Three seconds of pulse fill the gate's window; the next check opens it.
            QVERIFY2(startedAt - begin <= 3600, qPrintable(QString::number(startedAt - begin)));
            QVERIFY(r.pulseBefore);
            QVERIFY2(!r.reason.contains(QLatin1String("pulse")), qPrintable(r.reason));
        } else {
            QCOMPARE(startedAt - begin, plan.pulseWaitMs);
            QVERIFY(!r.pulseBefore);
            QVERIFY(!r.accepted);
            QVERIFY2(r.reason.startsWith(QLatin1String("No pulse before inflation")),
                     qPrintable(r.reason));
        }
        QCOMPARE(unit.upperLimit(), 160);
        QVERIFY(!unit.isMeasuring());
    }

    void abortMidCycleStopsTheUnitAndKeepsFinishedCycles()
    {
        QTemporaryDir dir;
        Rig rig(dir.path(), Rig::plan120(0, 3));
        QVERIFY(rig.start());
        QVERIFY(rig.advanceUntil([&] { return rig.run->results().size() == 1; }));
        QVERIFY(rig.advanceUntil([&] { return rig.run->state() == SessionRun::State::Measuring; }));
        rig.advance(3000);
        QVERIFY(rig.device.isMeasuring());
        const QStringList before = files(dir.path(), QStringLiteral("*"));
        QSignalSpy finished(rig.run.get(), &SessionRun::finished);
        rig.run->abort();
        QCOMPARE(finished.size(), 1);
        QCOMPARE(rig.run->state(), SessionRun::State::Aborted);
        QVERIFY(!rig.device.isMeasuring());
        QVERIFY(!rig.device.isAcquiring());
        rig.advance(20000);
        QCOMPARE(files(dir.path(), QStringLiteral("*")), before);
        QCOMPARE(before.size(), 2);
        QVERIFY(rig.run->message().contains(QLatin1String("cycle 2")));
    }

    void lostUnitEndsTheSessionIncomplete_data()
    {
        QTest::addColumn<bool>("silent");
        QTest::newRow("unit disconnected") << false;
        QTest::newRow("stream falls silent") << true;
    }
    void lostUnitEndsTheSessionIncomplete()
    {
        QFETCH(bool, silent);
        QTemporaryDir dir;
        Rig rig(dir.path(), Rig::plan120(0, 3));
        QVERIFY(rig.start());
        QVERIFY(rig.advanceUntil([&] { return rig.run->results().size() == 1; }));
        const QString firstEdf = rig.run->results()[0].file;
        const QByteArray bytes = RecordFiles::readAll(firstEdf);
        QVERIFY(rig.advanceUntil([&] { return rig.run->state() == SessionRun::State::Measuring; }));
        rig.advance(2000);
        if (silent)
            rig.deviceTicks = false;
        else
            rig.device.disconnectDevice();
        rig.advance(rig.run->plan().silenceMs + 500);
        QCOMPARE(rig.run->state(), SessionRun::State::UnitLost);
        QVERIFY(rig.run->message().contains(QLatin1String("incomplete")));
        QCOMPARE(files(dir.path(), QStringLiteral("*.edf")).size(), 1);
        QCOMPARE(RecordFiles::readAll(firstEdf), bytes);

        // The folder alone tells that the session stopped early.
        const FolderSessions folder(dir.path());
        QCOMPARE(folder.sessions.size(), 1);
        QVERIFY(folder.sessions[0].summary.flagged);
        QVERIFY(folder.sessions[0].summary.flags.join(' ').contains(
            QLatin1String("Incomplete: 1 of 3")));
    }

    void fullDiskStopsAtTheFailingCycleAndKeepsEarlierOnes()
    {
        ScratchDisk disk(1 << 20);
        if (!disk.isMounted())
            QSKIP(qPrintable(disk.whyNot()));
        Rig rig(disk.path(), Rig::plan120(0, 3));
        QVERIFY(rig.start());
        QVERIFY(rig.advanceUntil([&] { return rig.run->results().size() == 1; }));
        const QString firstEdf = rig.run->results()[0].file;
        const QByteArray edfBytes = RecordFiles::readAll(firstEdf);
        QVERIFY(disk.fill(0));

        QVERIFY(rig.advanceUntil([&] { return !rig.run->isRunning(); }));
        QCOMPARE(rig.run->state(), SessionRun::State::SaveFailed);
        QVERIFY2(rig.run->message().contains(QLatin1String("Cycle 2")),
                 qPrintable(rig.run->message()));
        QCOMPARE(rig.run->results().size(), 1);
        // Only the first cycle's pair and the filler remain.
        QCOMPARE(files(disk.path(), QStringLiteral("*")).size(), 3);
        QCOMPARE(RecordFiles::readAll(firstEdf), edfBytes);
        QCOMPARE(ExpFile::values(firstEdf.chopped(4) + ".exp").value("Cycle"), QStringLiteral("1"));
        QVERIFY(!rig.device.isMeasuring());
    }

    void twoUnitsRunTheirSessionsSideBySide()
    {
        QTemporaryDir dir;
        qint64 now = 1'750'000'000'000;
        const auto clock = [&now] { return now; };
        VirtualCorvidaDevice a, b;
        for (VirtualCorvidaDevice *d : {&a, &b}) {
            d->setClock(clock);
            d->setRandomSource([] { return 0.5; });
            d->setTickTimerActive(false);
        }
        SessionPlan planA = Rig::plan120(0, 2);
        SessionPlan planB = Rig::plan120(1, 1);
        planB.rodent = QStringLiteral("R8");
        SessionRun runA(&a, dir.path(), planA), runB(&b, dir.path(), planB);
        for (SessionRun *r : {&runA, &runB}) {
            r->setClock(clock);
            r->setTickTimerActive(false);
        }
        QVERIFY(runA.start());
        now += 700; // the second unit starts a little later
        QVERIFY(runB.start());
        for (int i = 0; i < 20000 && (runA.isRunning() || runB.isRunning()); ++i) {
            now += kStepMs;
            a.tick();
            b.tick();
            runA.tick();
            runB.tick();
        }
        QCOMPARE(runA.state(), SessionRun::State::Finished);
        QCOMPARE(runB.state(), SessionRun::State::Finished);
        QVERIFY(runA.sessionId() != runB.sessionId());
        QCOMPARE(files(dir.path(), QStringLiteral("*.edf")).size(), 4);

        const QList<SessionCatalog::Session> sessions = FolderSessions(dir.path()).sessions;
        QCOMPARE(sessions.size(), 2);
        QCOMPARE(sessions[0].rodent, QStringLiteral("R7"));
        QCOMPARE(sessions[0].cycles.size(), 2);
        QCOMPARE(sessions[0].summary.total, 2);
        QCOMPARE(sessions[1].rodent, QStringLiteral("R8"));
        QCOMPARE(sessions[1].cycles.size(), 2);
        QCOMPARE(sessions[1].summary.total, 1); // the acclimation cycle does not count
        QCOMPARE(sessions[1].unit, b.deviceId());
    }

    void refusesToStart_data()
    {
        QTest::addColumn<int>("cycles");
        QTest::addColumn<bool>("busy");
        QTest::newRow("no measurement cycles") << 0 << false;
        QTest::newRow("unit already in a cuff cycle") << 3 << true;
    }
    void refusesToStart()
    {
        QFETCH(int, cycles);
        QFETCH(bool, busy);
        QTemporaryDir dir;
        Rig rig(dir.path(), Rig::plan120(2, cycles));
        if (busy)
            rig.device.startMeasuring();
        QVERIFY(!rig.start());
        QCOMPARE(rig.run->state(), SessionRun::State::Idle);
        QCOMPARE(rig.device.isMeasuring(), busy);
        rig.advance(30000);
        QVERIFY(QDir(dir.path()).entryList(QDir::Files).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSessionRun)
#include "tst_sessionrun.moc"
