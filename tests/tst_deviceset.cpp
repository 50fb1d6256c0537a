#include "device/ComCorvidaDevice.h"
#include "device/ComCorvidaDiscovery.h"
#include "device/CorvidaModel.h"
#include "device/VirtualCorvidaDevice.h"
#include "settings/CorvidaSettings.h"

#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using Entry = SerialPortList::Entry;

class TestDeviceSet : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void scanAnnounces_data();
    void scanAnnounces();
    void knownPortsAreNeverAnnouncedTwice();
    void modelCreatesFoldersAndSettings();
    void virtualDeviceCountKeepsTheSameObjects();
    void newDeviceIsAnnouncedAtOnceAndFollowsTheLimits();
    void foundPortBecomesABoundSerialDevice();
    void rawDataFlagFollowsTheSetting();
    void destructionStopsEverything();
};

void TestDeviceSet::scanAnnounces_data()
{
    QTest::addColumn<QList<Entry>>("ports");
    QTest::addColumn<QStringList>("announced");
    const Entry st{"ttyACM0", "STMicroelectronics Virtual COM Port", "STMicroelectronics"};
    const Entry own{"ttyACM1", "BRENVATORIX CORVIDA unit", ""};
    QTest::newRow("two units in one scan, in list order")
        << QList<Entry>{own, st} << QStringList{"ttyACM1", "ttyACM0"};
    QTest::newRow("bluetooth never")
        << QList<Entry>{{"rfcomm0", "Bluetooth link STMicroelectronics", ""}} << QStringList{};
    QTest::newRow("case matters") << QList<Entry>{{"ttyUSB0", "stmicroelectronics", ""},
                                                  {"ttyUSB1", "Brenvatorix Corvida", ""}}
                                  << QStringList{};
    QTest::newRow("manufacturer alone is not enough")
        << QList<Entry>{{"ttyUSB2", "USB Serial", "STMicroelectronics"}} << QStringList{};
}

void TestDeviceSet::scanAnnounces()
{
    QFETCH(QList<Entry>, ports);
    QFETCH(QStringList, announced);
    ComCorvidaDiscovery discovery;
    discovery.setPortListSource(SerialPortList::fixed(ports));
    QStringList seen;
    connect(&discovery, &ComCorvidaDiscovery::deviceFound, this,
            [&](const QString &p) { seen << p; });
    discovery.scan();
    QCOMPARE(seen, announced);
}

void TestDeviceSet::knownPortsAreNeverAnnouncedTwice()
{
    QList<Entry> ports{{"ttyACM0", "STMicroelectronics", ""}};
    ComCorvidaDiscovery discovery;
    discovery.setPortListSource([&ports] { return ports; });
    QSignalSpy found(&discovery, &ComCorvidaDiscovery::deviceFound);
    discovery.start();
    QCOMPARE(found.count(), 1);
    // Unplugged, then plugged back in: the existing device reconnects by itself.
    ports.clear();
    discovery.scan();
    ports << Entry{"ttyACM0", "STMicroelectronics", ""}
          << Entry{"ttyACM3", "STMicroelectronics", ""};
    discovery.scan();
    QCOMPARE(found.count(), 2);
    QCOMPARE(found.last().first().toString(), QStringLiteral("ttyACM3"));
}

void TestDeviceSet::modelCreatesFoldersAndSettings()
{
    QTemporaryDir dir;
    const QString data = dir.filePath(QStringLiteral("nested/data"));
    CorvidaModel model(data);
    QCOMPARE(CorvidaModel::instance(), &model);
    QCOMPARE(model.recordsFolder(), data + QStringLiteral("/Records/"));
    QVERIFY(QFileInfo(model.recordsFolder()).isDir());
    model.settings()->setVisualScale(CorvidaSettings::VisualScales::Scale_90);
    QVERIFY(QFile::exists(data + QStringLiteral("/Settings.xml")));
}

void TestDeviceSet::virtualDeviceCountKeepsTheSameObjects()
{
    QTemporaryDir dir;
    CorvidaModel model(dir.path());
    model.settings()->setUseVirtualCorvida(3);
    const QList<BaseCorvidaDevice *> three = model.devices();
    QCOMPARE(three.size(), 3);
    for (BaseCorvidaDevice *d : three)
        QVERIFY(qobject_cast<VirtualCorvidaDevice *>(d) && d->isConnected());

    QSignalSpy gone(&model, &CorvidaModel::onCorvadaDisconnected);
    model.settings()->setUseVirtualCorvida(1);
    QCOMPARE(model.devices(), three);
    QVERIFY(three[0]->isConnected());
    QVERIFY(!three[1]->isConnected() && !three[2]->isConnected());
    QVERIFY(gone.count() >= 2);

    model.settings()->setUseVirtualCorvida(3);
    QCOMPARE(model.devices(), three);
    QVERIFY(three[1]->isConnected() && three[2]->isConnected());
}

void TestDeviceSet::newDeviceIsAnnouncedAtOnceAndFollowsTheLimits()
{
    QTemporaryDir dir;
    CorvidaModel model(dir.path());
    model.settings()->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_120_30);
    QSignalSpy connected(&model, &CorvidaModel::onCorvadaConnected);
    auto *device = new VirtualCorvidaDevice;
    device->disconnectDevice(); // not linked: the announcement comes all the same
    model.addDevice(device);
    QCOMPARE(connected.count(), 1);
    QCOMPARE(connected.first().first().toString(), device->deviceId());
    QCOMPARE(device->upperPressure(), 120.0);
    QCOMPARE(device->lowerPressure(), 30.0);
    model.addDevice(nullptr);
    QCOMPARE(model.devices().size(), 1);
    // A later change of the setting reaches the devices already there.
    model.settings()->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_300_75);
    QCOMPARE(device->upperPressure(), 300.0);
    QCOMPARE(device->lowerPressure(), 75.0);
}

void TestDeviceSet::foundPortBecomesABoundSerialDevice()
{
    QTemporaryDir dir;
    CorvidaModel model(dir.path());
    model.discovery()->setPortListSource(SerialPortList::fixed(
        {{dir.filePath(QStringLiteral("no-such-port")), "STMicroelectronics", ""}}));
    model.discovery()->scan();
    QCOMPARE(model.devices().size(), 1);
    auto *serial = qobject_cast<ComCorvidaDevice *>(model.devices().first());
    QVERIFY(serial);
    QCOMPARE(serial->portName(), dir.filePath(QStringLiteral("no-such-port")));
    QVERIFY(!serial->isSearching());
}

void TestDeviceSet::rawDataFlagFollowsTheSetting()
{
    QTemporaryDir dir;
    {
        CorvidaModel model(dir.path());
        QVERIFY(!CorvidaModel::saveRawData());
        model.settings()->setSaveRawData(true);
        QVERIFY(CorvidaModel::saveRawData());
    }
    CorvidaModel again(dir.path()); // read back from the file at start
    QVERIFY(CorvidaModel::saveRawData());
    again.settings()->setSaveRawData(false);
}

void TestDeviceSet::destructionStopsEverything()
{
    QTemporaryDir dir;
    auto *model = new CorvidaModel(dir.path());
    model->settings()->setUseVirtualCorvida(1);
    QPointer<BaseCorvidaDevice> device = model->devices().first();
    device->startMeasuring();
    QSignalSpy stopped(device.data(), &BaseCorvidaDevice::stoppedMeasuring);
    delete model;
    QCOMPARE(stopped.count(), 1);
    QVERIFY(device.isNull());
    QCOMPARE(CorvidaModel::instance(), nullptr);
}

QTEST_GUILESS_MAIN(TestDeviceSet)
#include "tst_deviceset.moc"
