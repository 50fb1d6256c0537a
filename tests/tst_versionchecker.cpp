#include "toolkit/VersionChecker.h"

#include <QCoreApplication>
#include <QNetworkProxy>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrlQuery>
#include <QtTest>

// A one-answer HTTP server on the loopback interface: it remembers each request line and
// answers every request with the same status and body.
class LocalHttpServer : public QObject
{
    Q_OBJECT
public:
    explicit LocalHttpServer(QByteArray body, QByteArray status = "200 OK")
        : m_body(std::move(body))
        , m_status(std::move(status))
    {
        connect(&m_server, &QTcpServer::newConnection, this, &LocalHttpServer::accept);
        m_server.listen(QHostAddress::LocalHost);
    }
    QString url() const
    {
        return QStringLiteral("http://127.0.0.1:%1/corvida/version").arg(m_server.serverPort());
    }
    QList<QByteArray> requestLines;

private slots:
    void accept()
    {
        while (QTcpSocket *socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                m_pending[socket] += socket->readAll();
                if (!m_pending[socket].contains("\r\n\r\n"))
                    return;
                requestLines.append(m_pending[socket].left(m_pending[socket].indexOf("\r\n")));
                socket->write("HTTP/1.1 " + m_status +
                              "\r\nContent-Type: application/json\r\n"
                              "Connection: close\r\nContent-Length: " +
                              QByteArray::number(m_body.size()) + "\r\n\r\n" + m_body);
                socket->disconnectFromHost();
            });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    }

private:
    QTcpServer m_server;
    QByteArray m_body;
    QByteArray m_status;
    QHash<QTcpSocket *, QByteArray> m_pending;
};

class TestVersionChecker : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void zero4Number_data();
    void zero4Number();
    void newerComparesByNumber_data();
    void newerComparesByNumber();
    void zero4StringRoundTrip_data();
    void zero4StringRoundTrip();
    void replyParsing_data();
    void replyParsing();
    void queryCarriesItsKeys();
    void noEndpointNoRequest();
    void synchronousCheckAgainstLocalServer();
    void asynchronousCheckAgainstLocalServer();
    void failedCheckKeepsLastGoodAnswer();
    void periodicCheckAsksAgain();
};

void TestVersionChecker::initTestCase()
{
    // Everything stays on this machine, whatever proxy the environment names.
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
}

void TestVersionChecker::init()
{
    QCoreApplication::setApplicationName(QStringLiteral("Corvida"));
    VersionChecker *checker = VersionChecker::instance();
    checker->stopChecking();
    checker->setEndpoint(QString());
    checker->setCurrentVersion(QStringLiteral("1.2.3"));
}

void TestVersionChecker::zero4Number_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<qint64>("number");
    QTest::newRow("three parts") << "1.2.3" << qint64(100020003);
    QTest::newRow("two parts") << "1.10" << qint64(10010);
    QTest::newRow("one part") << "7" << qint64(7);
    QTest::newRow("four parts") << "2.0.0.15" << qint64(2000000000015);
    QTest::newRow("big part") << "1.9999" << qint64(19999);
    QTest::newRow("spaces") << " 1.2 " << qint64(10002);
}

void TestVersionChecker::zero4Number()
{
    QFETCH(QString, version);
    QFETCH(qint64, number);
    QCOMPARE(VersionChecker::versionToZero4Number(version), number);
}

void TestVersionChecker::newerComparesByNumber_data()
{
    QTest::addColumn<QString>("candidate");
    QTest::addColumn<QString>("current");
    QTest::addColumn<bool>("newer");
    QTest::newRow("1.10 after 1.9") << "1.10"
                                    << "1.9" << true;
    QTest::newRow("1.9 before 1.10") << "1.9"
                                     << "1.10" << false;
    QTest::newRow("same") << "1.2.3"
                          << "1.2.3" << false;
    QTest::newRow("patch") << "1.2.4"
                           << "1.2.3" << true;
    QTest::newRow("major wins over minor") << "2.0.0"
                                           << "1.99.99" << true;
}

void TestVersionChecker::newerComparesByNumber()
{
    QFETCH(QString, candidate);
    QFETCH(QString, current);
    QFETCH(bool, newer);
    QCOMPARE(VersionChecker::isNewer(candidate, current), newer);
}

void TestVersionChecker::zero4StringRoundTrip_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("zero4");
    QTest::newRow("1.2.3") << "1.2.3"
                           << "0001.0002.0003";
    QTest::newRow("1.10") << "1.10"
                          << "0001.0010";
    QTest::newRow("2026.11") << "2026.11"
                             << "2026.0011";
}

void TestVersionChecker::zero4StringRoundTrip()
{
    QFETCH(QString, version);
    QFETCH(QString, zero4);
    QCOMPARE(VersionChecker::versionToZero4String(version), zero4);
    QCOMPARE(VersionChecker::versionFromZero4String(zero4), version);
}

void TestVersionChecker::replyParsing_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<bool>("critical");
    QTest::addColumn<QString>("version");
    QTest::newRow("full") << QByteArray(R"({"version":"1.3.0","link":"http://x/dl","changelog":"c",
        "critical":true,"info":"i","date":"2026-11-01","valid":true})")
                          << true << true << "1.3.0";
    QTest::newRow("without critical")
        << QByteArray(R"({"version":"1.3.0","valid":true})") << true << false << "1.3.0";
    QTest::newRow("without valid")
        << QByteArray(R"({"version":"1.3.0"})") << false << false << "1.3.0";
    QTest::newRow("critical as text")
        << QByteArray(R"({"version":"1.3.0","valid":true,"critical":"true"})") << true << false
        << "1.3.0";
    QTest::newRow("array") << QByteArray(R"([{"version":"1.3.0"}])") << false << false << "";
    QTest::newRow("not JSON") << QByteArray("<html>502</html>") << false << false << "";
    QTest::newRow("empty") << QByteArray() << false << false << "";
}

void TestVersionChecker::replyParsing()
{
    QFETCH(QByteArray, reply);
    QFETCH(bool, valid);
    QFETCH(bool, critical);
    QFETCH(QString, version);
    const VersionInfo info = VersionChecker::parseVersionInfo(reply);
    QCOMPARE(info.valid, valid);
    QCOMPARE(info.critical, critical);
    QCOMPARE(info.version, version);
}

void TestVersionChecker::queryCarriesItsKeys()
{
    VersionChecker *checker = VersionChecker::instance();
    checker->setEndpoint(QStringLiteral("https://example.invalid/check"));
    checker->setLocale(QStringLiteral("ru_RU"));
    const QUrl url = checker->fetchUrl();
    QCOMPARE(url.host(), QStringLiteral("example.invalid"));
    QCOMPARE(url.path(), QStringLiteral("/check"));
    const QUrlQuery query(url);
    QCOMPARE(query.queryItemValue(QStringLiteral("app")), QStringLiteral("Corvida"));
    QCOMPARE(query.queryItemValue(QStringLiteral("version")), QStringLiteral("1.2.3"));
    QCOMPARE(query.queryItemValue(QStringLiteral("locale")), QStringLiteral("ru_RU"));
    for (const char *key : {"platform", "os", "osversion"})
        QVERIFY2(query.hasQueryItem(QLatin1String(key)), key);
}

void TestVersionChecker::noEndpointNoRequest()
{
    LocalHttpServer server(R"({"version":"9.0","valid":true})");
    VersionChecker *checker = VersionChecker::instance();
    QVERIFY(checker->fetchUrl().isEmpty());
    QSignalSpy checked(checker, &VersionChecker::checked);
    QVERIFY(!checker->findNewVersion(2000).valid);
    checker->findNewVersionAsync();
    checker->StartChecking(50);
    QTest::qWait(200);
    QCOMPARE(checked.size(), 0);
    QVERIFY(server.requestLines.isEmpty());
    QVERIFY(!checker->newVersionAvailable());
}

void TestVersionChecker::synchronousCheckAgainstLocalServer()
{
    LocalHttpServer server(R"({"version":"1.10.0","link":"http://x/dl","valid":true})");
    VersionChecker *checker = VersionChecker::instance();
    checker->setEndpoint(server.url());
    checker->setCurrentVersion(QStringLiteral("1.9.5"));
    const VersionInfo info = checker->findNewVersion(5000);
    QVERIFY(info.valid);
    QCOMPARE(info.version, QStringLiteral("1.10.0"));
    QVERIFY(!info.critical);
    QVERIFY(checker->newVersionAvailable());
    QCOMPARE(server.requestLines.size(), 1);
    const QByteArray line = server.requestLines.first();
    QVERIFY(line.startsWith("GET /corvida/version?app=Corvida&version=1.9.5&locale="));
}

void TestVersionChecker::asynchronousCheckAgainstLocalServer()
{
    LocalHttpServer server(R"({"version":"1.2.3","valid":true})");
    VersionChecker *checker = VersionChecker::instance();
    checker->setEndpoint(server.url());
    QSignalSpy checked(checker, &VersionChecker::checked);
    checker->findNewVersionAsync();
    checker->findNewVersionAsync(); // still running: not asked twice
    QVERIFY(checked.wait(5000));
    QCOMPARE(server.requestLines.size(), 1);
    QCOMPARE(checked.first().first().value<VersionInfo>().version, QStringLiteral("1.2.3"));
    // The running version itself is no new version.
    QVERIFY(!checker->newVersionAvailable());
}

void TestVersionChecker::failedCheckKeepsLastGoodAnswer()
{
    LocalHttpServer good(R"({"version":"2.0.0","valid":true})");
    VersionChecker *checker = VersionChecker::instance();
    checker->setEndpoint(good.url());
    QVERIFY(checker->findNewVersion(5000).valid);
    LocalHttpServer bad("gone", "404 Not Found");
    checker->setEndpoint(bad.url());
    QVERIFY(!checker->findNewVersion(5000).valid);
    QCOMPARE(bad.requestLines.size(), 1);
    QCOMPARE(checker->LastVersion().version, QStringLiteral("2.0.0"));
    QVERIFY(checker->newVersionAvailable());
}

void TestVersionChecker::periodicCheckAsksAgain()
{
    LocalHttpServer server(R"({"version":"1.2.4","valid":true})");
    VersionChecker *checker = VersionChecker::instance();
    checker->setEndpoint(server.url());
    QSignalSpy checked(checker, &VersionChecker::checked);
    checker->StartChecking(100);
    // The first check starts at once, the next ones on the timer.
    QTRY_VERIFY_WITH_TIMEOUT(checked.size() >= 3, 5000);
    checker->stopChecking();
    QTest::qWait(50); // a request already under way may still answer
    const int settled = checked.size();
    QTest::qWait(300);
    QCOMPARE(checked.size(), settled);
    QCOMPARE(server.requestLines.size(), settled);
    QVERIFY(checker->newVersionAvailable());
}

QTEST_GUILESS_MAIN(TestVersionChecker)
#include "tst_versionchecker.moc"
