#include "device/ComCorvidaDiscovery.h"

#include <QDebug>
#include <QTimer>

ComCorvidaDiscovery::ComCorvidaDiscovery(QObject *parent)
    : QObject(parent)
    , m_portList(SerialPortList::system())
{}

void ComCorvidaDiscovery::setPortListSource(SerialPortList::Source source)
{
    m_portList = source ? std::move(source) : SerialPortList::system();
}

bool ComCorvidaDiscovery::isRunning() const
{
    return m_pollTimer && m_pollTimer->isActive();
}

void ComCorvidaDiscovery::start()
{
    if (!m_pollTimer) {
        m_pollTimer = new QTimer(this);
        m_connections << connect(m_pollTimer, &QTimer::timeout, this, &ComCorvidaDiscovery::scan);
    }
    m_pollTimer->start(2000);
    scan();
}

void ComCorvidaDiscovery::stop()
{
    if (m_pollTimer)
        m_pollTimer->stop();
}

void ComCorvidaDiscovery::scan()
{
    const QList<SerialPortList::Entry> ports = m_portList();
    for (const SerialPortList::Entry &entry : ports) {
        if (SerialPortList::isBluetooth(entry) || m_knownPorts.contains(entry.portName))
            continue;
        if (SerialPortList::describesUnit(entry)) {
            m_knownPorts << entry.portName;
            qDebug() << "FOUND PORT" << entry.portName << entry.description;
            emit deviceFound(entry.portName);
        }
    }
}
