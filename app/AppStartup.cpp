#include "app/AppStartup.h"

#include "settings/CorvidaSettings.h"
#include "toolkit/LanguageContext.h"
#include "toolkit/QuorvexCommon.h"
#include "toolkit/widgets/StyleHelper.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QStandardPaths>

QString AppStartup::setupFonts()
{
    const char *files[] = {
        ":/resources/fonts/OpenSans/OpenSans_SemiCondensed-Regular.ttf",
        ":/resources/fonts/OpenSans/OpenSans_SemiCondensed-Italic.ttf",
        ":/resources/fonts/OpenSans/OpenSans_SemiCondensed-Bold.ttf",
        ":/resources/fonts/OpenSans/OpenSans_SemiCondensed-BoldItalic.ttf",
    };
    int registered = 0;
    for (const char *file : files) {
        const QString path = QString::fromLatin1(file);
        if (QFile::exists(path) && QFontDatabase::addApplicationFont(path) >= 0)
            ++registered;
    }
    const QStringList families = QFontDatabase::families();
    QFont font = QApplication::font();
    for (const QString &family :
         {QStringLiteral("Open Sans SemiCondensed"), QStringLiteral("Open Sans")}) {
        if (families.contains(family)) {
            font.setFamily(family);
            break;
        }
    }
    font.setPixelSize(15);
    QApplication::setFont(font);
    if (registered < 4)
        qDebug().noquote() << "FONT:" << registered << "of 4 bundled fonts present; using"
                           << font.family();
    return font.family();
}

void AppStartup::setupStyles()
{
    // Created first: it notes whether the desktop is dark before anything changes the palette.
    StyleHelper *style = StyleHelper::instance();
    // The themes colour the palette; Fusion draws every control from it on every desktop.
    QApplication::setStyle(QStringLiteral("Fusion"));
    style->addStyleFile(QStringLiteral(":/themes/vt.theme.css"));
    style->addThemeFile(QStringLiteral(":/themes/light.css"), QStringLiteral("light"));
    style->addThemeFile(QStringLiteral(":/themes/dark.css"), QStringLiteral("dark"));
    style->addStyleFile(QStringLiteral(":/resources/css/style.css"));
}

QString AppStartup::setupWorkingFolder()
{
    const QString folder = QuorvexCommon::userDataFolder();
    if (!QuorvexCommon::CreateDirIfNotExists(folder))
        qDebug().noquote() << "STARTUP cannot create" << folder;
    if (!QDir::setCurrent(folder))
        qDebug().noquote() << "STARTUP cannot enter" << folder;
    return folder;
}

QString AppStartup::setupLanguage()
{
    const QString language = LanguageContext::startupLanguage(QStringLiteral("Settings.xml"));
    LanguageContext::instance()->setLanguage(language);
    return LanguageContext::instance()->currentLanguage();
}

void AppStartup::bindSettings(CorvidaSettings *settings)
{
    if (!settings)
        return;
    StyleHelper *style = StyleHelper::instance();
    style->setColorTheme(settings->getColorTheme());
    QObject::connect(settings, &CorvidaSettings::changedColorTheme, style,
                     &StyleHelper::setColorTheme);
    if (!settings->isPropertySet(QStringLiteral("Language"))) {
        const bool english =
            LanguageContext::instance()->currentLanguage().contains(QLatin1String("en"));
        settings->setLanguage(english ? CorvidaSettings::CorvidaLanguage::en_US
                                      : CorvidaSettings::CorvidaLanguage::ru_RU);
    }
}
