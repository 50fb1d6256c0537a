#include "toolkit/VersionChecker.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSysInfo>
#include <QTimer>
#include <QUrlQuery>
#include <QtNumeric>
#include <algorithm>
#include <limits>

VersionChecker::VersionChecker(QObject *parent)
    : QObject(parent)
    , m_currentVersion(QCoreApplication::applicationVersion())
    , m_locale(QLocale().name())
{
    qRegisterMetaType<VersionInfo>();
}

VersionChecker *VersionChecker::instance()
{
    static VersionChecker *checker = new VersionChecker(QCoreApplication::instance());
    return checker;
}

QUrl VersionChecker::fetchUrl() const
{
    if (m_endpoint.isEmpty())
        return {};
    QUrl url(m_endpoint);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("app"), QCoreApplication::applicationName());
    query.addQueryItem(QStringLiteral("version"), m_currentVersion);
    query.addQueryItem(QStringLiteral("locale"), m_locale);
    query.addQueryItem(QStringLiteral("platform"), QSysInfo::currentCpuArchitecture());
    query.addQueryItem(QStringLiteral("os"), QSysInfo::productType());
    // The same text the about panel shows (AppHelper::OSVersion).
    query.addQueryItem(QStringLiteral("osversion"), QSysInfo::prettyProductName());
    url.setQuery(query);
    return url;
}

VersionInfo VersionChecker::parseVersionInfo(const QByteArray &reply)
{
    VersionInfo info;
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(reply, &error);
    if (error.error != QJsonParseError::NoError || !doc.isObject())
        return info;
    const QJsonObject o = doc.object();
    info.version = o.value(QLatin1String("version")).toString();
    info.link = o.value(QLatin1String("link")).toString();
    info.changelog = o.value(QLatin1String("changelog")).toString();
    info.info = o.value(QLatin1String("info")).toString();
    info.date = o.value(QLatin1String("date")).toString();
    info.critical = o.value(QLatin1String("critical")).toBool(false);
    info.valid = o.value(QLatin1String("valid")).toBool(false);
    return info;
}

namespace {
constexpr qint64 kPartWeight = 10000;
// A part beyond this is nonsense; comparing versions holds parts to it, which keeps every sum of
// digits and carries far from overflow.
constexpr qint64 kLargestPart = 1000000000000LL;

QList<qint64> versionParts(const QString &version)
{
    QList<qint64> parts;
    for (const QString &part : version.trimmed().split(QLatin1Char('.')))
        parts.append(part.toLongLong());
    return parts;
}

// The weighted sum of the parts as base-10000 digits, lowest first, `size` of them: every digit
// but the top one lies in 0..9999, so two such lists of one size compare digit by digit from the
// top, however many parts the versions have.
QList<qint64> zero4Digits(const QList<qint64> &parts, qsizetype size)
{
    QList<qint64> digits(size, 0);
    for (qsizetype i = 0; i < parts.size(); ++i)
        digits[i] = std::clamp(parts[parts.size() - 1 - i], -kLargestPart, kLargestPart);
    for (qsizetype i = 0; i + 1 < size; ++i) {
        qint64 carry = digits[i] / kPartWeight;
        digits[i] %= kPartWeight;
        if (digits[i] < 0) {
            digits[i] += kPartWeight;
            --carry;
        }
        digits[i + 1] += carry;
    }
    return digits;
}
} // namespace

qint64 VersionChecker::versionToZero4Number(const QString &version)
{
    // Six or more parts no longer fit in 64 bits: the number then stays at the end of the range
    // (isNewer still compares such versions exactly).
    qint64 number = 0;
    for (const qint64 part : versionParts(version)) {
        qint64 shifted = 0;
        if (qMulOverflow(number, kPartWeight, &shifted))
            return number < 0 ? std::numeric_limits<qint64>::min()
                              : std::numeric_limits<qint64>::max();
        if (qAddOverflow(shifted, part, &number))
            return part < 0 ? std::numeric_limits<qint64>::min()
                            : std::numeric_limits<qint64>::max();
    }
    return number;
}

QString VersionChecker::versionToZero4String(const QString &version)
{
    QStringList parts;
    for (const QString &part : version.trimmed().split(QLatin1Char('.')))
        parts.append(QStringLiteral("%1").arg(part.toLongLong(), 4, 10, QLatin1Char('0')));
    return parts.join(QLatin1Char('.'));
}

QString VersionChecker::versionFromZero4String(const QString &zero4)
{
    QStringList parts;
    for (const QString &part : zero4.trimmed().split(QLatin1Char('.')))
        parts.append(QString::number(part.toLongLong()));
    return parts.join(QLatin1Char('.'));
}

bool VersionChecker::isNewer(const QString &candidate, const QString &current)
{
    const QList<qint64> a = versionParts(candidate);
    const QList<qint64> b = versionParts(current);
    // Room for the carries of parts as large as kLargestPart.
    const qsizetype size = std::max(a.size(), b.size()) + 4;
    const QList<qint64> x = zero4Digits(a, size);
    const QList<qint64> y = zero4Digits(b, size);
    for (qsizetype i = size - 1; i >= 0; --i) {
        if (x[i] != y[i])
            return x[i] > y[i];
    }
    return false;
}

bool VersionChecker::newVersionAvailable() const
{
    return m_last.valid && !m_last.version.isEmpty() && isNewer(m_last.version, m_currentVersion);
}

QNetworkReply *VersionChecker::startRequest()
{
    const QUrl url = fetchUrl();
    if (!url.isValid())
        return nullptr;
    if (!m_network)
        m_network = new QNetworkAccessManager(this);
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    return m_network->get(request);
}

VersionInfo VersionChecker::finish(QNetworkReply *reply)
{
    VersionInfo info;
    if (reply->error() == QNetworkReply::NoError)
        info = parseVersionInfo(reply->readAll());
    else
        qDebug().noquote() << "VERSION CHECK failed:" << reply->errorString();
    reply->deleteLater();
    // A failed check keeps the last good answer rather than hiding a known new version.
    if (info.valid)
        m_last = info;
    emit checked(info);
    return info;
}

VersionInfo VersionChecker::findNewVersion(int timeoutMs)
{
    QNetworkReply *reply = startRequest();
    if (!reply)
        return {};
    QEventLoop loop;
    QTimer timeout;
    timeout.setSingleShot(true);
    connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
    timeout.start(timeoutMs);
    loop.exec();
    if (!reply->isFinished())
        reply->abort();
    return finish(reply);
}

void VersionChecker::findNewVersionAsync()
{
    if (m_pending)
        return;
    QNetworkReply *reply = startRequest();
    if (!reply)
        return;
    m_pending = reply;
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        m_pending = nullptr;
        finish(reply);
    });
}

void VersionChecker::StartChecking(int intervalMs)
{
    if (m_endpoint.isEmpty())
        return;
    if (!m_timer) {
        m_timer = new QTimer(this);
        connect(m_timer, &QTimer::timeout, this, &VersionChecker::findNewVersionAsync);
    }
    m_timer->start(intervalMs);
    findNewVersionAsync();
}

void VersionChecker::stopChecking()
{
    if (m_timer)
        m_timer->stop();
}
