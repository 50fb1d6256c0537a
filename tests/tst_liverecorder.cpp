#include "analysis/CorvidaOnlineExperiment.h"
#include "analysis/LiveRecorder.h"
#include "device/VirtualCorvidaDevice.h"
#include "support/EDFRawFile.h"

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
    void run(int ms, int step = 50)
    {
        for (int t = 0; t < ms; t += step) {
            now += step;
            device.tick();
        }
    }
};

// Everything the unit handed out, caught beside the recorder: what a whole record must hold.
struct Tap {
    QList<double> pressure;
    QList<double> mpx;
    explicit Tap(BaseCorvidaDevice &device)
    {
        QObject::connect(&device, &BaseCorvidaDevice::pressurePulseData, &device,
                         [this](const QList<QList<float>> &f) {
                             for (float v : f[0])
                                 pressure << v;
                         });
        QObject::connect(&device, &BaseCorvidaDevice::adcData, &device,
                         [this](const QList<QList<double>> &f) { mpx += f[0]; });
    }
};

// Physical value of one sample as it lies in the file.
double physical(const EDFRawFile &file, int signal, qint64 sample)
{
    const double pMin = file.number(EDFRawFile::PhysMin, signal);
    const double pMax = file.number(EDFRawFile::PhysMax, signal);
    const double dMin = file.number(EDFRawFile::DigMin, signal);
    const double dMax = file.number(EDFRawFile::DigMax, signal);
    return pMin + (file.digital(signal, sample) - dMin) * (pMax - pMin) / (dMax - dMin);
}

int signalIndex(const EDFRawFile &file, const QByteArray &label)
{
    for (int s = 0; s < file.signalCount(); ++s) {
        if (file.signalField(EDFRawFile::Label, s).trimmed() == label)
            return s;
    }
    return -1;
}
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
    // Seen in the field: "119/?" in the list and "119/103" once the record was opened, because
    // the file keeps 16 bits a sample and the analysis of the stored samples differs a hair.
    void savedRecordShowsTheResultItsFileYields_data()
    {
        QTest::addColumn<int>("ms");
        for (int ms = 8000; ms <= 14000; ms += 500)
            QTest::newRow(qPrintable(QString::number(ms) + " ms")) << ms;
    }
    void savedRecordShowsTheResultItsFileYields()
    {
        QFETCH(int, ms);
        QTemporaryDir dir;
        Rig rig;
        QSignalSpy data(&rig.recorder, &LiveRecorder::dataUpdated);
        QSignalSpy saved(&rig.recorder, &LiveRecorder::saved);
        QVERIFY(rig.recorder.turnOn());
        QVERIFY(rig.recorder.measure());
        rig.run(ms);
        QVERIFY(rig.recorder.abort());
        QCOMPARE(rig.recorder.recordedSamples(), ms);
        QCOMPARE(data.count(), ms / 50); // one update per frame of the unit
        QVERIFY(rig.recorder.lastHeartRate() > 450 && rig.recorder.lastHeartRate() < 550);
        QVERIFY(rig.recorder.save(dir.path()));
        QCOMPARE(saved.count(), 1);
        CorvidaOnlineExperiment *live = rig.recorder.experiment();
        CorvidaExperiment opened(rig.recorder.savedPath());
        opened.setAutoSave(false);
        QVERIFY(!opened.getPressure().isEmpty()); // opening runs the analysis on the file
        QCOMPARE(opened.getSBPTime(), live->getSBPTime());
        QCOMPARE(opened.getDBPTime(), live->getDBPTime());
        QCOMPARE(opened.getBPM(), live->getBPM());
        QCOMPARE(opened.bpText(), live->bpText());
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
    void rawChannelsOnlyWhenAskedAndFromTheStartOfARecording()
    {
        Rig rig;
        rig.recorder.turnOn();
        rig.run(200);
        QVERIFY(rig.recorder.experiment()->rawChannels().isEmpty());
        // Switched on mid-way, raw channels would start later than the record: they wait for
        // the next recording.
        rig.recorder.setRecordRaw(true);
        rig.run(200);
        QVERIFY(rig.recorder.experiment()->rawChannels().isEmpty());
        rig.recorder.measure();
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
    // A 150 s measurement used to lose its first 30 s (and with them the cuff cycle), and its
    // raw channels were written from the start while Pressure began 30 s later.
    void longMeasurementLosesNoSampleAndRawStaysInStep()
    {
        QTemporaryDir dir;
        Rig rig;
        Tap tap(rig.device);
        rig.recorder.setRecordRaw(true);
        QVERIFY(rig.recorder.turnOn());
        rig.run(1000);
        QVERIFY(rig.recorder.measure());
        tap.pressure.clear();
        tap.mpx.clear();
        const QDateTime start = rig.recorder.experiment()->startDateTime();
        rig.run(150'000);
        QVERIFY(rig.recorder.abort());
        QCOMPARE(rig.recorder.recordedSamples(), 150'000);
        QCOMPARE(rig.recorder.experiment()->startDateTime(), start);
        QVERIFY(rig.recorder.save(dir.path()));

        const EDFRawFile file(rig.recorder.savedPath().chopped(4) + QStringLiteral(".edf"));
        const int pressure = signalIndex(file, "Pressure");
        const int mpx = signalIndex(file, "MPX");
        QVERIFY(pressure >= 0 && mpx >= 0);
        // One-second data records: 150 of them, all full.
        QCOMPARE(file.recordCount(), 150);
        QCOMPARE(tap.pressure.size(), 150'000);
        // Pressure is kept to a step of 0.25 mmHg, MPX to one count (a quarter unit).
        for (qint64 i : {qint64(0), qint64(1), qint64(30'049), qint64(149'999)}) {
            QVERIFY2(std::fabs(physical(file, pressure, i) - tap.pressure[i]) <= 0.26,
                     qPrintable(QString::number(i)));
            QVERIFY2(std::fabs(physical(file, mpx, i) / 4.0 - tap.mpx[i]) <= 0.26,
                     qPrintable(QString::number(i)));
        }
    }
    void measurementStopsAtItsLimitAndKeepsTheRecord()
    {
        Rig rig;
        QSignalSpy limit(&rig.recorder, &LiveRecorder::limitReached);
        rig.recorder.setRecordRaw(true);
        QVERIFY(rig.recorder.turnOn());
        QVERIFY(rig.recorder.measure());
        const qint64 bound = qint64(LiveRecorder::MaxMeasurementSeconds) * 1000;
        // One-second frames keep the half hour quick.
        rig.run(int(bound) - 1000, 1000);
        QVERIFY(rig.device.isMeasuring());
        QCOMPARE(limit.count(), 0);
        rig.run(1000, 1000);
        QCOMPARE(limit.count(), 1);
        QVERIFY(rig.recorder.isLimitReached());
        QVERIFY(!rig.device.isMeasuring()); // the cuff was released as Abort does
        QVERIFY(!rig.device.isAcquiring());
        QCOMPARE(rig.recorder.recordedSamples(), bound);
        QCOMPARE(rig.recorder.experiment()->getPressure().size(), bound);
        // The raw block of the last frame came after the limit was seen, and it is there.
        QCOMPARE(rig.recorder.experiment()->rawSamples(), bound);
        QVERIFY(rig.recorder.isSaveable());
    }
    void aUnitLeftOnKeepsItsNewestTwoMinutes_data()
    {
        QTest::addColumn<bool>("refusedMeasure");
        QTest::newRow("turned on") << false;
        // Measure with limits the unit refuses leaves it streaming a preview, and a preview it
        // stays.
        QTest::newRow("measure refused") << true;
    }
    void aUnitLeftOnKeepsItsNewestTwoMinutes()
    {
        QFETCH(bool, refusedMeasure);
        Rig rig;
        Tap tap(rig.device);
        rig.recorder.setRecordRaw(true);
        rig.recorder.turnOn();
        if (refusedMeasure) {
            rig.device.setPressureLimits(-10, 120);
            QVERIFY(!rig.recorder.measure());
        }
        const QDateTime start = rig.recorder.experiment()->startDateTime();
        rig.run(130'000);
        QCOMPARE(rig.recorder.recordedSamples(), 130'000); // ten seconds of slack first
        rig.run(50);
        QCOMPARE(rig.recorder.recordedSamples(), 120'000);
        QCOMPARE(rig.recorder.experiment()->getPressure().size(), 120'000);
        QCOMPARE(rig.recorder.experiment()->getPulse().size(), 120'000);
        // The record now begins ten seconds and one frame after the unit was turned on.
        QCOMPARE(start.msecsTo(rig.recorder.experiment()->startDateTime()), 10'050);
        // The raw channels were trimmed with it: same samples, not a list that keeps growing.
        const QList<QList<double>> raw = rig.recorder.experiment()->rawChannels();
        QCOMPARE(raw.size(), 4);
        for (const QList<double> &channel : raw)
            QCOMPARE(channel.size(), 120'000);
        QCOMPARE(raw[0].first(), tap.mpx[10'050]);
        QCOMPARE(raw[0].last(), tap.mpx.last());
        QCOMPARE(rig.recorder.experiment()->getPressure().first(), tap.pressure[10'050]);
    }
};

QTEST_GUILESS_MAIN(TestLiveRecorder)
#include "tst_liverecorder.moc"
