#include "device/SerialPortList.h"

#include <QSerialPortInfo>

SerialPortList::Source SerialPortList::system()
{
    return [] {
        QList<Entry> entries;
        const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
        entries.reserve(ports.size());
        for (const QSerialPortInfo &info : ports)
            entries.append({info.portName(), info.description(), info.manufacturer()});
        return entries;
    };
}

SerialPortList::Source SerialPortList::fixed(const QList<Entry> &entries)
{
    return [entries] { return entries; };
}
