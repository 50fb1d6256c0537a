#include "device/ComCorvidaDevice.h"
#include "support/CorvidaUnitEmulator.h"
#include "toolkit/LogCapture.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>
#include <numeric>

namespace {
using Emu = CorvidaUnitEmulator;

const QByteArray kStop = QByteArray::fromHex("55550200cccc");
const QByteArray kStart = QByteArray::fromHex("55550100cccc");
const QByteArray kRelease = QByteArray::fromHex("55550400cccc");
const QByteArray kAskSerial = QByteArray::fromHex("55550700cccc");
const QByteArray kAskCalibration = QByteArray::fromHex("55550600cccc");

// A unit on a pseudo-terminal and a device bound to it, with both clocks in the test's hands.
// Every processed frame is kept.
struct Rig {
    qint64 now = 1000000;
    Emu unit;
    std::unique_ptr<ComCorvidaDevice> device;
    QList<float> pressure;
    QList<float> pulse;
    int largestFrame = 0;

    Rig()
    {
        unit.setClock([this] { return now; });
        unit.plug();
        device = std::make_unique<ComCorvidaDevice>(unit.portPath());
        device->setWatchdogActive(false);
        QObject::connect(device.get(), &BaseCorvidaDevice::pressurePulseData, device.get(),
                         [this](const QList<QList<float>> &data) {
                             largestFrame = qMax(largestFrame, int(data[0].size()));
                             pressure += data[0];
                             pulse += data[1];
                         });
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
    // Connects with the unit's answers to the identity requests switched off.
    void connectSilent(bool answerCalibration)
    {
        unit.setAnswerSerialRequests(false);
        unit.setAnswerCalibrationRequests(answerCalibration);
        device->connectDevice();
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

QByteArray serialPayload(const QDateTime &date, const QByteArray &text)
{
    QByteArray p = Emu::le64(Emu::fileTime(date)) + text;
    return p + QByteArray(qMax(0, 40 - int(p.size())), '\0');
}

const QDateTime kNoon2021(QDate(2021, 3, 15), QTime(12, 0), Qt::UTC);

using Dev = ComCorvidaDevice;
using Action = std::function<void(Dev &)>;
} // namespace

Q_DECLARE_METATYPE(Action)

class TestComCorvidaDevice : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void connectingAsksStopSerialCalibrationAndDestructionReleasesCuff();
    void commandsOnTheWire_data();
    void commandsOnTheWire();
    void samplesComeOutAsCalibratedPressure_data();
    void samplesComeOutAsCalibratedPressure();
    void cuffCycleRunsBetweenTheLimitsAndMirrorsRawSamples();
    void unplugDisconnectsAndWatchdogReconnects();
    void serialRequestRepeatedOnceAfterConnect();
    void garbageBeforeStartMarkBlocksUntilReconnect();
    void unitPackets_data();
    void unitPackets();
    void searchWalksPortsInOrder_data();
    void searchWalksPortsInOrder();
    void searchingDeviceConnectsToFoundUnitAndThenRests();
    void firstWatchdogRoundRunsAtOnce();
};

void TestComCorvidaDevice::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    Emu probe;
    if (!probe.plug())
        QSKIP("no pseudo-terminals on this machine");
}

void TestComCorvidaDevice::connectingAsksStopSerialCalibrationAndDestructionReleasesCuff()
{
    Rig b;
    b.unit.setSerialNumber("CRV-0042");
    b.unit.setProductionDate(kNoon2021);
    QSignalSpy connectedSpy(b.device.get(), &BaseCorvidaDevice::connected);
    QCOMPARE(b.device->deviceId(), b.unit.portPath());

    QVERIFY(b.connectAndIdentify());
    QCOMPARE(b.unit.receivedBytes().toHex(), (kStop + kAskSerial + kAskCalibration).toHex());
    QCOMPARE(connectedSpy.count(), 1);
    QCOMPARE(b.device->deviceId(), QStringLiteral("CRV-0042"));
    // The line through (100, 0) and (900, 200): 0.25 mmHg per unit, zero at 100.
    QCOMPARE(b.device->slope(), 0.25);
    QCOMPARE(b.device->offset(), 25.0);
    const QList<QPair<QString, QString>> info = b.device->deviceInfo();
    QCOMPARE(info.size(), 2);
    QCOMPARE(info[0], qMakePair(QStringLiteral("Port"), b.unit.portPath()));
    QCOMPARE(info[1], qMakePair(QStringLiteral("Produced"), QStringLiteral("2021-03-15")));

    b.unit.clearReceived();
    QSignalSpy disconnectedSpy(b.device.get(), &BaseCorvidaDevice::disconnected);
    b.device.reset();
    QCOMPARE(disconnectedSpy.count(), 1);
    QTRY_COMPARE(b.unit.receivedBytes().toHex(), (kRelease + kStop).toHex());
}

void TestComCorvidaDevice::commandsOnTheWire_data()
{
    QTest::addColumn<Action>("action");
    QTest::addColumn<QByteArray>("wire");
    QTest::newRow("start acquisition") << Action([](Dev &d) { d.startAcquisition(); }) << kStart;
    QTest::newRow("stop acquisition") << Action([](Dev &d) { d.stopAcquisition(); }) << kStop;
    // Limits handed in as (40.7, 160.9): upper goes first, both cut toward zero.
    QTest::newRow("start measuring") << Action([](Dev &d) { d.startMeasuring(); })
                                     << kStart + QByteArray::fromHex("55550304a0002800cccc");
    // A negative lower limit sends nothing; the serial request after it is a marker.
    QTest::newRow("negative lower limit") << Action([](Dev &d) {
        d.setPressureLimits(-5.0, 150.0);
        d.startMeasuring();
        d.requestSerialNumber();
    }) << kAskSerial;
    QTest::newRow("stop measuring")
        << Action([](Dev &d) { d.stopMeasuring(); }) << kRelease + kStop;
    QTest::newRow("write serial number")
        << Action([](Dev &d) { d.writeSerialNumber(QStringLiteral("CRV-9"), kNoon2021); })
        << QByteArray::fromHex("55550728") + Emu::le64(132602832000000000ULL) + "CRV-9" +
               QByteArray(27, '\0') + QByteArray::fromHex("cccc");
}

void TestComCorvidaDevice::commandsOnTheWire()
{
    QFETCH(Action, action);
    QFETCH(QByteArray, wire);
    QTemporaryDir folder;
    Rig b;
    QVERIFY(b.connectAndIdentify());
    b.unit.clearReceived();
    b.device->setPressureLimits(160.9, 40.7);
    b.device->setRawFolder(folder.path());
    action(*b.device);
    QTRY_COMPARE(b.unit.receivedBytes().toHex(), wire.toHex());
    b.device->stopMeasuring(); // closes the raw mirror before the folder goes
}

void TestComCorvidaDevice::samplesComeOutAsCalibratedPressure_data()
{
    QTest::addColumn<QList<float>>("points"); // x0, y0, x1, y1
    QTest::addColumn<double>("pressure");
    QTest::newRow("zero cuff") << QList<float>{100, 0, 900, 200} << 0.0;
    QTest::newRow("steep sensor, offset zero")
        << QList<float>{2000, 20, 4000, 180} << 150.0; // 0.08 mmHg per unit
}

void TestComCorvidaDevice::samplesComeOutAsCalibratedPressure()
{
    QFETCH(QList<float>, points);
    QFETCH(double, pressure);
    Rig b;
    b.unit.setCalibration(points[0], points[1], points[2], points[3]);
    b.unit.setRestPressure(pressure);
    QVERIFY(b.connectAndIdentify());
    b.device->startAcquisition();
    QTRY_VERIFY(b.unit.isStreaming());
    for (int i = 0; i < 3; ++i)
        QVERIFY(b.stream(1000));
    QCOMPARE(b.pressure.size(), b.unit.samplesSent());
    QVERIFY(b.largestFrame <= 31);
    // The first second lets the 15 Hz low-pass settle; after that the reading is the cuff
    // pressure, within the sensor's step (0.25 units through the slope).
    const double tolerance = 0.25 * (points[3] - points[1]) / (points[2] - points[0]) + 0.05;
    const double mean = std::accumulate(b.pressure.begin() + 1000, b.pressure.end(), 0.0) / 2000;
    QVERIFY2(std::fabs(mean - pressure) < tolerance, qPrintable(QString::number(mean)));
    for (qsizetype i = 1000; i < 3000; i += 97)
        QVERIFY(std::fabs(b.pressure[i] - pressure) < tolerance + 0.1);
}

void TestComCorvidaDevice::cuffCycleRunsBetweenTheLimitsAndMirrorsRawSamples()
{
    QTemporaryDir folder;
    Rig b;
    b.unit.setSystolic(120.0);
    b.unit.setCuffRates(200.0, 40.0); // up in 0.8 s, down to 40 in 3 s
    QVERIFY(b.connectAndIdentify());
    b.device->setRawFolder(folder.path() + QStringLiteral("/raw"));
    b.device->setPressureLimits(160.0, 40.0);
    b.device->startMeasuring();
    QVERIFY(b.device->isMeasuring());
    const QString rawPath = b.device->rawFilePath();
    QVERIFY(QFileInfo(rawPath).fileName().contains(QRegularExpression(
        QStringLiteral("^Corvida-\\d{4}-\\d\\d-\\d\\d_\\d\\d-\\d\\d-\\d\\d\\.csv$"))));
    QTRY_VERIFY(b.unit.isMeasuring());
    QCOMPARE(b.unit.upperLimit(), 160);
    QCOMPARE(b.unit.lowerLimit(), 40);

    b.unit.setRecordSamples(true);
    for (int i = 0; i < 4; ++i) // 2 s, mid deflation
        QVERIFY(b.stream(500));
    // Peak near the upper limit (a little under, through the low-pass), pulse hidden above the
    // systolic pressure and back below it.
    const float peak = *std::max_element(b.pressure.begin(), b.pressure.end());
    QVERIFY2(peak > 155.0f && peak < 161.0f, qPrintable(QString::number(peak)));
    QVERIFY(b.unit.cuffPressure() < 120.0);
    float pulseAbove = 0, pulseBelow = 0;
    for (qsizetype i = 0; i < b.pressure.size(); ++i) {
        if (i > 300 && b.pressure[i] > 135)
            pulseAbove = qMax(pulseAbove, std::fabs(b.pulse[i]));
        if (b.pressure[i] < 110)
            pulseBelow = qMax(pulseBelow, std::fabs(b.pulse[i]));
    }
    QVERIFY2(pulseBelow > 10 * pulseAbove,
             qPrintable(QStringLiteral("%1 %2").arg(pulseBelow).arg(pulseAbove)));

    QSignalSpy stoppedSpy(b.device.get(), &BaseCorvidaDevice::stoppedMeasuring);
    b.device->stopMeasuring();
    QCOMPARE(stoppedSpy.count(), 1);
    QVERIFY(b.device->rawFilePath().isEmpty());
    QTRY_VERIFY(!b.unit.isMeasuring());
    QTRY_VERIFY(!b.unit.isStreaming());

    // The mirror holds exactly the samples the unit sent, decoded but not filtered.
    QFile raw(rawPath);
    QVERIFY(raw.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(raw.readAll()).split('\n');
    const QList<Emu::Counts> sent = b.unit.sentSamples();
    QCOMPARE(lines.size(), sent.size() + 2); // header, samples, empty after the last "\n"
    QCOMPARE(lines.first(), QStringLiteral("MPX;AC;DC;IR"));
    QCOMPARE(lines.last(), QString());
    for (int i = 0; i < sent.size(); i += 37)
        QCOMPARE(lines[i + 1], rawLine(sent[i]));
}

void TestComCorvidaDevice::unplugDisconnectsAndWatchdogReconnects()
{
    Rig b;
    QVERIFY(b.connectAndIdentify());
    QSignalSpy disconnectedSpy(b.device.get(), &BaseCorvidaDevice::disconnected);
    QSignalSpy connectedSpy(b.device.get(), &BaseCorvidaDevice::connected);
    b.device->startAcquisition();
    QTRY_VERIFY(b.unit.isStreaming());
    QVERIFY(b.stream(200));

    b.unit.unplug();
    QTRY_COMPARE(disconnectedSpy.count(), 1);
    QVERIFY(!b.device->isConnected());
    QVERIFY(!b.device->isAcquiring());
    // Unplugged: every round tries again and fails quietly.
    b.device->watchdogTick();
    b.device->watchdogTick();
    QCOMPARE(disconnectedSpy.count(), 1);

    b.unit.plug();
    b.unit.clearReceived();
    b.device->watchdogTick();
    QTRY_VERIFY(b.device->isConnected());
    QCOMPARE(connectedSpy.count(), 1);
    QTRY_COMPARE(b.unit.receivedTypes(), (QList<int>{2, 7, 6}));

    const qint64 before = b.pressure.size();
    b.device->startAcquisition();
    QTRY_VERIFY(b.unit.isStreaming());
    QVERIFY(b.stream(300));
    QCOMPARE(b.pressure.size() - before, 300);
}

void TestComCorvidaDevice::serialRequestRepeatedOnceAfterConnect()
{
    Rig b;
    b.connectSilent(true);
    for (int round = 0; round < 2; ++round) { // a new connection may ask once more
        if (round == 1) {
            b.unit.clearReceived();
            b.device->connectDevice();
        }
        QTRY_VERIFY(b.unit.receivedTypes().contains(6));
        b.unit.clearReceived();
        for (int i = 0; i < 3; ++i)
            b.device->watchdogTick();
        b.device->requestSerialNumber(); // marker
        QTRY_COMPARE(b.unit.receivedTypes(), (QList<int>{7, 7}));
    }
}

void TestComCorvidaDevice::garbageBeforeStartMarkBlocksUntilReconnect()
{
    Rig b;
    b.connectSilent(true);
    QTRY_VERIFY(b.device->isCalibrated());
    const QByteArray serial = Emu::packet(7, serialPayload(kNoon2021, "LATE-1"));
    b.unit.writeRaw(QByteArray("\x13\x37") + serial);
    QTRY_VERIFY(b.device->decoder().isBlocked());
    b.unit.writeRaw(serial);
    QTRY_VERIFY(b.device->decoder().droppedBytes() > 0);
    QVERIFY(b.device->serialNumber().isEmpty());

    b.unit.setSerialNumber("LATE-1");
    b.unit.setAnswerSerialRequests(true);
    b.device->connectDevice();
    QTRY_COMPARE(b.device->serialNumber(), QStringLiteral("LATE-1"));
    QVERIFY(!b.device->decoder().isBlocked());
}

void TestComCorvidaDevice::unitPackets_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("serial");
    QTest::addColumn<QString>("produced");
    QTest::addColumn<double>("slope");
    const QByteArray calibration =
        Emu::le64(0) + Emu::f32(0) + Emu::f32(0) + Emu::f32(400) + Emu::f32(100);
    QTest::newRow("serial number") << Emu::packet(7, serialPayload(kNoon2021, "AB-7")) << "AB-7"
                                   << "2021-03-15" << 1.0;
    QTest::newRow("production in 2004 is no date")
        << Emu::packet(7,
                       serialPayload(QDateTime(QDate(2004, 6, 1), QTime(12, 0), Qt::UTC), "OLD-1"))
        << "OLD-1"
        << "" << 1.0;
    QTest::newRow("short serial payload") << Emu::packet(7, QByteArray::fromHex("0102ab")) << ""
                                          << "" << 1.0;
    QTest::newRow("calibration") << Emu::packet(6, calibration) << ""
                                 << "" << 0.25;
    QTest::newRow("calibration of 23 bytes") << Emu::packet(6, calibration.left(23)) << ""
                                             << "" << 1.0;
    QTest::newRow("calibration of 25 bytes") << Emu::packet(6, calibration + "x") << ""
                                             << "" << 1.0;
    QTest::newRow("blank serial number") << Emu::packet(7, serialPayload(kNoon2021, "  ")) << ""
                                         << "2021-03-15" << 1.0;
    QTest::newRow("unknown type skipped")
        << Emu::packet(42, "abc") + Emu::packet(7, serialPayload(kNoon2021, "AB-8")) << "AB-8"
        << "2021-03-15" << 1.0;
}

void TestComCorvidaDevice::unitPackets()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, serial);
    QFETCH(QString, produced);
    QFETCH(double, slope);
    Rig b;
    b.connectSilent(false);
    QTRY_COMPARE(b.unit.receivedTypes(), (QList<int>{2, 7, 6}));
    QSignalSpy idSpy(b.device.get(), &BaseCorvidaDevice::idChanged);
    b.unit.writeRaw(bytes);
    QTRY_VERIFY(b.device->isLinkUp());
    QTRY_COMPARE(b.device->decoder().pendingBytes(), 0);
    QVERIFY(!b.device->decoder().isBlocked());
    QCOMPARE(b.device->serialNumber(), serial);
    QCOMPARE(b.device->deviceId(), serial.isEmpty() ? b.unit.portPath() : serial);
    QCOMPARE(idSpy.count(), serial.isEmpty() ? 0 : 1);
    QCOMPARE(b.device->productionDateText(), produced);
    QCOMPARE(b.device->slope(), slope);
}

void TestComCorvidaDevice::searchWalksPortsInOrder_data()
{
    using Entry = SerialPortList::Entry;
    QTest::addColumn<QList<Entry>>("ports");
    QTest::addColumn<QString>("found");
    QTest::newRow("nothing") << QList<Entry>{} << "";
    QTest::newRow("Bluetooth skipped")
        << QList<Entry>{{"rfcomm0", "Bluetooth STMicroelectronics link", ""},
                        {"ttyACM1", "STMicroelectronics Virtual COM Port", "STM"}}
        << "ttyACM1";
    QTest::newRow("first match ends the walk")
        << QList<Entry>{{"ttyS0", "Serial", ""},
                        {"ttyACM0", "BRENVATORIX CORVIDA", ""},
                        {"ttyACM1", "STMicroelectronics", ""}}
        << "ttyACM0";
}

void TestComCorvidaDevice::searchWalksPortsInOrder()
{
    QFETCH(QList<SerialPortList::Entry>, ports);
    QFETCH(QString, found);
    ComCorvidaDevice device;
    device.setWatchdogActive(false);
    device.setAutoConnect(false);
    device.setPortListSource(SerialPortList::fixed(ports));
    QVERIFY(device.isSearching());
    QSignalSpy disconnectedSpy(&device, &BaseCorvidaDevice::disconnected);
    device.watchdogTick();
    QCOMPARE(device.portName(), found);
    QCOMPARE(disconnectedSpy.count(), 1); // a search that has not linked says so every round
    QVERIFY(!device.isConnected());       // no auto-connect, no open
}

void TestComCorvidaDevice::searchingDeviceConnectsToFoundUnitAndThenRests()
{
    Emu unit;
    QVERIFY(unit.plug());
    ComCorvidaDevice device;
    device.setWatchdogActive(false);
    device.setPortListSource(SerialPortList::fixed(
        {{"ttyS0", "Serial", ""}, {unit.portPath(), "STMicroelectronics Virtual COM", ""}}));
    device.watchdogTick();
    QCOMPARE(device.portName(), unit.portPath());
    QTRY_COMPARE(device.serialNumber(), QStringLiteral("CRV-0001"));
    QSignalSpy disconnectedSpy(&device, &BaseCorvidaDevice::disconnected);
    unit.clearReceived();
    device.watchdogTick();
    QCOMPARE(disconnectedSpy.count(), 0);
    device.requestSerialNumber(); // marker: nothing else was sent
    QTRY_COMPARE(unit.receivedTypes(), (QList<int>{7}));
}

void TestComCorvidaDevice::firstWatchdogRoundRunsAtOnce()
{
    Emu unit;
    QVERIFY(unit.plug());
    ComCorvidaDevice device(unit.portPath());
    QVERIFY(!device.isConnected());     // not inside the constructor...
    QTRY_VERIFY(device.isCalibrated()); // ...but as soon as the event loop runs
}

QTEST_GUILESS_MAIN(TestComCorvidaDevice)
#include "tst_comcorvidadevice.moc"
