#include "settings/SettingsWithLanguage.h"

SettingsWithLanguage::SettingsWithLanguage(const QString &filePath, bool autoSave, QObject *parent,
                                           VTSettingsFormat format)
    : VTSettings(filePath, autoSave, parent, format)
{}

void SettingsWithLanguage::setLanguage(const QString &language)
{
    if (m_Language == language)
        return;
    m_Language = language;
    emit changedLanguage(m_Language);
    changedProperty(QStringLiteral("Language"));
}

void SettingsWithLanguage::resetLanguage()
{
    resetValue(QStringLiteral("Language"));
}
