#include "device/SerialPortList.h"

#include <QSerialPortInfo>

#include <algorithm>
#include <memory>

#ifdef Q_OS_LINUX
#include <dirent.h>
#include <sys/stat.h>
#endif

SerialPortList::Source SerialPortList::system()
{
    // A full listing reads the properties of every tty device on the machine (dozens of files)
    // and discovery asks every two seconds: only list again when something was plugged in or
    // out, and once a minute anyway.
    return whenChanged(
        [] {
            QList<Entry> entries;
            const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
            entries.reserve(ports.size());
            for (const QSerialPortInfo &info : ports)
                entries.append({info.portName(), info.description(), info.manufacturer()});
            return entries;
        },
        &SerialPortList::systemFingerprint, 30);
}

SerialPortList::Source
SerialPortList::whenChanged(Source full, std::function<QByteArray()> fingerprint, int fullEvery)
{
    struct State {
        QByteArray fingerprint;
        QList<Entry> entries;
        int callsSinceListing = 0;
        bool listed = false;
    };
    auto state = std::make_shared<State>();
    return [state, full = std::move(full), fingerprint = std::move(fingerprint), fullEvery] {
        const QByteArray now = fingerprint ? fingerprint() : QByteArray();
        const bool due = ++state->callsSinceListing >= fullEvery;
        if (!state->listed || due || now.isEmpty() || now != state->fingerprint) {
            state->entries = full ? full() : QList<Entry>();
            state->fingerprint = now;
            state->callsSinceListing = 0;
            state->listed = true;
        }
        return state->entries;
    };
}

QByteArray SerialPortList::systemFingerprint()
{
    QByteArray print;
#ifdef Q_OS_LINUX
    // A device node made or removed changes the folder's time, even when a unit comes back
    // under the name it had; the tty class lists every serial port the kernel knows.
    struct stat dev {
    };
    if (::stat("/dev", &dev) == 0)
        print += QByteArray::number(qint64(dev.st_mtim.tv_sec)) + '.' +
                 QByteArray::number(qint64(dev.st_mtim.tv_nsec)) + '\n';
    if (DIR *dir = ::opendir("/sys/class/tty")) {
        QList<QByteArray> names;
        while (const dirent *entry = ::readdir(dir))
            names.append(QByteArray(entry->d_name));
        ::closedir(dir);
        // The order of a directory listing is the file system's own: sort to compare.
        std::sort(names.begin(), names.end());
        print += names.join(' ');
    }
#endif
    return print;
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
