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

bool SerialPortList::isBluetooth(const Entry &entry)
{
    return entry.description.contains(QLatin1String("Bluetooth"));
}

bool SerialPortList::describesUnit(const Entry &entry)
{
    return entry.description.contains(QLatin1String("STMicroelectronics")) ||
           entry.description.contains(QLatin1String("BRENVATORIX CORVIDA"));
}
