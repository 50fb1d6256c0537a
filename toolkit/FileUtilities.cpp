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
    // QFile::copy never replaces a file, so a name taken meanwhile only moves on to the next.
    for (int n = 1; n < 10000; ++n) {
        const QString target =
            n == 1 ? path + suffix : path + QLatin1Char('.') + QString::number(n) + suffix;
        if (QFile::exists(target))
            continue;
        if (QFile::copy(path, target))
            return target;
        if (!QFile::exists(target))
            return {}; // not a name clash: the folder or the file refuses
    }
    return {};
}
