#include "toolkit/LanguageContext.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class TestLanguageContext : public QObject
{
    Q_OBJECT
private slots:
    void startupLanguageFromSettingsFile_data()
    {
        QTest::addColumn<QByteArray>("content"); // empty: no file
        QTest::addColumn<QString>("expected");
        const auto file = [](const QByteArray &inside) {
            return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<CorvidaSettings>\n    " + inside +
                   "\n</CorvidaSettings>\n";
        };
        const QString fallback = QStringLiteral("fallback");
        QTest::newRow("en_US") << file("<Language>en_US</Language>") << "en_US";
        QTest::newRow("ru_RU") << file("<Language>ru_RU</Language>") << "ru_RU";
        QTest::newRow("two letters") << file("<Language>en</Language>") << fallback;
        QTest::newRow("hyphen") << file("<Language>en-US</Language>") << fallback;
        QTest::newRow("no translation") << file("<Language>de_DE</Language>") << fallback;
        QTest::newRow("no language") << file("<ColorTheme>Dark</ColorTheme>") << fallback;
        QTest::newRow("unclosed") << file("<Language>ru_RU").chopped(20) << fallback;
        QTest::newRow("at the very start") << QByteArray("<Language>ru_RU</Language>") << fallback;
        QTest::newRow("first of two")
            << file("<Language>ru_RU</Language><Language>en_US</Language>") << "ru_RU";
        QTest::newRow("no file") << QByteArray() << fallback;
    }
    void startupLanguageFromSettingsFile()
    {
        QFETCH(QByteArray, content);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("Settings.xml"));
        QFile file(path);
        if (!content.isEmpty())
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        file.close();
        QTEST(LanguageContext::startupLanguage(path, QStringLiteral("fallback")), "expected");
    }

    void translatesIntoALanguageThatIsNotRunning()
    {
        LanguageContext *languages = LanguageContext::instance();
        QVERIFY(languages->setLanguage(QStringLiteral("en_US")));
        QCOMPARE(languages->translate("ru_RU", "Generic", "Cancel"), QStringLiteral("Отмена"));
        QCOMPARE(languages->translate("ru_RU", "Generic", "no such"), QStringLiteral("no such"));
        QVERIFY(languages->setLanguage(QStringLiteral("ru_RU")));
        QCOMPARE(QCoreApplication::translate("Generic", "Cancel"), QStringLiteral("Отмена"));
        QVERIFY(!languages->setLanguage(QStringLiteral("de_DE"))); // keeps the running one
        QCOMPARE(QCoreApplication::translate("Generic", "Cancel"), QStringLiteral("Отмена"));
        QVERIFY(languages->setLanguage(QStringLiteral("en_US"))); // the Russian translator goes
        QCOMPARE(QCoreApplication::translate("Generic", "Cancel"), QStringLiteral("Cancel"));
    }
};

QTEST_GUILESS_MAIN(TestLanguageContext)
#include "tst_languagecontext.moc"
