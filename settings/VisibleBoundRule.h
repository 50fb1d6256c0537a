#pragma once

#include <QString>

// "Property:value": show a setting only while another setting holds the given value, as in
// "DebugMode:true". The value is compared after conversion to the other property's type, so
// "true", "True" and "1" mean the same for a boolean.
class VisibleBoundRule
{
public:
    VisibleBoundRule() = default;

    // An empty text is no rule and reads fine; a text without a colon or without a property name
    // reads as no rule with ok false, so the caller can log it.
    static VisibleBoundRule parse(const QString &text, bool *ok = nullptr);

    bool isValid() const { return !m_property.isEmpty(); }
    QString property() const { return m_property; }
    QString value() const { return m_value; }
    QString toText() const;

private:
    QString m_property;
    QString m_value;
};
