#include "settings/AbstractMetaDescription.h"

#include "settings/SettingsValueText.h"

#include <QCoreApplication>
#include <QDebug>
#include <QHash>
#include <QMutex>

namespace {
// Every object of a class has the same class information, and a records folder lists thousands
// of records: the entries are gathered once per class into a table, instead of being searched
// name by name for every hint of every setting of every object. As with indexOfClassInfo, an
// entry of a derived class hides one of the same name in its base.
QHash<QString, QString> classInfoTable(const QMetaObject *owner)
{
    static QMutex mutex;
    static QHash<const QMetaObject *, QHash<QString, QString>> tables;
    const QMutexLocker lock(&mutex);
    auto found = tables.constFind(owner);
    if (found != tables.constEnd())
        return *found;
    QHash<QString, QString> table;
    for (int i = 0; i < owner->classInfoCount(); ++i) {
        const QMetaClassInfo info = owner->classInfo(i);
        table.insert(QString::fromLatin1(info.name()), QString::fromUtf8(info.value()));
    }
    tables.insert(owner, table);
    return table;
}
} // namespace

AbstractMetaDescription::AbstractMetaDescription(QObject *parent)
    : QObject(parent)
{}

QStringList AbstractMetaDescription::hintWords()
{
    static const QStringList words = {QStringLiteral("Category"),
                                      QStringLiteral("Default"),
                                      QStringLiteral("DefaultOverride"),
                                      QStringLiteral("Description"),
                                      QStringLiteral("DisplayName"),
                                      QStringLiteral("Editable"),
                                      QStringLiteral("Enum"),
                                      QStringLiteral("Icon"),
                                      QStringLiteral("MaxWidth"),
                                      QStringLiteral("Maximum"),
                                      QStringLiteral("MinWidth"),
                                      QStringLiteral("Minimum"),
                                      QStringLiteral("NoDefault"),
                                      QStringLiteral("NotVisible"),
                                      QStringLiteral("Placeholder"),
                                      QStringLiteral("Precision"),
                                      QStringLiteral("Prefix"),
                                      QStringLiteral("Priority"),
                                      QStringLiteral("ReadOnly"),
                                      QStringLiteral("SpecialType"),
                                      QStringLiteral("Step"),
                                      QStringLiteral("Suffix"),
                                      QStringLiteral("Suggestions"),
                                      QStringLiteral("VisibleBinded"),
                                      QStringLiteral("VisibleBound")};
    return words;
}

bool AbstractMetaDescription::hintFlag(const QString &word) const
{
    const QString v = hint(word).trimmed().toLower();
    return v == QLatin1String("true") || v == QLatin1String("1");
}

bool AbstractMetaDescription::isStored() const
{
    return !noDefault() || m_valueSet;
}

QString AbstractMetaDescription::displayName() const
{
    const QString text = hint(QStringLiteral("DisplayName"));
    const QString source = text.isEmpty() ? m_name : text;
    return m_context.isEmpty()
               ? source
               : QCoreApplication::translate(m_context.constData(), source.toUtf8().constData());
}

QString AbstractMetaDescription::description() const
{
    const QString text = hint(QStringLiteral("Description"));
    return text.isEmpty() || m_context.isEmpty()
               ? text
               : QCoreApplication::translate(m_context.constData(), text.toUtf8().constData());
}

void AbstractMetaDescription::readHints(const QMetaObject *owner)
{
    m_hints.clear();
    m_keyIcons.clear();
    if (!owner)
        return;
    // The hints of a setting depend only on its class and its name, and every record of a
    // folder asks for the same ones: they are worked out once and then shared.
    struct Found {
        QMap<QString, QString> hints;
        QMap<QString, QString> keyIcons;
    };
    static QMutex mutex;
    static QHash<QPair<const QMetaObject *, QString>, Found> known;
    const QPair<const QMetaObject *, QString> cacheKey(owner, m_name);
    {
        const QMutexLocker lock(&mutex);
        const auto found = known.constFind(cacheKey);
        if (found != known.constEnd()) {
            m_hints = found->hints;
            m_keyIcons = found->keyIcons;
            return;
        }
    }
    const QHash<QString, QString> table = classInfoTable(owner);
    for (const QString &word : hintWords()) {
        const auto found = table.constFind(m_name + word);
        if (found != table.constEnd())
            m_hints.insert(word, *found);
    }
    if (m_enumerator.isValid()) {
        for (int i = 0; i < m_enumerator.keyCount(); ++i) {
            const QString key = QString::fromLatin1(m_enumerator.key(i));
            const auto found = table.constFind(m_name + QStringLiteral("Icon") + key);
            if (found != table.constEnd())
                m_keyIcons.insert(key, *found);
        }
    }
    const QMutexLocker lock(&mutex);
    known.insert(cacheKey, Found{m_hints, m_keyIcons});
}

void AbstractMetaDescription::interpretHints()
{
    m_default = QVariant();
    m_minimum = QVariant();
    m_maximum = QVariant();
    // A subclass can change an inherited default without touching the base class's entry.
    const QString defaultWord = hasHint(QStringLiteral("DefaultOverride"))
                                    ? QStringLiteral("DefaultOverride")
                                    : QStringLiteral("Default");
    if (hasHint(defaultWord)) {
        bool ok = false;
        const QVariant value = fromText(hint(defaultWord), &ok);
        if (ok)
            m_default = value;
        else
            qDebug().noquote() << "SETTINGS: unreadable" << defaultWord << "hint"
                               << hint(defaultWord) << "of" << logName();
    }
    if (SettingsValueText::isNumeric(m_metaType)) {
        bool ok = false;
        if (hasHint(QStringLiteral("Minimum"))) {
            const QVariant v = fromText(hint(QStringLiteral("Minimum")), &ok);
            if (ok)
                m_minimum = v;
        }
        if (hasHint(QStringLiteral("Maximum"))) {
            const QVariant v = fromText(hint(QStringLiteral("Maximum")), &ok);
            if (ok)
                m_maximum = v;
        }
    }
    // "VisibleBinded" is the older spelling of the same rule; the newer one wins.
    const QString ruleWord = hasHint(QStringLiteral("VisibleBound"))
                                 ? QStringLiteral("VisibleBound")
                                 : QStringLiteral("VisibleBinded");
    bool ok = true;
    m_visibleBound = VisibleBoundRule::parse(hint(ruleWord), &ok);
    if (!ok)
        qDebug().noquote() << "SETTINGS: unreadable" << ruleWord << "hint" << hint(ruleWord) << "of"
                           << logName() << "(expected Property:value)";
}

QString AbstractMetaDescription::toText(const QVariant &value) const
{
    return SettingsValueText::toText(value, m_enumerator);
}

QVariant AbstractMetaDescription::fromText(const QString &text, bool *ok) const
{
    return SettingsValueText::fromText(text, m_metaType, m_enumerator, ok);
}

QString AbstractMetaDescription::textValue() const
{
    return toText(getValue());
}

QVariant AbstractMetaDescription::acceptable(const QVariant &value, QString *why) const
{
    bool ok = false;
    const QVariant converted = SettingsValueText::convert(value, m_metaType, m_enumerator, &ok);
    if (!ok) {
        if (why)
            *why = QStringLiteral("not a value of type %1")
                       .arg(QString::fromLatin1(m_metaType.name()));
        return {};
    }
    if (SettingsValueText::isNumeric(m_metaType)) {
        const double v = converted.toDouble();
        if ((m_minimum.isValid() && v < m_minimum.toDouble()) ||
            (m_maximum.isValid() && v > m_maximum.toDouble())) {
            if (why)
                *why = QStringLiteral("outside %1..%2").arg(toText(m_minimum), toText(m_maximum));
            return {};
        }
    }
    return converted;
}

bool AbstractMetaDescription::setValue(const QVariant &value)
{
    QString why;
    const QVariant accepted = acceptable(value, &why);
    if (!accepted.isValid()) {
        qDebug().noquote() << "SETTINGS: value" << value.toString() << "refused for" << logName()
                           << "-" << why;
        return false;
    }
    if (!writeValue(accepted)) {
        qDebug().noquote() << "SETTINGS: could not write" << logName();
        return false;
    }
    m_valueSet = true;
    return true;
}

QVariant AbstractMetaDescription::getValue() const
{
    return readValue();
}

void AbstractMetaDescription::setDefault(const QVariant &value)
{
    if (!value.isValid()) {
        m_default = QVariant();
        return;
    }
    bool ok = false;
    const QVariant converted = SettingsValueText::convert(value, m_metaType, m_enumerator, &ok);
    if (ok)
        m_default = converted;
    else
        qDebug().noquote() << "SETTINGS: default" << value.toString() << "refused for" << logName();
}

bool AbstractMetaDescription::resetValue()
{
    return hasDefault() && setValue(m_default);
}

void AbstractMetaDescription::valueChangedSlot()
{
    emit valueChanged(getValue());
}

bool AbstractMetaDescription::setTextValue(const QString &text)
{
    bool ok = false;
    const QVariant value = fromText(text, &ok);
    if (!ok) {
        qDebug().noquote() << "SETTINGS: cannot read" << text << "as"
                           << QString::fromLatin1(m_metaType.name()) << "for" << logName()
                           << "- value kept";
        return false;
    }
    return setValue(value);
}

namespace {
QStringList listHint(const QString &text)
{
    // A JSON array, or texts separated by ";".
    bool ok = false;
    if (text.trimmed().startsWith(QLatin1Char('['))) {
        const QVariant v =
            SettingsValueText::fromText(text, QMetaType(QMetaType::QStringList), QMetaEnum(), &ok);
        if (ok)
            return v.toStringList();
    }
    QStringList items;
    for (const QString &item : text.split(QLatin1Char(';'), Qt::SkipEmptyParts))
        items.append(item.trimmed());
    return items;
}

int intHint(const QString &text, int fallback)
{
    bool ok = false;
    const int v = text.trimmed().toInt(&ok);
    return ok ? v : fallback;
}

QString editorKind(QMetaType type, const QMetaEnum &enumerator)
{
    if (enumerator.isValid())
        return enumerator.isFlag() ? QStringLiteral("flags") : QStringLiteral("enum");
    if (SettingsValueText::isInteger(type))
        return QStringLiteral("int");
    switch (type.id()) {
    case QMetaType::Bool:
        return QStringLiteral("bool");
    case QMetaType::Double:
    case QMetaType::Float:
        return QStringLiteral("double");
    case QMetaType::QString:
        return QStringLiteral("text");
    case QMetaType::QColor:
        return QStringLiteral("color");
    case QMetaType::QDateTime:
        return QStringLiteral("dateTime");
    case QMetaType::QDate:
        return QStringLiteral("date");
    case QMetaType::QTime:
        return QStringLiteral("time");
    case QMetaType::QSize:
    case QMetaType::QSizeF:
        return QStringLiteral("size");
    case QMetaType::QPoint:
    case QMetaType::QPointF:
        return QStringLiteral("point");
    case QMetaType::QByteArray:
        return QStringLiteral("byteArray");
    case QMetaType::QStringList:
        return QStringLiteral("stringList");
    case QMetaType::QVariantMap:
        return QStringLiteral("stringMap");
    default:
        return QStringLiteral("other");
    }
}
} // namespace

// Keys of the capability map:
//  name, type (type name), editor (bool, int, double, text, enum, flags, color, dateTime, date,
//  time, size, point, byteArray, stringList, stringMap, other; a SpecialType hint replaces it
//  with its own word, first letter lower case), value, textValue, default (text), hasDefault,
//  noDefault, stored, displayName, description, category, icon, placeholder, prefix, suffix,
//  minimum, maximum, step (in the property's type, absent when not given), precision,
//  priority, minWidth, maxWidth (-1 when not given), readOnly, notVisible, editable,
//  specialType, suggestions (list of texts), enumKeys (list of maps with key, value, icon,
//  in declaration order; from the enumeration, or from an Enum hint of ";"-separated texts),
//  visibleBound (map with property and value, absent without a rule).
QVariantMap AbstractMetaDescription::capabilities() const
{
    QVariantMap caps;
    caps.insert(QStringLiteral("name"), m_name);
    caps.insert(QStringLiteral("type"), QString::fromLatin1(m_metaType.name()));
    QString editor = editorKind(m_metaType, m_enumerator);
    const QString special = specialType();
    if (!special.isEmpty())
        editor = special.left(1).toLower() + special.mid(1);
    const QVariant value = getValue();
    caps.insert(QStringLiteral("value"), value);
    caps.insert(QStringLiteral("textValue"), toText(value));
    caps.insert(QStringLiteral("default"), hasDefault() ? toText(m_default) : QString());
    caps.insert(QStringLiteral("hasDefault"), hasDefault());
    caps.insert(QStringLiteral("noDefault"), noDefault());
    caps.insert(QStringLiteral("stored"), isStored());
    caps.insert(QStringLiteral("displayName"), displayName());
    caps.insert(QStringLiteral("description"), description());
    caps.insert(QStringLiteral("category"), hint(QStringLiteral("Category")));
    caps.insert(QStringLiteral("icon"), hint(QStringLiteral("Icon")));
    caps.insert(QStringLiteral("placeholder"), hint(QStringLiteral("Placeholder")));
    caps.insert(QStringLiteral("prefix"), hint(QStringLiteral("Prefix")));
    caps.insert(QStringLiteral("suffix"), hint(QStringLiteral("Suffix")));
    if (m_minimum.isValid())
        caps.insert(QStringLiteral("minimum"), m_minimum);
    if (m_maximum.isValid())
        caps.insert(QStringLiteral("maximum"), m_maximum);
    if (hasHint(QStringLiteral("Step"))) {
        bool ok = false;
        const QVariant step = SettingsValueText::isNumeric(m_metaType)
                                  ? fromText(hint(QStringLiteral("Step")), &ok)
                                  : QVariant();
        if (ok)
            caps.insert(QStringLiteral("step"), step);
    }
    caps.insert(QStringLiteral("precision"), intHint(hint(QStringLiteral("Precision")), -1));
    caps.insert(QStringLiteral("priority"), intHint(hint(QStringLiteral("Priority")), 0));
    caps.insert(QStringLiteral("minWidth"), intHint(hint(QStringLiteral("MinWidth")), -1));
    caps.insert(QStringLiteral("maxWidth"), intHint(hint(QStringLiteral("MaxWidth")), -1));
    caps.insert(QStringLiteral("readOnly"), isReadOnly());
    caps.insert(QStringLiteral("notVisible"), isNotVisible());
    caps.insert(QStringLiteral("editable"), isEditable());
    caps.insert(QStringLiteral("specialType"), special);
    caps.insert(QStringLiteral("suggestions"), listHint(hint(QStringLiteral("Suggestions"))));

    QVariantList keys;
    if (m_enumerator.isValid()) {
        for (int i = 0; i < m_enumerator.keyCount(); ++i) {
            const QString key = QString::fromLatin1(m_enumerator.key(i));
            keys.append(QVariantMap{{QStringLiteral("key"), key},
                                    {QStringLiteral("value"), m_enumerator.value(i)},
                                    {QStringLiteral("icon"), m_keyIcons.value(key)}});
        }
    } else if (hasHint(QStringLiteral("Enum"))) {
        for (const QString &item : listHint(hint(QStringLiteral("Enum"))))
            keys.append(QVariantMap{{QStringLiteral("key"), item},
                                    {QStringLiteral("value"), item},
                                    {QStringLiteral("icon"), QString()}});
        editor = QStringLiteral("enum");
    }
    caps.insert(QStringLiteral("enumKeys"), keys);
    caps.insert(QStringLiteral("editor"), editor);
    if (m_visibleBound.isValid())
        caps.insert(QStringLiteral("visibleBound"),
                    QVariantMap{{QStringLiteral("property"), m_visibleBound.property()},
                                {QStringLiteral("value"), m_visibleBound.value()}});
    return caps;
}
