#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "device/VirtualCorvidaDevice.h"

#include <QDir>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {
struct Rig {
    VirtualCorvidaDevice device;
    LiveRecorder recorder{&device};
    qint64 now = 5'000'000;
    Rig()
    {
        device.setTickTimerActive(false);
        device.setClock([this] { return now; });
        recorder.experiment()->setClock([this] { return now; });
        device.setPressureLimits(30, 120);
    }
    void run(int ms)
    {
        for (int t = 0; t < ms; t += 50) {
            now += 50;
            device.tick();
        }
    }
};
} // namespace

class TestLiveRecorder : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void buttonsFollowTheUnitState()
    {
        Rig rig;
        QVERIFY(!rig.recorder.measure()); // not acquiring yet
        QVERIFY(!rig.recorder.abort());
        QVERIFY(rig.recorder.turnOn());
        QVERIFY(!rig.recorder.turnOn());
        QVERIFY(rig.recorder.measure());
        QVERIFY(!rig.recorder.measure());
        QVERIFY(rig.recorder.abort());
        QVERIFY(!rig.device.isAcquiring());
        rig.device.disconnectDevice();
        QVERIFY(!rig.recorder.turnOn());
    }
    void measurementIsRecordedSavedAndAnalysed()
    {
        QTemporaryDir dir;
        Rig rig;
        QSignalSpy data(&rig.recorder, &LiveRecorder::dataUpdated);
        QSignalSpy saved(&rig.recorder, &LiveRecorder::saved);
        QVERIFY(rig.recorder.turnOn());
        QVERIFY(rig.recorder.measure());
        rig.run(14000);
        QVERIFY(rig.recorder.abort());
        QCOMPARE(rig.recorder.recordedSamples(), 14000);
        QCOMPARE(data.count(), 280);
        QVERIFY(rig.recorder.lastHeartRate() > 450 && rig.recorder.lastHeartRate() < 550);
        // The results of a save are in tst_endtoend and tst_corvidaexperiment.
        QVERIFY(rig.recorder.save(dir.path()));
        QCOMPARE(saved.count(), 1);
        QVERIFY(QFile::exists(rig.recorder.savedPath()));
    }
    void measureStartsANewRecording()
    {
        Rig rig;
        QVERIFY(rig.recorder.turnOn());
        rig.run(2000);
        QCOMPARE(rig.recorder.recordedSamples(), 2000);
        QVERIFY(rig.recorder.measure());
        QCOMPARE(rig.recorder.recordedSamples(), 0);
        QVERIFY(rig.recorder.experiment()->getPressure().isEmpty());
        rig.run(500);
        QCOMPARE(rig.recorder.experiment()->getPressure().size(), 500);
    }
    void rawChannelsOnlyWhenAsked()
    {
        Rig rig;
        rig.recorder.turnOn();
        rig.run(200);
        QVERIFY(rig.recorder.experiment()->rawChannels().isEmpty());
        rig.recorder.setRecordRaw(true);
        rig.run(200);
        QCOMPARE(rig.recorder.experiment()->rawChannels().size(), 4);
        QCOMPARE(rig.recorder.experiment()->rawChannels()[0].size(), 200);
    }
    void tooShortIsNotSaveable()
    {
        QTemporaryDir dir;
        Rig rig;
        rig.recorder.turnOn();
        rig.run(950);
        QVERIFY(!rig.recorder.isSaveable());
        QString error;
        QVERIFY(!rig.recorder.save(dir.path(), &error));
        QCOMPARE(error, QStringLiteral("Experiment is too short"));
        rig.run(100);
        QVERIFY(rig.recorder.isSaveable());
        QVERIFY(rig.recorder.save(dir.path(), &error));
    }
    void aUnitLeftOnKeepsItsNewestTwoMinutes()
    {
        Rig rig;
        rig.recorder.turnOn();
        const QDateTime start = rig.recorder.experiment()->startDateTime();
        rig.run(130'000);
        QCOMPARE(rig.recorder.recordedSamples(), 130'000); // ten seconds of slack first
        rig.run(50);
        QCOMPARE(rig.recorder.recordedSamples(), 120'000);
        QCOMPARE(rig.recorder.experiment()->getPressure().size(), 120'000);
        QCOMPARE(rig.recorder.experiment()->getPulse().size(), 120'000);
        // The record now begins ten seconds and one frame after the unit was turned on.
        QCOMPARE(start.msecsTo(rig.recorder.experiment()->startDateTime()), 10'050);
    }
};

QTEST_GUILESS_MAIN(TestLiveRecorder)
#include "tst_liverecorder.moc"
