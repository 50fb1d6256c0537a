#include "support/XlsxArchive.h"

#include <QProcess>

namespace XlsxArchive {
QByteArray member(const QString &path, const QString &name, QString *error)
{
    QProcess p;
    p.start(
        QStringLiteral("/usr/bin/python3"),
        {QStringLiteral("-c"),
         QStringLiteral("import sys, zipfile; "
                        "sys.stdout.buffer.write(zipfile.ZipFile(sys.argv[1]).read(sys.argv[2]))"),
         path, name});
    if (!p.waitForFinished(60000) || p.exitCode() != 0) {
        if (error)
            *error = QString::fromUtf8(p.readAllStandardError());
        return {};
    }
    return p.readAllStandardOutput();
}
} // namespace XlsxArchive
