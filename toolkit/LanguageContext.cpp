#include "toolkit/LanguageContext.h"

#include <QCoreApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace {
QString resourcePath(const QString &language)
{
    return QStringLiteral(":/i18n/corvida_%1.qm").arg(language);
}
} // namespace

LanguageContext::LanguageContext(QObject *parent)
    : QObject(parent)
{}

LanguageContext *LanguageContext::instance()
{
    static LanguageContext *context = new LanguageContext(QCoreApplication::instance());
    return context;
}

QStringList LanguageContext::availableLanguages()
{
    QStringList list;
    for (const QString &name : {QStringLiteral("en_US"), QStringLiteral("ru_RU")})
        if (hasTranslation(name))
            list.append(name);
    return list;
}

bool LanguageContext::hasTranslation(const QString &language)
{
    return !language.isEmpty() && QFile::exists(resourcePath(language));
}

QString LanguageContext::systemLanguage()
{
    const QString name = QLocale::system().name();
    if (hasTranslation(name))
        return name;
    // A Russian desktop in another country (ru_UA, ru_KZ) still reads Russian best.
    for (const QString &available : availableLanguages())
        if (available.left(2) == name.left(2))
            return available;
    return QStringLiteral("en_US");
}

QString LanguageContext::startupLanguage(const QString &settingsFilePath, const QString &fallback)
{
    QFile file(settingsFilePath);
    if (!file.open(QIODevice::ReadOnly))
        return fallback;
    const QString text = QString::fromUtf8(file.readAll());
    const QString open = QStringLiteral("<Language>");
    const int at = text.indexOf(open);
    // A tag at the very start cannot be inside a settings document, which opens with its
    // declaration and root element.
    if (at <= 0)
        return fallback;
    const int from = at + open.size();
    const int to = text.indexOf(QStringLiteral("</"), from);
    if (to < 0)
        return fallback;
    const QString name = text.mid(from, to - from);
    if (name.size() == 5 && name.contains(QLatin1Char('_')) && hasTranslation(name))
        return name;
    return fallback;
}

QTranslator *LanguageContext::translatorFor(const QString &language)
{
    if (QTranslator *t = m_lookup.value(language))
        return t;
    auto *t = new QTranslator(this);
    if (!t->load(resourcePath(language))) {
        delete t;
        return nullptr;
    }
    m_lookup.insert(language, t);
    return t;
}

bool LanguageContext::setLanguage(const QString &language)
{
    QTranslator *own = translatorFor(language);
    if (!own)
        return false;
    if (language == m_current)
        return true;
    for (QTranslator *t : std::as_const(m_installed)) {
        QCoreApplication::removeTranslator(t);
        if (t != m_lookup.value(m_current))
            t->deleteLater();
    }
    m_installed.clear();

    // Qt's own texts (standard dialog buttons, context menus of text fields).
    auto *qt = new QTranslator(this);
    if (qt->load(QLocale(language), QStringLiteral("qtbase"), QStringLiteral("_"),
                 QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(qt);
        m_installed.append(qt);
    } else {
        delete qt;
    }
    QCoreApplication::installTranslator(own);
    m_installed.append(own);
    m_current = language;
    QLocale::setDefault(QLocale(language));
    emit languageChanged(language);
    return true;
}

QString LanguageContext::translate(const QString &language, const char *context, const char *text)
{
    QTranslator *t = translatorFor(language);
    const QString translated = t ? t->translate(context, text) : QString();
    return translated.isEmpty() ? QString::fromUtf8(text) : translated;
}
