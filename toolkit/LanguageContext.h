#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

class QTranslator;

// The interface language. Holds the installed translators of the running language and can
// translate a text into a language that is not running (the language-change question is asked
// in both the old and the new language). Languages are named like "en_US" and "ru_RU"; their
// translations are compiled into the program as ":/i18n/corvida_<name>.qm".
class LanguageContext : public QObject
{
    Q_OBJECT
public:
    static LanguageContext *instance();

    // The languages the program has a translation for.
    static QStringList availableLanguages();
    static bool hasTranslation(const QString &language);
    // The operating system's language when the program has it, otherwise "en_US".
    static QString systemLanguage();

    // The language to start in: the system's, unless the settings file holds a usable
    // "<Language>xx_YY</Language>". Read as plain text because the settings object does not
    // exist yet when the translators must be installed.
    static QString startupLanguage(const QString &settingsFilePath,
                                   const QString &fallback = systemLanguage());

    QString currentLanguage() const { return m_current; }
    // Installs the translators of the language (the program's and Qt's own). False when the
    // program has no translation for it; the running language then stays.
    bool setLanguage(const QString &language);

    // The text as it reads in the given language, whether or not that language is running.
    QString translate(const QString &language, const char *context, const char *text);

signals:
    void languageChanged(QString language);

private:
    explicit LanguageContext(QObject *parent = nullptr);
    QTranslator *translatorFor(const QString &language);

    QString m_current;
    QList<QTranslator *> m_installed;
    QHash<QString, QTranslator *> m_lookup;
};
