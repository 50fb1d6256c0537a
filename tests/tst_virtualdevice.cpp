#include "device/VirtualCorvidaDevice.h"
#include "support/SignalTools.h"

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
        for (qint64 end = now + ms; now < end; device.tick()) // a tick every 50 ms
            now += 50;
    }
};
} // namespace

class TestVirtualDevice : public QObject
{
    Q_OBJECT
private slots:
    void producesOneSamplePerMillisecondAtRest()
    {
        Rig rig;
        rig.run(1000);
        QCOMPARE(rig.rawMpx.size(), 0); // not acquiring yet
        rig.device.startAcquisition();
        rig.run(2000);
        QCOMPARE(rig.rawMpx.size(), 2000);
    }

    void cuffInflatesThenDeflatesAtFixedRates()
    {
        Rig rig;
        rig.device.setPressureLimits(40, 100); // the cuff is driven to the upper limit
        rig.device.startMeasuring();
        // 100 mmHg per second while inflating. The whole tick takes the phase of its own time, so
        // the tick that reaches 1000 ms already deflates: the top is 95 mmHg at 950 ms.
        rig.run(950);
        QCOMPARE_LE(std::fabs(rig.device.cuffPressure() - 95.0), 1e-6);
        rig.run(50);
        QCOMPARE_LE(std::fabs(rig.device.cuffPressure() - 92.5), 1e-6);
        rig.run(1000); // then it falls by 50 mmHg per second
        QCOMPARE_LE(std::fabs(rig.device.cuffPressure() - 42.5), 1e-6);
        // The processed pressure follows the cuff once the low-pass has settled.
        QCOMPARE_LE(std::fabs(rig.pressure.last() - rig.device.cuffPressure()), 1.5);
    }

    void pulseHiddenAboveSystolicAndBackBelow()
    {
        Rig rig;
        rig.device.setPressureLimits(40, 160);
        rig.device.startMeasuring();
        rig.run(5000); // up to 160 in 1 s, then 80 mmHg per second down to 0
        QVERIFY(rig.device.isMeasuring() && rig.device.cuffPressure() == 0.0); // never ends alone
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
        QVERIFY(SignalTools::rms(above) < 0.02);
        QVERIFY(SignalTools::rms(plateau) > 0.3);
        // In between, the amplitude comes back linearly from nothing at the systolic pressure.
        QCOMPARE_LE(rig.device.amplitudeAt(119.95, 2000), 0.003);
        QCOMPARE_LE(std::fabs(rig.device.amplitudeAt(93.35, 2000) - 0.6), 0.01);
    }

    void invalidLimitsAreRefused()
    {
        Rig rig;
        rig.device.setPressureLimits(-10, 100);
        rig.device.startMeasuring();
        QVERIFY(!rig.device.isMeasuring() && !rig.device.isAcquiring());
    }

    void devicesShareTheSineCounter()
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
};

QTEST_GUILESS_MAIN(TestVirtualDevice)
#include "tst_virtualdevice.moc"
