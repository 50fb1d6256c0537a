#pragma once

#include "settings/VTSettings.h"

// Settings that also remember the interface language, as a language name such as "en_US".
// The editor offers the languages that have translations; the value stays empty until one is
// chosen, so start-up can fall back to the system's language.
class SettingsWithLanguage : public VTSettings
{
    Q_OBJECT
    Q_PROPERTY(QString Language READ getLanguage WRITE setLanguage RESET resetLanguage NOTIFY
                   changedLanguage)
    Q_CLASSINFO("LanguageSpecialType", "StringList")
    Q_CLASSINFO("LanguageEditable", "true")
    Q_CLASSINFO("LanguageDefault", "\"\"")
public:
    explicit SettingsWithLanguage(const QString &filePath = QString(), bool autoSave = true,
                                  QObject *parent = nullptr, VTSettingsFormat format = XML);

    QString getLanguage() const { return m_Language; }

public slots:
    void setLanguage(const QString &language);
    void resetLanguage();

signals:
    void changedLanguage(QString Language);

private:
    QString m_Language;
};
