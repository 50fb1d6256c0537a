#pragma once

#include "settings/VisibleBoundRule.h"

#include <QMap>
#include <QMetaEnum>
#include <QMetaType>
#include <QObject>
#include <QStringList>
#include <QVariant>

// One setting: its name and type, its value and default, and the editing hints its class
// declares as class-information entries named property name + hint word (for example
// "PressureLimitDefault", "UseVirtualCorvidaMaximum"). A generic editor builds itself from
// capabilities(); the settings file is written from textValue() and read through setTextValue().
class AbstractMetaDescription : public QObject
{
    Q_OBJECT
public:
    explicit AbstractMetaDescription(QObject *parent = nullptr);

    // Every hint word a description reads.
    static QStringList hintWords();

    QString name() const { return m_name; }
    QMetaType metaType() const { return m_metaType; }
    // Valid for enumeration (and flag) types: key names for the file and the editor.
    QMetaEnum enumerator() const { return m_enumerator; }

    QString hint(const QString &word) const { return m_hints.value(word); }
    bool hasHint(const QString &word) const { return m_hints.contains(word); }
    QMap<QString, QString> hints() const { return m_hints; }
    // A boolean hint: present with "true" (or "1").
    bool hintFlag(const QString &word) const;

    bool hasDefault() const { return m_default.isValid(); }
    QVariant defaultValue() const { return m_default; }
    // NoDefault: loading defaults leaves the value alone, and the setting is not written to the
    // file until it has been given a value, so that a reader can tell "never chosen" apart.
    bool noDefault() const { return hintFlag(QStringLiteral("NoDefault")); }
    bool isValueSet() const { return m_valueSet; }
    void markValueSet() { m_valueSet = true; }
    // The setting counts as never given again (a NoDefault setting is then not written).
    void clearValueSet() { m_valueSet = false; }
    // Whether the value belongs in the settings file.
    virtual bool isStored() const;

    // Display name and description, translated in the context of the owning class.
    QString displayName() const;
    QString description() const;
    QString specialType() const { return hint(QStringLiteral("SpecialType")); }
    bool isReadOnly() const { return hintFlag(QStringLiteral("ReadOnly")); }
    bool isNotVisible() const { return hintFlag(QStringLiteral("NotVisible")); }
    bool isEditable() const { return hintFlag(QStringLiteral("Editable")); }
    VisibleBoundRule visibleBound() const { return m_visibleBound; }
    // Minimum, Maximum, Step: converted to the property's type, invalid when not given.
    QVariant minimum() const { return m_minimum; }
    QVariant maximum() const { return m_maximum; }

    QString textValue() const;
    QString toText(const QVariant &value) const;
    QVariant fromText(const QString &text, bool *ok = nullptr) const;
    // The value converted to this property's type and checked against its limits and keys;
    // invalid (with the reason in why) when it does not fit.
    QVariant acceptable(const QVariant &value, QString *why = nullptr) const;

    // Everything an editor needs, as a map of plain values (see the .cpp for the keys).
    QVariantMap capabilities() const;

public slots:
    // Converts, checks and stores the value. False (and a log line) when it does not fit; the
    // previous value stays.
    bool setValue(const QVariant &value);
    QVariant getValue() const;
    void setDefault(const QVariant &value);
    // Restores the default; false when there is none.
    bool resetValue();
    // Emits valueChanged with the current value; bound to the property's change signal.
    void valueChangedSlot();
    bool setTextValue(const QString &text);

signals:
    void valueChanged(QVariant value);

protected:
    virtual QVariant readValue() const = 0;
    virtual bool writeValue(const QVariant &value) = 0;
    // Short text for log lines: "Class.Property".
    virtual QString logName() const { return m_name; }
    // The class information of owner for this property: hints, per-key icons, the default.
    void readHints(const QMetaObject *owner);
    // Applies the hints kept in m_hints: default, limits, visibility rule.
    void interpretHints();

    QString m_name;
    // Translation context of the texts in the hints: the owning class's name.
    QByteArray m_context;
    QMetaType m_metaType;
    QMetaEnum m_enumerator;
    QMap<QString, QString> m_hints;
    // Per-key icons of an enumeration ("ViewModeIconView_Grid"), by key.
    QMap<QString, QString> m_keyIcons;
    QVariant m_default;
    QVariant m_minimum;
    QVariant m_maximum;
    VisibleBoundRule m_visibleBound;
    bool m_valueSet = false;
};
