#include "toolkit/VersionChecker.h"

#include <QCoreApplication>
#include <QNetworkProxy>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>
#include <limits>
#include <memory>

// A loopback HTTP server giving every request the same answer; it keeps the request lines.
class LocalHttpServer : public QTcpServer
{
public:
    QList<QByteArray> requestLines;
    explicit LocalHttpServer(const QByteArray &body, const QByteArray &status = "200 OK")
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this, body, status] {
            QTcpSocket *socket = nextPendingConnection();
            auto request = std::make_shared<QByteArray>();
            connect(socket, &QTcpSocket::readyRead, socket, [=] {
                *request += socket->readAll();
                if (!request->contains("\r\n\r\n"))
                    return;
                requestLines.append(request->left(request->indexOf("\r\n")));
                socket->write("HTTP/1.1 " + status + "\r\nConnection: close\r\nContent-Length: " +
                              QByteArray::number(body.size()) + "\r\n\r\n" + body);
                socket->disconnectFromHost();
            });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        });
    }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1/v").arg(serverPort()); }
};

class TestVersionChecker : public QObject
{
    Q_OBJECT
    VersionChecker *checker = VersionChecker::instance();

private slots:
    void init()
    {
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy); // stay on this machine
        QCoreApplication::setApplicationName(QStringLiteral("Corvida"));
        checker->stopChecking();
        checker->setEndpoint(QString());
        checker->setCurrentVersion(QStringLiteral("1.2.3"));
    }

    void versionNumbers_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<qint64>("number");
        QTest::addColumn<QString>("zero4"); // empty: no round trip
        QTest::addColumn<bool>("newer");
        QTest::addColumn<QString>("than");
        QTest::newRow("1.2.3") << "1.2.3" << 100020003LL << "0001.0002.0003" << false << "1.2.3";
        QTest::newRow("1.10 after 1.9") << "1.10" << 10010LL << "0001.0010" << true << "1.9";
        QTest::newRow("year") << "2026.11" << 20260011LL << "2026.0011" << true << "2026.2";
        QTest::newRow("one part") << "7" << 7LL << "" << false << "10";
        QTest::newRow("four parts") << "2.0.0.15" << 2000000000015LL << "" << true << "1.99.99";
        QTest::newRow("spaces") << " 1.2 " << 10002LL << "" << true << "1.1";
    }
    void versionNumbers()
    {
        QFETCH(QString, version);
        QFETCH(QString, zero4);
        QFETCH(QString, than);
        QTEST(VersionChecker::versionToZero4Number(version), "number");
        QTEST(VersionChecker::isNewer(version, than), "newer");
        if (zero4.isEmpty())
            return;
        QCOMPARE(VersionChecker::versionToZero4String(version), zero4);
        QCOMPARE(VersionChecker::versionFromZero4String(zero4), version);
    }

    // Six parts need 10000^5 = 1e20, beyond 64 bits: the sum used to wrap around (undefined
    // behaviour) and a longer version could come out older.
    void longVersionsDoNotOverflowTheNumber_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("than");
        QTest::addColumn<bool>("newer");
        QTest::newRow("six parts after five") << "1.0.0.0.0.1"
                                              << "9.9.9.9.9" << true;
        QTest::newRow("six parts, last differs") << "1.2.3.4.5.7"
                                                 << "1.2.3.4.5.6" << true;
        QTest::newRow("six parts, first differs") << "2.0.0.0.0.0"
                                                  << "1.9999.9999.9999.9999.9999" << true;
        QTest::newRow("same six parts") << "1.2.3.4.5.6"
                                        << "1.2.3.4.5.6" << false;
        QTest::newRow("eight parts older") << "1.0.0.0.0.0.0.0"
                                           << "2.0.0.0.0.0.0.0" << false;
        QTest::newRow("a part of 10000 carries") << "1.10000"
                                                 << "2.0" << false;
        QTest::newRow("huge part") << "99999999999999999999.1"
                                   << "1.2" << false; // reads as 0
    }
    void longVersionsDoNotOverflowTheNumber()
    {
        QFETCH(QString, version);
        QFETCH(QString, than);
        QTEST(VersionChecker::isNewer(version, than), "newer");
        if (version.count(QLatin1Char('.')) >= 5)
            QCOMPARE(VersionChecker::versionToZero4Number(version),
                     std::numeric_limits<qint64>::max());
    }

    void synchronousCheckKeepsLastGoodAnswer()
    {
        LocalHttpServer server("{\"version\":\"1.10.0\",\"link\":\"http://x/dl\",\"valid\":true}");
        checker->setEndpoint(server.url());
        checker->setCurrentVersion(QStringLiteral("1.9.5"));
        const VersionInfo info = checker->findNewVersion(5000);
        QVERIFY(info.valid);
        QCOMPARE(info.version, QStringLiteral("1.10.0"));
        QVERIFY(!info.critical); // the reply does not say, so the update is not pressing
        QVERIFY(checker->newVersionAvailable());
        QCOMPARE(server.requestLines.size(), 1);
        QVERIFY(server.requestLines[0].startsWith("GET /v?app=Corvida&version=1.9.5&locale="));
        // A failed check keeps the last good answer.
        LocalHttpServer bad("gone", "404 Not Found");
        checker->setEndpoint(bad.url());
        QVERIFY(!checker->findNewVersion(5000).valid);
        QCOMPARE(bad.requestLines.size(), 1);
        QCOMPARE(checker->LastVersion().version, QStringLiteral("1.10.0"));
        QVERIFY(checker->newVersionAvailable());
    }

    void asynchronousCheckAgainstLocalServer()
    {
        LocalHttpServer server("{\"version\":\"1.2.3\",\"valid\":true}");
        checker->setEndpoint(server.url());
        QSignalSpy checked(checker, &VersionChecker::checked);
        checker->findNewVersionAsync();
        checker->findNewVersionAsync(); // still running: not asked twice
        QVERIFY(checked.wait(5000));
        QCOMPARE(server.requestLines.size(), 1);
        QCOMPARE(checked.first().first().value<VersionInfo>().version, QStringLiteral("1.2.3"));
        QVERIFY(!checker->newVersionAvailable()); // the running version itself is not new
    }

    void periodicCheckAsksAgain()
    {
        LocalHttpServer server("{\"version\":\"1.2.4\",\"valid\":true}");
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
};

QTEST_GUILESS_MAIN(TestVersionChecker)
#include "tst_versionchecker.moc"
