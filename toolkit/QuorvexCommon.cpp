#include "toolkit/QuorvexCommon.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <cmath>

QString QuorvexCommon::dateTimeFileString(const QDateTime &dateTime, bool withSeconds)
{
    const QDateTime dt = dateTime.isValid() ? dateTime : QDateTime::currentDateTime();
    return dt.toString(withSeconds ? QStringLiteral("yyyy-MM-dd_HH-mm-ss")
                                   : QStringLiteral("yyyy-MM-dd_HH-mm"));
}

QString QuorvexCommon::timeToText(double seconds)
{
    if (!std::isfinite(seconds))
        return QStringLiteral("-");
    const bool negative = seconds < 0;
    qint64 total = qint64(std::floor(std::fabs(seconds)));
    const qint64 h = total / 3600;
    const qint64 m = (total / 60) % 60;
    const qint64 s = total % 60;
    QString text = h > 0 ? QStringLiteral("%1:%2:%3")
                               .arg(h)
                               .arg(m, 2, 10, QLatin1Char('0'))
                               .arg(s, 2, 10, QLatin1Char('0'))
                         : QStringLiteral("%1:%2").arg(m).arg(s, 2, 10, QLatin1Char('0'));
    return negative ? QLatin1Char('-') + text : text;
}

bool QuorvexCommon::CreateDirIfNotExists(const QString &path)
{
    if (path.isEmpty())
        return false;
    QFileInfo info(path);
    if (info.isDir())
        return true;
    if (info.exists())
        return false; // a file stands where the folder should be
    return QDir().mkpath(path);
}

QString QuorvexCommon::userDataFolder()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    if (!folder.endsWith(QLatin1Char('/')))
        folder += QLatin1Char('/');
    return folder;
}

void QuorvexCommon::setApplicationIdentity()
{
    QCoreApplication::setApplicationName(QStringLiteral("Corvida"));
    QCoreApplication::setOrganizationName(QStringLiteral("Quorvex"));
    QCoreApplication::setApplicationVersion(QStringLiteral(CORVIDA_VERSION));
}
