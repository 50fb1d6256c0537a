#include "device/BaseCorvidaDevice.h"
#include "device/SampleHistory.h"
#include "support/SignalTools.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>
#include <cmath>

namespace {
// The smallest possible unit: everything but the frame processing is a no-op.
class BareDevice : public BaseCorvidaDevice
{
public:
    using BaseCorvidaDevice::applyCalibration;
    using BaseCorvidaDevice::processRawFrame;
    void connectDevice() override {}
    void disconnectDevice() override {}
    void startAcquisition() override {}
    void stopAcquisition() override {}
    void startMeasuring() override {}
    void stopMeasuring() override {}
    bool isConnected() const override { return true; }
};

RawFrame constantFrame(int n, double mpx, double ac, double dc, double ir)
{
    return {QList<double>(n, mpx), QList<double>(n, ac), QList<double>(n, dc),
            QList<double>(n, ir)};
}

// Feeds `seconds` of constant input in unit-sized frames; returns the last processed frame.
ProcessedFrame settle(BareDevice &device, double mpx, double seconds = 3.0)
{
    ProcessedFrame last;
    QObject::connect(&device, &BaseCorvidaDevice::pressurePulseData, &device,
                     [&last](const ProcessedFrame &f) { last = f; });
    for (int i = 0; i < int(seconds * 1000 / 31); ++i)
        device.processRawFrame(constantFrame(31, mpx, 0.0, 1.2, 1.0));
    QObject::disconnect(&device, &BaseCorvidaDevice::pressurePulseData, &device, nullptr);
    return last;
}
} // namespace

class TestDeviceStream : public QObject
{
    Q_OBJECT
private slots:
    void frameWithTooFewChannelsIsDropped();
    void processedFrameComesBeforeRawFrame();
    void uncalibratedPressureIsFilteredSensorValue();
    void calibrationMapsSensorValueToMmHg();
    void pulseNormalisedByDcAndZeroWithoutDc();
    void pressureLimitsInEitherOrder();
    void idsCountUpPerDevice();
    void historyKeepsNewestSamplesUpToCap();
    void historyMatchesPlainReferenceForAnyFrameSizes();
};

void TestDeviceStream::frameWithTooFewChannelsIsDropped()
{
    BareDevice device;
    QSignalSpy processed(&device, &BaseCorvidaDevice::pressurePulseData);
    QSignalSpy raw(&device, &BaseCorvidaDevice::adcData);
    RawFrame frame = constantFrame(10, 1, 1, 1, 1);
    frame.removeLast();
    device.processRawFrame(frame);
    QCOMPARE(processed.count() + raw.count(), 0);
    QCOMPARE(device.history().size(), 0);
}

void TestDeviceStream::processedFrameComesBeforeRawFrame()
{
    BareDevice device;
    QStringList order;
    connect(&device, &BaseCorvidaDevice::pressurePulseData, this, [&](const ProcessedFrame &f) {
        order << QStringLiteral("processed");
        QCOMPARE(f.size(), 3);
        QCOMPARE(f[2].size(), 7);
    });
    connect(&device, &BaseCorvidaDevice::adcData, this, [&](const RawFrame &f) {
        order << QStringLiteral("raw");
        QCOMPARE(f, constantFrame(7, 1, 2, 3, 4));
    });
    device.processRawFrame(constantFrame(7, 1, 2, 3, 4));
    QCOMPARE(order, (QStringList{"processed", "raw"}));
}

void TestDeviceStream::uncalibratedPressureIsFilteredSensorValue()
{
    BareDevice device;
    const ProcessedFrame f = settle(device, 123.0);
    QCOMPARE_LE(std::fabs(f[0].last() - 123.0f), 0.01f);
    QCOMPARE(f[2].last(), 1.0f); // IR is not filtered
}

void TestDeviceStream::calibrationMapsSensorValueToMmHg()
{
    BareDevice device;
    QSignalSpy calibrated(&device, &BaseCorvidaDevice::calibrated);
    // Sensor 400 reads 0 mmHg, sensor 1400 reads 250 mmHg.
    QVERIFY(device.applyCalibration(1700000000000, 400, 0, 1400, 250));
    QCOMPARE(calibrated.count(), 1);
    QCOMPARE(device.offset(), 100.0);
    // Two equal sensor values give no line: refused, and the earlier calibration stays.
    QVERIFY(!device.applyCalibration(2, 500, 0, 500, 250));
    QCOMPARE(calibrated.count(), 1);
    QCOMPARE(device.slope(), 0.25);
    const ProcessedFrame f = settle(device, 1000.0);
    QCOMPARE_LE(std::fabs(f[0].last() - 150.0f), 0.01f);
}

void TestDeviceStream::pulseNormalisedByDcAndZeroWithoutDc()
{
    // The same AC through two fresh devices: half the DC gives exactly twice the pulse.
    BareDevice a, b;
    ProcessedFrame fa, fb;
    connect(&a, &BaseCorvidaDevice::pressurePulseData, this,
            [&](const ProcessedFrame &f) { fa = f; });
    connect(&b, &BaseCorvidaDevice::pressurePulseData, this,
            [&](const ProcessedFrame &f) { fb = f; });
    const QList<float> ac = SignalTools::sine(8.0, 1000, 3100, 0.5);
    for (int k = 0; k < 100; ++k) {
        RawFrame frame = constantFrame(31, 0, 0, 1.2, 1);
        for (int i = 0; i < 31; ++i)
            frame[1][i] = ac[k * 31 + i];
        a.processRawFrame(frame);
        frame[2].fill(0.6);
        b.processRawFrame(frame);
        for (int i = 0; i < 31; ++i)
            QCOMPARE_LE(std::fabs(fb[1][i] - 2 * fa[1][i]), 1e-5f);
    }
    QVERIFY(std::fabs(fa[1][5]) > 0.01f);

    RawFrame frame = constantFrame(31, 0, 0.3, 1.2, 1);
    frame[2][3] = 0.0;
    frame[2][4] = -0.5;
    a.processRawFrame(frame);
    QCOMPARE(fa[1][3], 0.0f);
    QCOMPARE(fa[1][4], 0.0f);
    QVERIFY(fa[1][5] != 0.0f);
}

void TestDeviceStream::pressureLimitsInEitherOrder()
{
    for (const auto &[first, second] : {qMakePair(40.0, 160.0), qMakePair(160.0, 40.0)}) {
        BareDevice device;
        device.setPressureLimits(first, second);
        QCOMPARE(device.lowerPressure(), 40.0);
        QCOMPARE(device.upperPressure(), 160.0);
    }
}

void TestDeviceStream::idsCountUpPerDevice()
{
    BareDevice a, b;
    QVERIFY(a.deviceId().startsWith(QLatin1Char('S')));
    QCOMPARE(b.deviceId().mid(1).toInt(), a.deviceId().mid(1).toInt() + 1);
}

void TestDeviceStream::historyKeepsNewestSamplesUpToCap()
{
    BareDevice device;
    QCOMPARE(device.history().capacity(), 120000);
    for (int k = 0; k < 5000; ++k) {
        RawFrame frame = constantFrame(31, 0, 0, 1.2, 0);
        for (int i = 0; i < 31; ++i)
            frame[3][i] = k * 31 + i;
        device.processRawFrame(frame);
    }
    const QList<float> ir = device.history().channel(2);
    QCOMPARE(ir.size(), 120000);
    QCOMPARE(ir.last(), float(5000 * 31 - 1));
    QCOMPARE(ir.first(), float(5000 * 31 - 120000));
    device.clearHistory();
    QCOMPARE(device.history().size(), 0);
}

void TestDeviceStream::historyMatchesPlainReferenceForAnyFrameSizes()
{
    QRandomGenerator rng(12);
    SampleHistory history(2, 1000);
    QList<float> reference;
    float next = 0;
    for (int round = 0; round < 3000; ++round) {
        const int n = rng.bounded(0, round % 50 == 0 ? 1500 : 40);
        QList<float> c0(n), c1(n);
        for (int i = 0; i < n; ++i) {
            c0[i] = next;
            c1[i] = -next;
            reference << next++;
        }
        history.append({c0, c1});
        if (reference.size() > 1000)
            reference = reference.mid(reference.size() - 1000);
        QCOMPARE(history.channel(0), reference);
        QCOMPARE(history.channel(1).value(0), reference.isEmpty() ? 0.0f : -reference.first());
    }
}

QTEST_GUILESS_MAIN(TestDeviceStream)
#include "tst_devicestream.moc"
