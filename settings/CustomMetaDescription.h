#pragma once

#include "settings/AbstractMetaDescription.h"

// A setting that is no property of any object: the description keeps the value itself. Used
// for values that are assembled at run time (for example one entry per connected device) but
// are edited and stored like any other setting.
class CustomMetaDescription : public AbstractMetaDescription
{
    Q_OBJECT
public:
    // The value starts as the default when one is given, otherwise as the type's empty value.
    CustomMetaDescription(const QString &name, QMetaType type, const QVariant &defaultValue = {},
                          QObject *parent = nullptr);

    // Hints as a class would declare them, by hint word ("Minimum" -> "0"); applied at once.
    void setHints(const QMap<QString, QString> &hints);
    void setHint(const QString &word, const QString &text);
    // Makes an enumeration type's values known by key name.
    void setEnumerator(const QMetaEnum &enumerator);
    void setTranslationContext(const QByteArray &context) { m_context = context; }

protected:
    QVariant readValue() const override { return m_value; }
    bool writeValue(const QVariant &value) override;

private:
    QVariant m_value;
};
