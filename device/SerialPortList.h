#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>

// Where the serial ports of the system are listed from. Code that searches for a unit takes a
// Source, so tests can hand in a made-up list instead of the machine's real ports.
class SerialPortList
{
public:
    struct Entry {
        QString portName;
        QString description;
        QString manufacturer;
    };
    using Source = std::function<QList<Entry>()>;

    // The system's ports, in the order the system lists them.
    static Source system();
    // A fixed list, for tests and tools.
    static Source fixed(const QList<Entry> &entries);
    // Lists through `full` only when `fingerprint` differs from the one of the last listing,
    // and on every `fullEvery`-th call whatever it says; otherwise the last list comes back.
    // An empty fingerprint tells nothing: then every call lists.
    static Source whenChanged(Source full, std::function<QByteArray()> fingerprint, int fullEvery);
    // What changes when a serial device is plugged in or out: the tty device names and the
    // modification time of the device folder. Empty where the system has neither.
    static QByteArray systemFingerprint();

    // Bluetooth serial links are never units, whatever else their description says.
    static bool isBluetooth(const Entry &entry);
    // A unit shows up with its USB chip maker's name, or with our own product name.
    static bool describesUnit(const Entry &entry);
};
