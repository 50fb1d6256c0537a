#include "toolkit/FileUtilities.h"

#include <QDebug>
#include <QFile>
#include <QSaveFile>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#endif

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
    return commitSaveFile(file, error);
}

bool FileUtilities::commitSaveFile(QSaveFile &file, QString *error)
{
    if (!file.flush() || file.error() != QFileDevice::NoError) {
        const QString why = file.errorString();
        qDebug().noquote() << "FILE: cannot write" << file.fileName() << "-" << why;
        if (error)
            *error = why;
        // The temporary file goes with the QSaveFile; the old file stays as it was.
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        const QString why = file.errorString();
        qDebug().noquote() << "FILE: cannot put" << file.fileName() << "into place -" << why;
        if (error)
            *error = why;
        return false;
    }
    return true;
}

namespace {
bool syncPath(const QString &path, bool folder)
{
#ifdef Q_OS_UNIX
    const int fd =
        ::open(QFile::encodeName(path).constData(), folder ? (O_RDONLY | O_DIRECTORY) : O_RDONLY);
    if (fd < 0) {
        qDebug().noquote() << "FILE: cannot open" << path << "to sync -" << strerror(errno);
        return false;
    }
    const bool ok = ::fsync(fd) == 0;
    if (!ok)
        qDebug().noquote() << "FILE: cannot sync" << path << "-" << strerror(errno);
    ::close(fd);
    return ok;
#else
    Q_UNUSED(path)
    Q_UNUSED(folder)
    return true;
#endif
}
} // namespace

bool FileUtilities::syncFile(const QString &path)
{
    return syncPath(path, false);
}

bool FileUtilities::syncFolder(const QString &folder)
{
    return syncPath(folder, true);
}

bool FileUtilities::renameNoReplace(const QString &from, const QString &to, QString *error)
{
#ifdef Q_OS_LINUX
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) ==
        0)
        return true;
    int why = errno;
    // Some file systems cannot rename without replacing; a hard link refuses an existing name
    // just as well.
    if (why == EINVAL || why == ENOSYS) {
        if (::link(source.constData(), target.constData()) == 0) {
            ::unlink(source.constData());
            return true;
        }
        why = errno;
    }
    if (error)
        *error = QString::fromLocal8Bit(strerror(why));
    return false;
#else
    if (QFile::rename(from, to))
        return true;
    if (error)
        *error = QFile::exists(to) ? QStringLiteral("the name is taken")
                                   : QStringLiteral("cannot rename");
    return false;
#endif
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
