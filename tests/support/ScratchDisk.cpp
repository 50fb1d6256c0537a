#include "support/ScratchDisk.h"

#include <QFile>
#include <QProcess>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {
bool run(const QStringList &arguments, QString *output = nullptr)
{
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(arguments.first(), arguments.mid(1));
    const bool ok =
        p.waitForFinished(20000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    if (output)
        *output = QString::fromLocal8Bit(p.readAll()).trimmed();
    return ok;
}
} // namespace

ScratchDisk::ScratchDisk(qint64 bytes)
{
    if (::geteuid() != 0) {
        m_whyNot = QStringLiteral("a full or read-only disk needs root to mount a tmpfs");
        return;
    }
    QString output;
    m_mounted = run({QStringLiteral("mount"), QStringLiteral("-t"), QStringLiteral("tmpfs"),
                     QStringLiteral("-o"), QStringLiteral("size=%1").arg(bytes),
                     QStringLiteral("tmpfs"), m_dir.path()},
                    &output);
    if (!m_mounted)
        m_whyNot = QStringLiteral("cannot mount a tmpfs: ") + output;
}

ScratchDisk::~ScratchDisk()
{
    if (m_mounted)
        run({QStringLiteral("umount"), QStringLiteral("-l"), m_dir.path()});
}

qint64 ScratchDisk::bytesFree() const
{
    struct statvfs s = {};
    if (::statvfs(QFile::encodeName(m_dir.path()).constData(), &s) != 0)
        return -1;
    return qint64(s.f_bavail) * qint64(s.f_frsize);
}

bool ScratchDisk::fill(qint64 leave)
{
    QFile filler(m_dir.filePath(QStringLiteral("filler")));
    if (!filler.open(QIODevice::WriteOnly | QIODevice::Append))
        return false;
    const QByteArray page(4096, 'x');
    while (bytesFree() > leave) {
        if (filler.write(page) != page.size() || !filler.flush())
            break;
    }
    filler.close();
    return bytesFree() <= leave;
}

bool ScratchDisk::remountReadOnly()
{
    return m_mounted && run({QStringLiteral("mount"), QStringLiteral("-o"),
                             QStringLiteral("remount,ro"), m_dir.path()});
}
