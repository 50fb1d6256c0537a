#include "ui/FileBrowser.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

#ifdef CORVIDA_HAS_DBUS
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#endif
#ifdef Q_OS_WIN
#include <QProcess>
#endif

void FileBrowser::showInFolder(const QString &filePath)
{
    const QFileInfo info(filePath);
    const QString folder = info.absolutePath();
#if defined(Q_OS_WIN)
    if (QProcess::startDetached(
            QStringLiteral("explorer.exe"),
            {QStringLiteral("/select,"), QDir::toNativeSeparators(info.absoluteFilePath())}))
        return;
#elif defined(CORVIDA_HAS_DBUS)
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.FileManager1"),
            QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
        call << QStringList{QUrl::fromLocalFile(info.absoluteFilePath()).toString()} << QString();
        // Without a file manager that offers the interface the call fails quickly; a slow one
        // must not freeze the window, so the answer is awaited in the event loop.
        auto *watcher =
            new QDBusPendingCallWatcher(bus.asyncCall(call, 5000), QCoreApplication::instance());
        QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, folder] {
            const QDBusPendingReply<> reply = *watcher;
            if (reply.isError()) {
                qDebug().noquote()
                    << "FILES: no file manager to show a file in:" << reply.error().message();
                openFolder(folder);
            }
            watcher->deleteLater();
        });
        return;
    }
#endif
    openFolder(folder);
}

bool FileBrowser::openFolder(const QString &folder)
{
    const bool ok = QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
    if (!ok)
        qDebug().noquote() << "FILES: cannot open the folder" << folder;
    return ok;
}

bool FileBrowser::openFile(const QString &filePath)
{
    const bool ok = QDesktopServices::openUrl(QUrl::fromLocalFile(filePath));
    if (!ok)
        qDebug().noquote() << "FILES: cannot open" << filePath;
    return ok;
}
