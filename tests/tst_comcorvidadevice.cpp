#include "device/ComCorvidaDevice.h"
#include "support/CorvidaUnitEmulator.h"

#include <QSignalSpy>
#include <QtTest>
#include <numeric>

namespace {
using Emu = CorvidaUnitEmulator;

const QByteArray kStop = QByteArray::fromHex("55550200cccc");
const QByteArray kStart = QByteArray::fromHex("55550100cccc");
const QByteArray kRelease = QByteArray::fromHex("55550400cccc");
const QByteArray kAskSerial = QByteArray::fromHex("55550700cccc");
const QByteArray kAskCalibration = QByteArray::fromHex("55550600cccc");
const QDateTime kNoon2021(QDate(2021, 3, 15), QTime(12, 0), Qt::UTC);

// A unit on a pseudo-terminal and a device bound to it; the test moves the unit's clock.
struct Rig {
    qint64 now = 1000000;
    Emu unit;
    std::unique_ptr<ComCorvidaDevice> device;
    QList<float> pressure;

    Rig()
    {
        unit.setClock([this] { return now; });
        unit.setProductionDate(kNoon2021);
        unit.plug();
        device = std::make_unique<ComCorvidaDevice>(unit.portPath());
        device->setWatchdogActive(false);
        device->setClock([this] { return now; });
        QObject::connect(device.get(), &BaseCorvidaDevice::pressurePulseData, device.get(),
                         [this](const QList<QList<float>> &data) { pressure += data[0]; });
    }
    bool connectAndIdentify()
    {
        device->connectDevice();
        return QTest::qWaitFor(
            [this] { return device->isCalibrated() && !device->serialNumber().isEmpty(); });
    }
    // Lets the unit produce ms milliseconds of samples and waits until they have arrived.
    bool stream(int ms)
    {
        const qint64 target = pressure.size() + ms;
        now += ms;
        unit.tick();
        return QTest::qWaitFor([&] { return pressure.size() >= target; });
    }
};

QString rawLine(const Emu::Counts &c)
{
    const double factors[4] = {0.25, 1.8 / 32768, 1.8 / 32768, 1.32 / 32768};
    QString line;
    for (int i = 0; i < 4; ++i)
        line += QString::asprintf("%.8f;", c[i] * factors[i]).replace('.', ',');
    return line;
}

using Action = std::function<void(Rig &)>;
} // namespace

Q_DECLARE_METATYPE(Action)

class TestComCorvidaDevice : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        Emu probe;
        if (!probe.plug())
            QSKIP("no pseudo-terminals on this machine");
    }
    void commandsOnTheWire_data()
    {
        QTest::addColumn<Action>("action");
        QTest::addColumn<QByteArray>("wire");
        QTest::newRow("start acquisition")
            << Action([](Rig &r) { r.device->startAcquisition(); }) << kStart;
        // Limits handed in as (40.7, 160.9): upper goes first, both cut toward zero.
        QTest::newRow("start measuring") << Action([](Rig &r) { r.device->startMeasuring(); })
                                         << kStart + QByteArray::fromHex("55550304a0002800cccc");
        QTest::newRow("stop measuring")
            << Action([](Rig &r) { r.device->stopMeasuring(); }) << kRelease + kStop;
        QTest::newRow("destruction releases the cuff")
            << Action([](Rig &r) { r.device.reset(); }) << kRelease + kStop;
        QTest::newRow("write serial number")
            << Action(
                   [](Rig &r) { r.device->writeSerialNumber(QStringLiteral("CRV-9"), kNoon2021); })
            << QByteArray::fromHex("55550728") + Emu::le64(132602832000000000ULL) + "CRV-9" +
                   QByteArray(27, '\0') + QByteArray::fromHex("cccc");
    }

    void commandsOnTheWire()
    {
        QFETCH(Action, action);
        QFETCH(QByteArray, wire);
        QTemporaryDir folder;
        Rig b;
        QVERIFY(b.connectAndIdentify());
        QCOMPARE(b.unit.receivedBytes().toHex(), (kStop + kAskSerial + kAskCalibration).toHex());
        QCOMPARE(b.device->deviceId(), QStringLiteral("CRV-0001"));
        QCOMPARE(b.device->productionDateText(), QStringLiteral("2021-03-15"));
        b.unit.clearReceived();
        b.device->setPressureLimits(160.9, 40.7);
        b.device->setRawFolder(folder.path());
        action(b);
        QTRY_COMPARE(b.unit.receivedBytes().toHex(), wire.toHex());
        if (b.device)
            b.device->stopMeasuring(); // closes the raw mirror before the folder goes
    }

    void samplesComeOutAsCalibratedPressure()
    {
        const float points[4] = {2000, 20, 4000, 180}; // 0.08 mmHg per unit, offset zero
        const double pressure = 150.0;
        Rig b;
        b.unit.setCalibration(points[0], points[1], points[2], points[3]);
        b.unit.setRestPressure(pressure);
        QVERIFY(b.connectAndIdentify());
        b.device->startAcquisition();
        QTRY_VERIFY(b.unit.isStreaming());
        for (int i = 0; i < 3; ++i)
            QVERIFY(b.stream(1000));
        QCOMPARE(b.pressure.size(), b.unit.samplesSent());
        // The first second lets the 15 Hz low-pass settle; after that the reading is the cuff
        // pressure, within the sensor's step (0.25 units through the slope).
        const double tolerance = 0.25 * (points[3] - points[1]) / (points[2] - points[0]) + 0.05;
        const double mean =
            std::accumulate(b.pressure.begin() + 1000, b.pressure.end(), 0.0) / 2000;
        QVERIFY2(std::fabs(mean - pressure) < tolerance, qPrintable(QString::number(mean)));
        for (qsizetype i = 1000; i < 3000; i += 97)
            QVERIFY(std::fabs(b.pressure[i] - pressure) < tolerance + 0.1);
    }

    void cuffCycleRunsBetweenTheLimitsAndMirrorsRawSamples()
    {
        QTemporaryDir folder;
        Rig b;
        b.unit.setCuffRates(200.0, 40.0); // up in 0.8 s, down to 40 in 3 s
        QVERIFY(b.connectAndIdentify());
        b.device->setRawFolder(folder.path() + QStringLiteral("/raw"));
        b.device->setPressureLimits(160.0, 40.0);
        b.device->startMeasuring();
        const QString rawPath = b.device->rawFilePath();
        QTRY_VERIFY(b.unit.isMeasuring());

        b.unit.setRecordSamples(true);
        for (int i = 0; i < 4; ++i) // 2 s, mid deflation
            QVERIFY(b.stream(500));
        // Peak near the upper limit (a little under, through the low-pass).
        const float peak = *std::max_element(b.pressure.begin(), b.pressure.end());
        QVERIFY2(peak > 155.0f && peak < 161.0f, qPrintable(QString::number(peak)));
        b.device->stopMeasuring();

        // The mirror holds exactly the samples the unit sent, decoded but not filtered.
        QFile raw(rawPath);
        QVERIFY(raw.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(raw.readAll()).split('\n');
        const QList<Emu::Counts> sent = b.unit.sentSamples();
        QCOMPARE(lines.size(), sent.size() + 2); // header, samples, empty after the last "\n"
        QCOMPARE(lines.first(), QStringLiteral("MPX;AC;DC;IR"));
        for (int i = 0; i < sent.size(); i += 37)
            QCOMPARE(lines[i + 1], rawLine(sent[i]));
    }

    void unplugDisconnectsAndWatchdogReconnects()
    {
        Rig b;
        QVERIFY(b.connectAndIdentify());
        QSignalSpy disconnectedSpy(b.device.get(), &BaseCorvidaDevice::disconnected);
        QSignalSpy connectedSpy(b.device.get(), &BaseCorvidaDevice::connected);
        b.unit.unplug();
        QTRY_COMPARE(disconnectedSpy.count(), 1);
        b.device->watchdogTick(); // unplugged: the round fails quietly

        b.unit.plug();
        b.unit.clearReceived();
        b.device->watchdogTick();
        QTRY_VERIFY(b.device->isConnected());
        QCOMPARE(connectedSpy.count(), 1);
        QTRY_COMPARE(b.unit.receivedBytes().toHex(),
                     (kStop + kAskSerial + kAskCalibration).toHex());
    }

    void lostStreamClosesThePortAndTheUnitStreamsAgain_data()
    {
        QTest::addColumn<Action>("disturb");
        QTest::addColumn<bool>("stalled");
        // Nine bytes of noise between two packets: no start mark, so decoding stops for good.
        QTest::newRow("line noise") << Action([](Rig &r) {
            r.unit.sendLineNoise(QByteArray::fromHex("a7013cfe00991204ee"));
            r.now += 300;
            r.unit.tick(); // the samples behind the noise can no longer be read
        }) << true;
        // The unit stops talking: nothing is out of step, it is just silent.
        QTest::newRow("silence") << Action([](Rig &) {}) << false;
    }
    void lostStreamClosesThePortAndTheUnitStreamsAgain()
    {
        QFETCH(Action, disturb);
        QFETCH(bool, stalled);
        Rig b;
        QVERIFY(b.connectAndIdentify());
        b.device->startAcquisition();
        QTRY_VERIFY(b.unit.isStreaming());
        QVERIFY(b.stream(500));
        QSignalSpy lost(b.device.get(), &BaseCorvidaDevice::linkLost);
        QSignalSpy disconnectedSpy(b.device.get(), &BaseCorvidaDevice::disconnected);
        disturb(b);
        if (stalled)
            QTRY_VERIFY(b.device->decoder().isBlocked());
        const qsizetype kept = b.pressure.size();

        // Less than one watchdog period without a packet is no loss yet.
        b.now += 1000;
        b.device->watchdogTick();
        QCOMPARE(lost.count(), 0);
        QVERIFY(b.device->isConnected());

        b.now += ComCorvidaDevice::WatchdogInterval;
        b.unit.clearReceived();
        b.device->watchdogTick();
        QTRY_COMPARE(lost.count(), 1);
        QCOMPARE(disconnectedSpy.count(), 1);
        QVERIFY(!b.device->isAcquiring());
        QCOMPARE(b.pressure.size(), kept);
        // The cuff is released and streaming stopped on the old port, then the same round
        // opens it anew and asks the unit who it is.
        QTRY_COMPARE(b.unit.receivedBytes().toHex(),
                     (kRelease + kStop + kStop + kAskSerial + kAskCalibration).toHex());
        QTRY_VERIFY(b.device->isConnected());
        QVERIFY(!b.device->decoder().isBlocked());

        b.device->startAcquisition();
        QTRY_VERIFY(b.unit.isStreaming());
        QVERIFY(b.stream(500));
        b.now += ComCorvidaDevice::WatchdogInterval - 1;
        b.unit.tick();
        QTRY_COMPARE(b.pressure.size(), kept + 500 + ComCorvidaDevice::WatchdogInterval - 1);
        b.device->watchdogTick();
        QCOMPARE(lost.count(), 1); // a stream that flows is left alone
    }
    // A long save holds the event loop up; the packets that waited in the port meanwhile must
    // not make a streaming unit look lost.
    void packetsThatWaitedForABusyLoopAreNoLostLink()
    {
        Rig b;
        QVERIFY(b.connectAndIdentify());
        b.device->startAcquisition();
        QTRY_VERIFY(b.unit.isStreaming());
        QVERIFY(b.stream(500));
        QSignalSpy lost(b.device.get(), &BaseCorvidaDevice::linkLost);
        b.now += ComCorvidaDevice::WatchdogInterval + 500;
        b.unit.tick();            // on the line, not read yet
        b.device->watchdogTick(); // the tick comes first
        QVERIFY(!lost.wait(3 * ComCorvidaDevice::LossConfirmMs));
        QCOMPARE(b.pressure.size(), 500 + ComCorvidaDevice::WatchdogInterval + 500);
        QVERIFY(b.device->isConnected());
    }
    void anIdleUnitIsNoLostLink()
    {
        Rig b;
        QVERIFY(b.connectAndIdentify());
        QSignalSpy lost(b.device.get(), &BaseCorvidaDevice::linkLost);
        b.now += 10 * ComCorvidaDevice::WatchdogInterval;
        b.device->watchdogTick();
        QCOMPARE(lost.count(), 0);
        QVERIFY(b.device->isConnected());
    }

    void searchTakesTheFirstUnitThatIsNoBluetoothLink()
    {
        const QList<SerialPortList::Entry> ports{
            {"rfcomm0", "Bluetooth STMicroelectronics link", ""},
            {"ttyS0", "Serial", ""},
            {"ttyACM0", "BRENVATORIX CORVIDA", ""},
            {"ttyACM1", "STMicroelectronics Virtual COM Port", "STM"}};
        ComCorvidaDevice device;
        device.setWatchdogActive(false);
        device.setAutoConnect(false);
        device.setPortListSource(SerialPortList::fixed(ports));
        QSignalSpy disconnectedSpy(&device, &BaseCorvidaDevice::disconnected);
        device.watchdogTick();
        QCOMPARE(device.portName(), QStringLiteral("ttyACM0"));
        QCOMPARE(disconnectedSpy.count(), 1); // a search that has not linked says so every round
        QVERIFY(!device.isConnected());       // no auto-connect, no open
    }
};

QTEST_GUILESS_MAIN(TestComCorvidaDevice)
#include "tst_comcorvidadevice.moc"
