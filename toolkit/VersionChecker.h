#pragma once

#include "toolkit/VersionInfo.h"

#include <QObject>
#include <QPointer>
#include <QUrl>

class QNetworkAccessManager;
class QNetworkReply;
class QTimer;

// Asks the product's version endpoint whether a newer release exists. The endpoint is set by
// the program (a build option); without one no request is ever made and no result is shown.
class VersionChecker : public QObject
{
    Q_OBJECT
public:
    static VersionChecker *instance();

    void setEndpoint(const QString &endpoint) { m_endpoint = endpoint; }
    QString endpoint() const { return m_endpoint; }
    // The running version the query reports and replies are compared with.
    void setCurrentVersion(const QString &version) { m_currentVersion = version; }
    QString currentVersion() const { return m_currentVersion; }
    void setLocale(const QString &locale) { m_locale = locale; }

    // The endpoint with the query keys app, version, locale, platform, os and osversion; an
    // empty URL without an endpoint.
    QUrl fetchUrl() const;

    static VersionInfo parseVersionInfo(const QByteArray &reply);
    // "1.2.3" -> 100020003: each part weighs 10000 times the one after it. A version too long for
    // 64 bits (six parts and more) gives the largest number (the smallest, when negative).
    static qint64 versionToZero4Number(const QString &version);
    // "1.2.3" -> "0001.0002.0003", which sorts as text the way the versions compare.
    static QString versionToZero4String(const QString &version);
    static QString versionFromZero4String(const QString &zero4);
    // Whether the candidate's number is larger, compared exactly also beyond 64 bits.
    static bool isNewer(const QString &candidate, const QString &current);

    // Waits for the reply in a local event loop, at most timeoutMs.
    VersionInfo findNewVersion(int timeoutMs = 10000);
    // Starts a request; checked() reports its result. A request still running is not repeated.
    void findNewVersionAsync();
    // Checks now and then every intervalMs.
    void StartChecking(int intervalMs = 6 * 60 * 60 * 1000);
    void stopChecking();

    VersionInfo LastVersion() const { return m_last; }
    // A valid reply whose version is newer than the running one.
    bool newVersionAvailable() const;

signals:
    void checked(VersionInfo info);

private:
    explicit VersionChecker(QObject *parent = nullptr);
    QNetworkReply *startRequest();
    VersionInfo finish(QNetworkReply *reply);

    QString m_endpoint;
    QString m_currentVersion;
    QString m_locale;
    VersionInfo m_last;
    QNetworkAccessManager *m_network = nullptr;
    QTimer *m_timer = nullptr;
    QPointer<QNetworkReply> m_pending;
};

Q_DECLARE_METATYPE(VersionInfo)
