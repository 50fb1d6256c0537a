#include "toolkit/VLogger.h"

#include <QDateTime>
#include <QMutexLocker>
#include <cstdio>

namespace {
QMutex g_mutex;
QStringList g_recent;
QtMessageHandler g_previous = nullptr;
bool g_installed = false;
} // namespace

void VLogger::install()
{
    QMutexLocker lock(&g_mutex);
    if (g_installed)
        return;
    g_installed = true;
    g_previous = qInstallMessageHandler(&VLogger::handler);
}

QStringList VLogger::recentLines()
{
    QMutexLocker lock(&g_mutex);
    return g_recent;
}

void VLogger::clearRecent()
{
    QMutexLocker lock(&g_mutex);
    g_recent.clear();
}

void VLogger::handler(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QString stamped =
        QDateTime::currentDateTime().toString(QStringLiteral("HH:mm:ss.zzz ")) + message;
    QtMessageHandler previous;
    {
        QMutexLocker lock(&g_mutex);
        g_recent.append(stamped);
        if (g_recent.size() > recentCapacity())
            g_recent.remove(0, g_recent.size() - recentCapacity());
        previous = g_previous;
    }
    if (previous)
        previous(type, context, stamped);
    else
        fprintf(stderr, "%s\n", qPrintable(stamped));
}
