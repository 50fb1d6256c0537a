#include "device/BaseCorvidaDevice.h"
#include "device/SampleHistory.h"
#include "support/SignalTools.h"

#include <QRandomGenerator>
#include <QtTest>
#include <cmath>
#include <cstring>

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

// A stream that exercises every branch of the processing: frames of 0 to 199 samples (runs
// longer than any internal block), sensor noise, a pulse, DC that drops to zero and below.
// The test shortens a channel of some frames, as a damaged frame would come.
// Integer arithmetic only, so the input is the same on every machine.
RawFrame noisyFrame(QRandomGenerator &rng, int n)
{
    RawFrame f(4);
    for (QList<double> &c : f)
        c.resize(n);
    for (int i = 0; i < n; ++i) {
        f[0][i] = 400 + int(rng.bounded(2000)) / 4.0;
        f[1][i] = (int(rng.bounded(2001)) - 1000) / 1024.0;
        const int dc = int(rng.bounded(40));
        f[2][i] = dc < 2 ? -dc * 0.25 : dc / 16.0;
        f[3][i] = int(rng.bounded(4096));
    }
    return f;
}

quint64 fnv1a(quint64 hash, const QList<float> &values)
{
    for (float v : values) {
        quint32 bits;
        std::memcpy(&bits, &v, sizeof bits);
        for (int b = 0; b < 4; ++b) {
            hash ^= (bits >> (8 * b)) & 0xffu;
            hash *= 1099511628211ull;
        }
    }
    return hash;
}
} // namespace

class TestDeviceStream : public QObject
{
    Q_OBJECT
private slots:
    void pressureIsFilteredSensorValueThroughTheCalibration()
    {
        BareDevice device;
        ProcessedFrame f = settle(device, 123.0); // uncalibrated: the sensor value itself
        QCOMPARE_LE(std::fabs(f[0].last() - 123.0f), 0.01f);
        // Sensor 400 reads 0 mmHg, sensor 1400 reads 250 mmHg.
        QVERIFY(device.applyCalibration(1700000000000, 400, 0, 1400, 250));
        // Two equal sensor values give no line: refused, and the earlier calibration stays.
        QVERIFY(!device.applyCalibration(2, 500, 0, 500, 250));
        f = settle(device, 1000.0);
        QCOMPARE_LE(std::fabs(f[0].last() - 150.0f), 0.01f);
    }

    void pulseNormalisedByDcAndZeroWithoutDc()
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
        QVERIFY(fa[1][3] == 0.0f && fa[1][4] == 0.0f && fa[1][5] != 0.0f);
    }

    // The processed stream of a fixed input, digested bit for bit. The digest was taken from the
    // processing as it was before it was made faster: any change in rounding, in the order of the
    // filters or in the calibration arithmetic shows here, however small.
    void processedSamplesStayBitIdenticalAfterSpeedUp()
    {
        BareDevice device;
        quint64 hash = 14695981039346656037ull;
        qsizetype samples = 0;
        connect(&device, &BaseCorvidaDevice::pressurePulseData, this, [&](const ProcessedFrame &f) {
            QCOMPARE(f.size(), 3);
            for (const QList<float> &c : f)
                hash = fnv1a(hash, c);
            samples += f[0].size();
        });
        QRandomGenerator rng(2026);
        for (int k = 0; k < 600; ++k) {
            if (k == 300)
                QVERIFY(device.applyCalibration(1, 400, 0, 1400, 250));
            RawFrame frame = noisyFrame(rng, int(rng.bounded(k % 10 == 0 ? 200 : 40)));
            if (k % 7 == 3) // a damaged frame: one channel shorter than the others
                frame[k % 4].resize(frame[k % 4].size() / 2);
            device.processRawFrame(frame);
        }
        QCOMPARE(samples, qsizetype(15878));
        QCOMPARE(hash, 9601160278822661221ull);
    }

    // The device fills its frame lists in place when nobody kept the previous frame; a receiver
    // that keeps one (a recorder, a queued connection) must find it as it was delivered.
    void keptFrameIsNotOverwrittenByTheNextFrame()
    {
        BareDevice device;
        QList<ProcessedFrame> kept;
        connect(&device, &BaseCorvidaDevice::pressurePulseData, this,
                [&](const ProcessedFrame &f) { kept.append(f); });
        for (int k = 0; k < 3; ++k)
            device.processRawFrame(constantFrame(31, 0, 0, 1.2, 10 * k));
        QCOMPARE(kept.size(), 3);
        for (int k = 0; k < 3; ++k)
            QCOMPARE(kept[k][2], QList<float>(31, 10.0f * k));
    }

    void deviceHistoryKeepsTheNewestTwoMinutes()
    {
        BareDevice device; // 124 s of frames of 31 samples, frame k with IR k
        for (int k = 0; k < 4000; ++k)
            device.processRawFrame(constantFrame(31, 0, 0, 1.2, k));
        const QList<float> ir = device.history().channel(2);
        QCOMPARE(ir.size(), 120000);
        QCOMPARE(ir.first(), 129.0f); // sample 4000 of 124000 is in frame 129
        QCOMPARE(ir.last(), 3999.0f);
    }

    void historyMatchesPlainReferenceForAnyFrameSizes()
    {
        QRandomGenerator rng(12);
        SampleHistory history(2, 1000);
        QList<float> reference;
        float next = 0;
        for (int round = 0; round < 3000; ++round) {
            const int n = rng.bounded(0, round % 50 == 0 ? 1500 : 40);
            QList<float> samples(n);
            for (int i = 0; i < n; ++i)
                reference << (samples[i] = next++);
            history.append({samples, samples});
            reference = reference.mid(qMax<qsizetype>(0, reference.size() - 1000));
            QCOMPARE(history.channel(0), reference);
        }
    }
};

QTEST_GUILESS_MAIN(TestDeviceStream)
#include "tst_devicestream.moc"
