#include "app/AppStartup.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/LanguageContext.h"
#include "toolkit/widgets/StyleHelper.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

class TestAppStartup : public QObject
{
    Q_OBJECT
    const QString m_startDir = QDir::currentPath();
    QTemporaryDir m_dir;
    void writeSettings(const QString &path, const QByteArray &inside)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<CorvidaSettings>\n" + inside +
                   "\n</CorvidaSettings>\n");
    }

private slots:
    void init()
    {
        QStandardPaths::setTestModeEnabled(true);
        AppStartup::setupStyles();
        QFile::remove(m_dir.filePath(QStringLiteral("Settings.xml")));
    }
    void cleanup() { QVERIFY(QDir::setCurrent(m_startDir)); }

    void languageIsReadBeforeTheSettingsExist_data()
    {
        QTest::addColumn<QByteArray>("tag");
        QTest::addColumn<QString>("expected");
        const QString system = LanguageContext::systemLanguage();
        QTest::newRow("ru_RU") << QByteArray("<Language>ru_RU</Language>") << "ru_RU";
        QTest::newRow("en_US") << QByteArray("<Language>en_US</Language>") << "en_US";
        // What else the file may hold: see tst_languagecontext.
        QTest::newRow("missing") << QByteArray() << system;
    }
    void languageIsReadBeforeTheSettingsExist()
    {
        QFETCH(QByteArray, tag);
        QFETCH(QString, expected);
        QVERIFY(QDir::setCurrent(m_dir.path()));
        writeSettings(QStringLiteral("Settings.xml"), tag);
        QCOMPARE(AppStartup::setupLanguage(), expected);
        QCOMPARE(LanguageContext::instance()->currentLanguage(), expected);
    }

    void boundSettingsStoreTheStartupLanguageAndSetTheTheme_data()
    {
        QTest::addColumn<QString>("running");
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<int>("expected");
        QTest::newRow("none stored, English running") << "en_US" << QByteArray() << 0;
        QTest::newRow("none stored, Russian running") << "ru_RU" << QByteArray() << 1;
        QTest::newRow("chosen") << "en_US" << QByteArray("<Language>ru_RU</Language>") << 1;
    }
    void boundSettingsStoreTheStartupLanguageAndSetTheTheme()
    {
        QFETCH(QString, running);
        QFETCH(QByteArray, stored);
        QFETCH(int, expected);
        const QString path = m_dir.filePath(QStringLiteral("Settings.xml"));
        writeSettings(path, stored);
        QVERIFY(LanguageContext::instance()->setLanguage(running));
        CorvidaSettings settings(path);
        AppStartup::bindSettings(&settings);
        QCOMPARE(int(settings.getLanguage()), expected);
        CorvidaSettings reread(path);
        QCOMPARE(int(reread.getLanguage()), expected);
        // The bound settings also drive the colour theme.
        settings.setColorTheme(StyleColorTheme::Dark);
        QVERIFY(StyleHelper::instance()->isDark());
        settings.setColorTheme(StyleColorTheme::Light);
        QVERIFY(!StyleHelper::instance()->isDark());
    }
};

QTEST_MAIN(TestAppStartup)
#include "tst_appstartup.moc"
