#pragma once

// What the file-reading fuzz targets share: a folder of their own, emptied before each input,
// so that every input is read exactly as the program reads files, and a quiet log.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <QtGlobal>
#include <cstddef>
#include <cstdint>

namespace FuzzFiles {

inline void silent(QtMsgType, const QMessageLogContext &, const QString &) {}

// The program logs every damaged file it meets; thousands of inputs a second would drown the
// fuzzer's own report.
inline void silenceLog()
{
    qInstallMessageHandler(silent);
}

// An empty folder for this input (files kept aside from the previous input are removed). In
// memory where the system offers it: every save syncs to disk, which on a real disk costs more
// than the rest of an input together.
inline QString freshFolder()
{
    static QTemporaryDir dir(QDir(QStringLiteral("/dev/shm")).exists()
                                 ? QStringLiteral("/dev/shm/corvida-fuzz-XXXXXX")
                                 : QDir::tempPath() + QStringLiteral("/corvida-fuzz-XXXXXX"));
    QDir folder(dir.path());
    folder.removeRecursively();
    QDir().mkpath(dir.path());
    return dir.path();
}

inline bool writeInput(const QString &path, const uint8_t *data, size_t size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(reinterpret_cast<const char *>(data), qint64(size)) == qint64(size);
}

} // namespace FuzzFiles
