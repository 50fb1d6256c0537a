#include "toolkit/FileUtilities.h"

#include <QFile>
#include <QSaveFile>

bool FileUtilities::writeAtomically(const QString &path, const QByteArray &data, QString *error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    if (file.write(data) != data.size()) {
        if (error)
            *error = file.errorString();
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    return true;
}

QString FileUtilities::keepAside(const QString &path, const QString &suffix)
{
    if (!QFile::exists(path))
        return {};
    const QString target = path + suffix;
    if (QFile::exists(target) && !QFile::remove(target))
        return {};
    return QFile::copy(path, target) ? target : QString();
}
