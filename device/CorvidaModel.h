#pragma once

#include "toolkit/ConnectionHelper.h"

#include <QList>
#include <QObject>
#include <QString>

class BaseCorvidaDevice;
class ComCorvidaDiscovery;
class CorvidaSettings;

// The application model: the data folder with its settings and records folder, and the set of
// measuring units, real and simulated. There is one per process, reachable through instance().
class CorvidaModel : public QObject
{
    Q_OBJECT
public:
    // Creates the data and records folders when missing, loads "Settings.xml" from the data
    // folder, starts looking for units and starts the simulated ones the settings ask for.
    explicit CorvidaModel(const QString &dataFolder, QObject *parent = nullptr);
    ~CorvidaModel() override;

    static CorvidaModel *instance();

    CorvidaSettings *settings() const { return m_settings; }
    QString rootFolder() const { return m_rootFolder; }
    QString recordsFolder() const { return m_recordsFolder; }
    QList<BaseCorvidaDevice *> devices() const { return m_devices; }
    ComCorvidaDiscovery *discovery() const { return m_discovery; }

    // Whether raw frames go into live records as well (the "SaveRawData" setting).
    static bool saveRawData();
    // How new records find their markers (the "DetectionMethod" setting). The model follows its
    // settings; the command-line tool, which has no model, sets it from its own.
    static QString detectionMethod();
    static void setDetectionMethod(const QString &method);

public slots:
    // Takes ownership of the device and reports its connection changes.
    void addDevice(BaseCorvidaDevice *device);
    // Keeps exactly `count` simulated units running. Extra ones are disconnected, never removed,
    // so turning them back on reuses the same objects.
    void applyVirtualDeviceCount(int count);
    // Makes every simulated unit play that animal, or the test signal for "".
    void applySimulatedAnimal(const QString &preset);

signals:
    void onOpenRecord(QString path);
    void onCorvadaConnected(QString id);
    void onCorvadaDisconnected(QString id);

private:
    void applyPressureLimits();

    CorvidaSettings *m_settings = nullptr;
    QString m_rootFolder;
    QString m_recordsFolder;
    ConnectionHelper m_connections;
    QList<BaseCorvidaDevice *> m_devices;
    ComCorvidaDiscovery *m_discovery = nullptr;

    static CorvidaModel *s_instance;
    static bool s_saveRawData;
    static QString s_detectionMethod;
};
