#include "settings/CustomMetaDescription.h"

CustomMetaDescription::CustomMetaDescription(const QString &name, QMetaType type,
                                             const QVariant &defaultValue, QObject *parent)
    : AbstractMetaDescription(parent)
{
    m_name = name;
    m_metaType = type;
    m_value = QVariant(type);
    if (defaultValue.isValid()) {
        setDefault(defaultValue);
        if (hasDefault())
            m_value = m_default;
    }
}

void CustomMetaDescription::setHints(const QMap<QString, QString> &hints)
{
    const QVariant explicitDefault = m_default;
    m_hints = hints;
    interpretHints();
    if (!m_default.isValid())
        m_default = explicitDefault;
}

void CustomMetaDescription::setHint(const QString &word, const QString &text)
{
    QMap<QString, QString> h = m_hints;
    h.insert(word, text);
    setHints(h);
}

void CustomMetaDescription::setEnumerator(const QMetaEnum &enumerator)
{
    m_enumerator = enumerator;
    if (m_value.isValid() && m_metaType.flags() & QMetaType::IsEnumeration)
        return;
    // Without a registered type the value is kept as its number.
    if (!m_metaType.isValid() || !(m_metaType.flags() & QMetaType::IsEnumeration)) {
        m_metaType = QMetaType(QMetaType::Int);
        if (!m_value.isValid() || m_value.metaType() != m_metaType)
            m_value = QVariant(0);
    }
}

bool CustomMetaDescription::writeValue(const QVariant &value)
{
    if (value == m_value && value.metaType() == m_value.metaType())
        return true;
    m_value = value;
    emit valueChanged(m_value);
    return true;
}
