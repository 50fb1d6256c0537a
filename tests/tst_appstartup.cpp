#include "app/AppStartup.h"
#include "settings/CorvidaSettings.h"
#include "toolkit/LanguageContext.h"
#include "toolkit/widgets/StyleHelper.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QTemporaryDir>
#include <QtTest>

class TestAppStartup : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void fontFallsBackToAnInstalledFamily();
    void stylesComeFromTheResources();
    void workingFolderBecomesCurrentDirectory();
    void languageIsReadBeforeTheSettingsExist_data();
    void languageIsReadBeforeTheSettingsExist();
    void unchosenLanguageIsStoredAsTheStartupOne_data();
    void unchosenLanguageIsStoredAsTheStartupOne();
    void colourThemeFollowsTheSetting();

private:
    QString m_startDir;
};

void TestAppStartup::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(QStringLiteral("Quorvex"));
    QCoreApplication::setApplicationName(QStringLiteral("CorvidaStartupTest"));
    m_startDir = QDir::currentPath();
}

void TestAppStartup::fontFallsBackToAnInstalledFamily()
{
    const QString family = AppStartup::setupFonts();
    QVERIFY(!family.isEmpty());
    // The bundled family is not shipped; whatever was chosen must really exist.
    QVERIFY(QFontDatabase::families().contains(family) ||
            family == QApplication::font().defaultFamily());
    QCOMPARE(QApplication::font().pixelSize(), 15);
    QCOMPARE(QApplication::font().family(), family);
}

void TestAppStartup::stylesComeFromTheResources()
{
    AppStartup::setupStyles();
    StyleHelper *style = StyleHelper::instance();
    style->setColorTheme(StyleColorTheme::Light);
    for (const char *name : {"--v-bg", "--v-panel-bg", "--v-idle-bg", "--v-sub-bg", "--v-accent"})
        QVERIFY2(style->color(QLatin1String(name)).isValid(), name);
    const QString sheet = qApp->styleSheet();
    QVERIFY(sheet.contains(QStringLiteral("CorvidaBasePage")));
    // Every variable the sheets use is defined by both themes.
    QVERIFY(!sheet.contains(QStringLiteral("--v-")));
    for (auto theme : {StyleColorTheme::Light, StyleColorTheme::Dark}) {
        style->setColorTheme(theme);
        QString raw;
        for (const char *path : {":/themes/vt.theme.css", ":/resources/css/style.css"}) {
            QFile file(QString::fromLatin1(path));
            QVERIFY(file.open(QIODevice::ReadOnly));
            raw += QString::fromUtf8(file.readAll());
        }
        static const QRegularExpression use(QStringLiteral("--(v-[A-Za-z0-9-]+)"));
        auto it = use.globalMatch(raw);
        while (it.hasNext()) {
            const QString name = it.next().captured(1);
            QVERIFY2(!style->variable(name).isEmpty(), qPrintable(name));
        }
    }
}

void TestAppStartup::workingFolderBecomesCurrentDirectory()
{
    const QString folder = AppStartup::setupWorkingFolder();
    QVERIFY(folder.endsWith(QLatin1Char('/')));
    QVERIFY(QFileInfo(folder).isDir());
    QCOMPARE(QDir::currentPath() + QLatin1Char('/'), folder);
    QVERIFY(QDir::setCurrent(m_startDir));
}

void TestAppStartup::languageIsReadBeforeTheSettingsExist_data()
{
    QTest::addColumn<QByteArray>("tag");
    QTest::addColumn<QString>("expected");
    const QString system = LanguageContext::systemLanguage();
    QTest::newRow("ru_RU") << QByteArray("<Language>ru_RU</Language>") << "ru_RU";
    QTest::newRow("en_US") << QByteArray("<Language>en_US</Language>") << "en_US";
    QTest::newRow("en") << QByteArray("<Language>en</Language>") << system;
    QTest::newRow("en-US") << QByteArray("<Language>en-US</Language>") << system;
    QTest::newRow("missing") << QByteArray() << system;
}

void TestAppStartup::languageIsReadBeforeTheSettingsExist()
{
    QFETCH(QByteArray, tag);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    QVERIFY(QDir::setCurrent(dir.path()));
    QFile file(QStringLiteral("Settings.xml"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<CorvidaSettings>\n" + tag +
               "\n</CorvidaSettings>\n");
    file.close();
    QCOMPARE(AppStartup::setupLanguage(), expected);
    QCOMPARE(LanguageContext::instance()->currentLanguage(), expected);
    QVERIFY(QDir::setCurrent(m_startDir));
}

void TestAppStartup::unchosenLanguageIsStoredAsTheStartupOne_data()
{
    QTest::addColumn<QString>("running");
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<int>("expected");
    QTest::newRow("none stored, English running") << "en_US" << QByteArray() << 0;
    QTest::newRow("none stored, Russian running") << "ru_RU" << QByteArray() << 1;
    QTest::newRow("a choice is kept") << "en_US" << QByteArray("<Language>ru_RU</Language>") << 1;
}

void TestAppStartup::unchosenLanguageIsStoredAsTheStartupOne()
{
    QFETCH(QString, running);
    QFETCH(QByteArray, stored);
    QFETCH(int, expected);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Settings.xml"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<CorvidaSettings>\n" + stored +
               "\n</CorvidaSettings>\n");
    file.close();
    QVERIFY(LanguageContext::instance()->setLanguage(running));
    CorvidaSettings settings(path);
    AppStartup::bindSettings(&settings);
    QCOMPARE(int(settings.getLanguage()), expected);
    CorvidaSettings reread(path);
    QCOMPARE(int(reread.getLanguage()), expected);
}

void TestAppStartup::colourThemeFollowsTheSetting()
{
    AppStartup::setupStyles();
    QTemporaryDir dir;
    CorvidaSettings settings(dir.filePath(QStringLiteral("Settings.xml")));
    settings.setColorTheme(StyleColorTheme::Dark);
    AppStartup::bindSettings(&settings);
    QVERIFY(StyleHelper::instance()->isDark());
    settings.setColorTheme(StyleColorTheme::Light);
    QVERIFY(!StyleHelper::instance()->isDark());
    settings.setColorTheme(StyleColorTheme::Dark);
    QVERIFY(StyleHelper::instance()->isDark());
}

QTEST_MAIN(TestAppStartup)
#include "tst_appstartup.moc"
