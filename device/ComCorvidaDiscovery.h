#pragma once

#include "device/SerialPortList.h"
#include "toolkit/ConnectionHelper.h"

#include <QObject>
#include <QStringList>

class QTimer;

// Watches the computer's serial ports and announces every port that looks like a measuring unit,
// once per port for the life of the discovery: a unit that is unplugged and plugged back in keeps
// its device object, which reconnects by itself.
class ComCorvidaDiscovery : public QObject
{
    Q_OBJECT
public:
    explicit ComCorvidaDiscovery(QObject *parent = nullptr);

    // Where the port list comes from (the system's ports unless a test hands in its own).
    void setPortListSource(SerialPortList::Source source);
    QStringList knownPorts() const { return m_knownPorts; }
    bool isRunning() const;

public slots:
    void start();
    void stop();
    void scan();

signals:
    void deviceFound(QString comport);

private:
    QTimer *m_pollTimer = nullptr;
    ConnectionHelper m_connections;
    QStringList m_knownPorts;
    SerialPortList::Source m_portList;
};
