#include "device/VirtualCorvidaDevice.h"
#include "support/SignalTools.h"

#include <QSignalSpy>
#include <QtTest>
#include <cmath>

namespace {
// A simulated unit on a hand-driven clock, without noise, so its timeline is exact.
struct Rig {
    VirtualCorvidaDevice device;
    qint64 now = 1'000'000;
    QList<float> pressure, pulse;
    QList<double> rawMpx, rawAc;

    Rig()
    {
        device.setTickTimerActive(false);
        device.setClock([this] { return now; });
        device.setRandomSource([] { return 0.0; });
        QObject::connect(&device, &BaseCorvidaDevice::pressurePulseData, &device,
                         [this](const ProcessedFrame &f) {
                             pressure += f[0];
                             pulse += f[1];
                         });
        QObject::connect(&device, &BaseCorvidaDevice::adcData, &device, [this](const RawFrame &f) {
            rawMpx += f[0];
            rawAc += f[1];
        });
    }
    void run(qint64 ms)
    {
        for (qint64 end = now + ms; now < end;) {
            now += 50;
            device.tick();
        }
    }
};
} // namespace

class TestVirtualDevice : public QObject
{
    Q_OBJECT
private slots:
    void producesOneSamplePerMillisecondAtRest();
    void cuffInflatesThenDeflatesAtFixedRates();
    void pulseHiddenAboveSystolicAndBackBelow();
    void measurementNeverEndsByItself();
    void invalidLimitsAreRefused();
    void stateChangesAndSignals();
    void devicesShareTheSineCounter();
};

void TestVirtualDevice::producesOneSamplePerMillisecondAtRest()
{
    Rig rig;
    rig.run(1000);
    QCOMPARE(rig.rawMpx.size(), 0); // not acquiring yet
    rig.device.startAcquisition();
    rig.run(2000);
    QCOMPARE(rig.rawMpx.size(), 2000);
    // At rest: a full-amplitude sine at 500 beats per minute.
    double peak = 0;
    for (double v : std::as_const(rig.rawAc))
        peak = std::max(peak, std::fabs(v));
    QVERIFY(peak > 1.19 && peak <= 1.2);
    // A tick with nothing due makes no frame; one 3 ms later makes a frame of three.
    QSignalSpy frames(&rig.device, &BaseCorvidaDevice::adcData);
    rig.device.tick();
    rig.now += 3;
    rig.device.tick();
    QCOMPARE(frames.count(), 1);
    QCOMPARE(frames.first().first().value<RawFrame>().first().size(), 3);
}

void TestVirtualDevice::cuffInflatesThenDeflatesAtFixedRates()
{
    Rig rig;
    rig.device.setPressureLimits(40, 100); // the cuff is driven to the upper limit
    rig.device.startMeasuring();
    QCOMPARE(rig.device.targetPressure(), 100.0);
    // 100 mmHg per second while inflating. The whole tick takes the phase of its own time, so
    // the tick that reaches 1000 ms already deflates: the top is 95 mmHg at 950 ms.
    rig.run(950);
    QCOMPARE_LE(std::fabs(rig.device.cuffPressure() - 95.0), 1e-6);
    rig.run(50);
    const double atOneSecond = rig.device.cuffPressure();
    QCOMPARE_LE(std::fabs(atOneSecond - 92.5), 1e-6);
    rig.run(1000);
    // Then it falls by 50 mmHg per second.
    QCOMPARE_LE(std::fabs(atOneSecond - rig.device.cuffPressure() - 50.0), 1e-6);
    // The processed pressure follows the cuff once the low-pass has settled.
    QCOMPARE_LE(std::fabs(rig.pressure.last() - rig.device.cuffPressure()), 1.5);
}

void TestVirtualDevice::pulseHiddenAboveSystolicAndBackBelow()
{
    Rig rig;
    rig.device.setPressureLimits(40, 160);
    rig.device.startMeasuring();
    rig.run(5000); // up to 160 in 1 s, then 80 mmHg per second down to 0
    QCOMPARE(rig.pressure.size(), 5000);
    // Compare the processed pulse in two cuff ranges, well away from the range edges.
    QList<float> above, plateau;
    for (int i = 1000; i < rig.pressure.size(); ++i) {
        const double p = rig.rawMpx[i];
        if (p > 125 && p < 150)
            above << rig.pulse[i];
        else if (p > 55 && p < 70)
            plateau << rig.pulse[i];
    }
    QVERIFY(above.size() > 200 && plateau.size() > 100);
    QVERIFY2(SignalTools::rms(above) < 0.02, qPrintable(QString::number(SignalTools::rms(above))));
    QVERIFY(SignalTools::rms(plateau) > 0.3);
    // In between, the amplitude comes back linearly from nothing at the systolic pressure.
    QCOMPARE_LE(rig.device.amplitudeAt(119.95, 2000), 0.003);
    QCOMPARE_LE(std::fabs(rig.device.amplitudeAt(93.35, 2000) - 0.6), 0.01);
}

void TestVirtualDevice::measurementNeverEndsByItself()
{
    Rig rig;
    rig.device.startMeasuring();
    rig.run(10000);
    QVERIFY(rig.device.isMeasuring());
    QCOMPARE(rig.device.cuffPressure(), 0.0);
    QCOMPARE(rig.rawMpx.size(), 10000);
}

void TestVirtualDevice::invalidLimitsAreRefused()
{
    Rig rig;
    rig.device.setPressureLimits(-10, 100);
    QSignalSpy started(&rig.device, &BaseCorvidaDevice::started);
    rig.device.startMeasuring();
    QCOMPARE(started.count(), 0);
    QVERIFY(!rig.device.isMeasuring());
    QVERIFY(!rig.device.isAcquiring());
}

void TestVirtualDevice::stateChangesAndSignals()
{
    Rig rig;
    QVERIFY(rig.device.isConnected());
    QStringList events;
    const auto record = [&](const char *name) {
        return [&events, name] { events << QString::fromLatin1(name); };
    };
    connect(&rig.device, &BaseCorvidaDevice::started, this, record("started"));
    connect(&rig.device, &BaseCorvidaDevice::stopped, this, record("stopped"));
    connect(&rig.device, &BaseCorvidaDevice::startedMeasuring, this, record("startedMeasuring"));
    connect(&rig.device, &BaseCorvidaDevice::stoppedMeasuring, this, record("stoppedMeasuring"));
    connect(&rig.device, &BaseCorvidaDevice::connected, this, record("connected"));
    connect(&rig.device, &BaseCorvidaDevice::disconnected, this, record("disconnected"));

    rig.device.startMeasuring();
    rig.device.disconnectDevice();
    QVERIFY(!rig.device.isConnected() && !rig.device.isAcquiring());
    rig.device.connectDevice();
    QVERIFY(rig.device.isConnected());
    QCOMPARE(events, (QStringList{"started", "startedMeasuring", "stoppedMeasuring", "stopped",
                                  "disconnected", "stoppedMeasuring", "stopped", "disconnected",
                                  "connected"}));
}

void TestVirtualDevice::devicesShareTheSineCounter()
{
    Rig a, b;
    a.device.startAcquisition();
    b.device.startAcquisition();
    const qint64 before = VirtualCorvidaDevice::sharedSampleCounter();
    a.now += 10;
    a.device.tick();
    b.now += 10;
    b.device.tick();
    QCOMPARE(VirtualCorvidaDevice::sharedSampleCounter(), before + 20);
    // b's wave continues where a's stopped: its first sample is the 11th of one sine.
    const double omega = double(float(2.0 * M_PI / 1000.0) * float(500.0 / 60.0));
    QCOMPARE_LE(std::fabs(b.rawAc.first() - std::sin(double(before + 10) * omega) * 1.2), 1e-9);
}

QTEST_GUILESS_MAIN(TestVirtualDevice)
#include "tst_virtualdevice.moc"
