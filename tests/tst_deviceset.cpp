#include "device/ComCorvidaDevice.h"
#include "device/ComCorvidaDiscovery.h"
#include "device/CorvidaModel.h"
#include "device/VirtualCorvidaDevice.h"
#include "settings/CorvidaSettings.h"

#include <QtTest>

using Entry = SerialPortList::Entry;

class TestDeviceSet : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void scanAnnounces_data()
    {
        QTest::addColumn<QList<Entry>>("ports");
        QTest::addColumn<QStringList>("announced");
        QTest::newRow("two units in one scan, in list order")
            << QList<Entry>{{"ttyACM1", "BRENVATORIX CORVIDA unit", ""},
                            {"ttyACM0", "STMicroelectronics Virtual COM Port", ""}}
            << QStringList{"ttyACM1", "ttyACM0"};
        // Bluetooth links and names in another case: see tst_udevrule.
        QTest::newRow("manufacturer alone is not enough")
            << QList<Entry>{{"ttyUSB2", "USB Serial", "STMicroelectronics"}} << QStringList{};
    }

    void scanAnnounces()
    {
        QFETCH(QList<Entry>, ports);
        ComCorvidaDiscovery discovery;
        discovery.setPortListSource(SerialPortList::fixed(ports));
        QStringList seen;
        connect(&discovery, &ComCorvidaDiscovery::deviceFound, this,
                [&](const QString &p) { seen << p; });
        discovery.scan();
        QTEST(seen, "announced");
    }

    void knownPortsAreNeverAnnouncedTwice()
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
        ports = {{"ttyACM0", "STMicroelectronics", ""}, {"ttyACM3", "STMicroelectronics", ""}};
        discovery.scan();
        QCOMPARE(found.count(), 2);
        QCOMPARE(found.last().first().toString(), QStringLiteral("ttyACM3"));
    }

    void virtualDeviceCountKeepsTheSameObjects()
    {
        QTemporaryDir dir;
        CorvidaModel model(dir.path());
        model.settings()->setUseVirtualCorvida(3);
        const QList<BaseCorvidaDevice *> three = model.devices();
        QCOMPARE(three.size(), 3);
        for (BaseCorvidaDevice *d : three)
            QVERIFY(qobject_cast<VirtualCorvidaDevice *>(d) && d->isConnected());
        model.settings()->setUseVirtualCorvida(1);
        QCOMPARE(model.devices(), three);
        QVERIFY(three[0]->isConnected() && !three[1]->isConnected() && !three[2]->isConnected());
        model.settings()->setUseVirtualCorvida(3);
        QCOMPARE(model.devices(), three);
        QVERIFY(three[1]->isConnected() && three[2]->isConnected());
    }

    void joiningDevicesAreAnnouncedAndFollowTheLimits()
    {
        QTemporaryDir dir;
        CorvidaModel model(dir.path());
        model.settings()->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_120_30);
        QSignalSpy connected(&model, &CorvidaModel::onCorvadaConnected);
        auto *dev = new VirtualCorvidaDevice;
        dev->disconnectDevice(); // not linked: the announcement comes all the same
        model.addDevice(dev);
        QCOMPARE(connected.count(), 1);
        const auto limits = [=] { return qMakePair(dev->upperPressure(), dev->lowerPressure()); };
        QCOMPARE(limits(), qMakePair(120.0, 30.0));
        // A found port becomes a serial device bound to it.
        const QString port = dir.filePath(QStringLiteral("no-such-port"));
        model.discovery()->setPortListSource(
            SerialPortList::fixed({{port, "STMicroelectronics", ""}}));
        model.discovery()->scan();
        const auto *serial = qobject_cast<ComCorvidaDevice *>(model.devices().value(1));
        QVERIFY(serial && serial->portName() == port);
        // A later change of the setting reaches the devices already there.
        model.settings()->setPressureLimit(CorvidaSettings::PressureLimits::Pressure_300_75);
        QCOMPARE(limits(), qMakePair(300.0, 75.0));
    }

    void destructionStopsEverything()
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
    }
};

QTEST_GUILESS_MAIN(TestDeviceSet)
#include "tst_deviceset.moc"
