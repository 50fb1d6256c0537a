#include "device/CorvidaModel.h"

#include "device/ComCorvidaDevice.h"
#include "device/ComCorvidaDiscovery.h"
#include "device/VirtualCorvidaDevice.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/QuorvexCommon.h"

#include <QDebug>
#include <QDir>

CorvidaModel *CorvidaModel::s_instance = nullptr;
bool CorvidaModel::s_saveRawData = false;
QString CorvidaModel::s_detectionMethod;

CorvidaModel::CorvidaModel(const QString &dataFolder, QObject *parent)
    : QObject(parent)
{
    if (s_instance)
        qWarning() << "A second application model replaces the first";
    s_instance = this;

    m_rootFolder = QDir::fromNativeSeparators(dataFolder);
    if (!m_rootFolder.endsWith(QLatin1Char('/')))
        m_rootFolder += QLatin1Char('/');
    if (!QuorvexCommon::CreateDirIfNotExists(m_rootFolder))
        qWarning() << "Cannot create the data folder" << m_rootFolder;
    m_recordsFolder = m_rootFolder + QStringLiteral("Records/");
    if (!QuorvexCommon::CreateDirIfNotExists(m_recordsFolder))
        qWarning() << "Cannot create the records folder" << m_recordsFolder;

    m_settings = new CorvidaSettings(m_rootFolder + QStringLiteral("Settings.xml"), this);

    s_saveRawData = m_settings->getSaveRawData();
    m_connections << connect(m_settings, &CorvidaSettings::changedSaveRawData, this,
                             [](bool save) { s_saveRawData = save; });
    setDetectionMethod(m_settings->getDetectionMethod());
    m_connections << connect(m_settings, &CorvidaSettings::changedDetectionMethod, this,
                             &CorvidaModel::setDetectionMethod);
    m_connections << connect(m_settings, &CorvidaSettings::changedSimulatedAnimal, this,
                             &CorvidaModel::applySimulatedAnimal);

    m_connections << connect(m_settings, &CorvidaSettings::changedPressureLimit, this,
                             &CorvidaModel::applyPressureLimits);
    m_connections << connect(this, &CorvidaModel::onCorvadaConnected, this,
                             &CorvidaModel::applyPressureLimits);

    m_discovery = new ComCorvidaDiscovery(this);
    m_connections << connect(
        m_discovery, &ComCorvidaDiscovery::deviceFound, this,
        [this](const QString &port) { addDevice(new ComCorvidaDevice(port)); });
    m_discovery->start();

    applyVirtualDeviceCount(m_settings->getUseVirtualCorvida());
    m_connections << connect(m_settings, &CorvidaSettings::changedUseVirtualCorvida, this,
                             &CorvidaModel::applyVirtualDeviceCount);
}

CorvidaModel::~CorvidaModel()
{
    // Nobody listens any more; the units are only put to rest.
    m_connections.clear();
    m_discovery->stop();
    for (BaseCorvidaDevice *device : std::as_const(m_devices)) {
        device->disconnect(this);
        device->disconnectDevice();
        device->deleteLater();
    }
    m_devices.clear();
    if (s_instance == this)
        s_instance = nullptr;
}

CorvidaModel *CorvidaModel::instance()
{
    return s_instance;
}

bool CorvidaModel::saveRawData()
{
    return s_saveRawData;
}

QString CorvidaModel::detectionMethod()
{
    return s_detectionMethod;
}

void CorvidaModel::setDetectionMethod(const QString &method)
{
    s_detectionMethod = method;
}

void CorvidaModel::addDevice(BaseCorvidaDevice *device)
{
    if (!device)
        return;
    device->setParent(this);
    m_devices.append(device);
    connect(device, &BaseCorvidaDevice::connected, this,
            [this, device] { emit onCorvadaConnected(device->deviceId()); });
    connect(device, &BaseCorvidaDevice::disconnected, this,
            [this, device] { emit onCorvadaDisconnected(device->deviceId()); });
    emit onCorvadaConnected(device->deviceId());
}

void CorvidaModel::applyVirtualDeviceCount(int count)
{
    int found = 0;
    for (BaseCorvidaDevice *device : std::as_const(m_devices)) {
        if (!qobject_cast<VirtualCorvidaDevice *>(device))
            continue;
        if (found < count)
            device->connectDevice();
        else
            device->disconnectDevice();
        ++found;
    }
    for (; found < count; ++found) {
        auto *device = new VirtualCorvidaDevice();
        device->setAnimal(m_settings->getSimulatedAnimal());
        addDevice(device);
    }
}

void CorvidaModel::applySimulatedAnimal(const QString &preset)
{
    for (BaseCorvidaDevice *device : std::as_const(m_devices)) {
        if (auto *simulated = qobject_cast<VirtualCorvidaDevice *>(device))
            simulated->setAnimal(preset);
    }
}

void CorvidaModel::applyPressureLimits()
{
    const auto [upper, lower] = CorvidaSettings::pressureLimitPair(m_settings->getPressureLimit());
    if (upper <= 0 || lower <= 0)
        return; // not a pair we know: keep what the units have
    for (BaseCorvidaDevice *device : std::as_const(m_devices))
        device->setPressureLimits(upper, lower);
}
