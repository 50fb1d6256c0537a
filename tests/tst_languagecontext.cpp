#include "toolkit/LanguageContext.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class TestLanguageContext : public QObject
{
    Q_OBJECT
private slots:
    void bothLanguagesAreCompiledIn();
    void startupLanguageFromSettingsFile_data();
    void startupLanguageFromSettingsFile();
    void startupLanguageWithoutUsableFile();
    void translatesIntoALanguageThatIsNotRunning();
    void unknownLanguageKeepsTheRunningOne();
};

void TestLanguageContext::bothLanguagesAreCompiledIn()
{
    QCOMPARE(LanguageContext::availableLanguages(),
             (QStringList{QStringLiteral("en_US"), QStringLiteral("ru_RU")}));
    QVERIFY(LanguageContext::availableLanguages().contains(LanguageContext::systemLanguage()));
}

void TestLanguageContext::startupLanguageFromSettingsFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("expected");
    const QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<CorvidaSettings>\n    ";
    const QByteArray tail = "\n</CorvidaSettings>\n";
    const QString fallback = QStringLiteral("fallback");
    QTest::newRow("en_US") << head + "<Language>en_US</Language>" + tail << "en_US";
    QTest::newRow("ru_RU") << head + "<Language>ru_RU</Language>" + tail << "ru_RU";
    QTest::newRow("two letters") << head + "<Language>en</Language>" + tail << fallback;
    QTest::newRow("hyphen") << head + "<Language>en-US</Language>" + tail << fallback;
    QTest::newRow("no translation") << head + "<Language>de_DE</Language>" + tail << fallback;
    QTest::newRow("padded") << head + "<Language> en_US </Language>" + tail << fallback;
    QTest::newRow("empty") << head + "<Language></Language>" + tail << fallback;
    QTest::newRow("no language") << head + "<ColorTheme>Dark</ColorTheme>" + tail << fallback;
    QTest::newRow("unclosed") << head + "<Language>ru_RU" << fallback;
    QTest::newRow("at the very start") << QByteArray("<Language>ru_RU</Language>") << fallback;
    QTest::newRow("lower-case tag") << head + "<language>ru_RU</language>" + tail << fallback;
    QTest::newRow("first of two") << head + "<Language>ru_RU</Language><Language>en_US</Language>" +
                                         tail
                                  << "ru_RU";
    QTest::newRow("binary junk") << QByteArray("\xff\xfe\x00<Language>\x01", 14) << fallback;
}

void TestLanguageContext::startupLanguageFromSettingsFile()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Settings.xml"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    QCOMPARE(LanguageContext::startupLanguage(path, QStringLiteral("fallback")), expected);
}

void TestLanguageContext::startupLanguageWithoutUsableFile()
{
    QTemporaryDir dir;
    QCOMPARE(LanguageContext::startupLanguage(dir.filePath(QStringLiteral("Settings.xml")),
                                              QStringLiteral("ru_RU")),
             QStringLiteral("ru_RU"));
    // A folder where the file should be cannot be read as a file.
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("Settings.xml")));
    QCOMPARE(LanguageContext::startupLanguage(dir.filePath(QStringLiteral("Settings.xml")),
                                              QStringLiteral("en_US")),
             QStringLiteral("en_US"));
}

void TestLanguageContext::translatesIntoALanguageThatIsNotRunning()
{
    LanguageContext *languages = LanguageContext::instance();
    QVERIFY(languages->setLanguage(QStringLiteral("en_US")));
    QCOMPARE(QCoreApplication::translate("Generic", "Cancel"), QStringLiteral("Cancel"));
    QCOMPARE(languages->translate(QStringLiteral("ru_RU"), "Generic", "Cancel"),
             QStringLiteral("Отмена"));
    // Untranslated texts and unknown languages give the text back.
    QCOMPARE(languages->translate(QStringLiteral("ru_RU"), "Generic", "no such text"),
             QStringLiteral("no such text"));
    QCOMPARE(languages->translate(QStringLiteral("xx_XX"), "Generic", "Cancel"),
             QStringLiteral("Cancel"));

    QSignalSpy changed(languages, &LanguageContext::languageChanged);
    QVERIFY(languages->setLanguage(QStringLiteral("ru_RU")));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(QCoreApplication::translate("Generic", "Cancel"), QStringLiteral("Отмена"));
    QCOMPARE(languages->translate(QStringLiteral("en_US"), "Generic", "Cancel"),
             QStringLiteral("Cancel"));
    // Switching back removes the Russian translator again.
    QVERIFY(languages->setLanguage(QStringLiteral("en_US")));
    QCOMPARE(QCoreApplication::translate("Generic", "Cancel"), QStringLiteral("Cancel"));
}

void TestLanguageContext::unknownLanguageKeepsTheRunningOne()
{
    LanguageContext *languages = LanguageContext::instance();
    QVERIFY(languages->setLanguage(QStringLiteral("ru_RU")));
    QVERIFY(!languages->setLanguage(QStringLiteral("de_DE")));
    QCOMPARE(languages->currentLanguage(), QStringLiteral("ru_RU"));
    QCOMPARE(QCoreApplication::translate("Generic", "Cancel"), QStringLiteral("Отмена"));
}

QTEST_GUILESS_MAIN(TestLanguageContext)
#include "tst_languagecontext.moc"
