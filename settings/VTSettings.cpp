#include "settings/VTSettings.h"

#include "settings/AbstractMetaDescription.h"
#include "settings/MetaDescriptor.h"
#include "toolkit/FileUtilities.h"

#include <QDebug>
#include <QFile>
#include <QJsonObject>

VTSettings::VTSettings(const QString &filePath, bool autoSave, QObject *parent,
                       VTSettingsFormat format)
    : AbstractSettings(parent)
    , m_filePath(filePath)
    , m_autoSave(autoSave)
    , m_format(format)
{}

VTSettings::~VTSettings()
{
    delete m_descriptor;
}

MetaDescriptor *VTSettings::descriptor() const
{
    // Built lazily: while a subclass is being constructed, metaObject() is still this class's.
    if (m_describedMeta != metaObject()) {
        if (!m_descriptor)
            m_descriptor = new MetaDescriptor();
        m_descriptor->set(const_cast<VTSettings *>(this));
        m_descriptor->setRootOverride(rootElementName());
        m_describedMeta = metaObject();
    }
    return m_descriptor;
}

void VTSettings::setFilepath(const QString &filePath)
{
    if (filePath == m_filePath)
        return;
    m_filePath = filePath;
    emit filePathChanged(m_filePath);
}

bool VTSettings::saveAs(const QString &filePath)
{
    if (filePath.isEmpty())
        return false;
    return m_format == JSON ? descriptor()->saveToJsonFile(filePath) : descriptor()->save(filePath);
}

bool VTSettings::save()
{
    if (!saveAs(m_filePath))
        return false;
    emit saved();
    return true;
}

bool VTSettings::readFile()
{
    if (!QFile::exists(m_filePath)) {
        qDebug().noquote() << "SETTINGS: no file" << m_filePath << "yet; current values stay";
        return true;
    }
    {
        QFile probe(m_filePath);
        if (!probe.open(QIODevice::ReadOnly)) {
            // Not a damaged file, just one we may not read: leave it and the values alone.
            qDebug().noquote() << "SETTINGS: cannot open" << m_filePath << "-"
                               << probe.errorString();
            return false;
        }
    }
    MetaDescriptor *d = descriptor();
    const bool ok = m_format == JSON ? d->loadFromJsonFile(m_filePath) : d->load(m_filePath);
    if (ok)
        return true;
    // Part of the file may have been applied before the damage was found; start clean instead,
    // and keep the file for a person to look at, since the next save replaces it.
    const QString kept = FileUtilities::keepAside(m_filePath, QStringLiteral(".bad"));
    qDebug().noquote() << "SETTINGS: cannot parse" << m_filePath << "(" << d->lastError() << ")"
                       << (kept.isEmpty() ? QStringLiteral("and could not keep a copy")
                                          : QStringLiteral("kept as ") + kept)
                       << "- defaults apply";
    loadDefaults();
    return false;
}

bool VTSettings::reload()
{
    if (m_filePath.isEmpty())
        return false;
    ++m_reloading;
    readFile();
    --m_reloading;
    emit reloaded();
    return true;
}

void VTSettings::loadDefaults()
{
    // Counts as reading: the defaults must not be written over a file that is about to be read.
    ++m_reloading;
    descriptor()->defaults();
    --m_reloading;
}

void VTSettings::changedProperty(const QString &name)
{
    if (AbstractMetaDescription *d = descriptor()->propertyByName(name))
        d->markValueSet();
    emit propertyChanged(name);
    if (!m_autoSave || m_reloading > 0)
        return;
    if (!m_filePath.isEmpty())
        saveAs(m_filePath);
    emit saved();
}

QVariant VTSettings::getValue(const QString &name) const
{
    AbstractMetaDescription *d = descriptor()->propertyByName(name);
    return d ? d->getValue() : QVariant();
}

bool VTSettings::setValue(const QString &name, const QVariant &value)
{
    return descriptor()->setValue(name, value);
}

QString VTSettings::getTextValue(const QString &name) const
{
    AbstractMetaDescription *d = descriptor()->propertyByName(name);
    return d ? d->textValue() : QString();
}

bool VTSettings::setTextValue(const QString &name, const QString &text)
{
    return descriptor()->setTextValue(name, text);
}

bool VTSettings::resetValue(const QString &name)
{
    AbstractMetaDescription *d = descriptor()->propertyByName(name);
    return d && d->resetValue();
}

QStringList VTSettings::getPropertiesNames() const
{
    return descriptor()->names();
}

AbstractMetaDescription *VTSettings::getPropertyByName(const QString &name) const
{
    return descriptor()->propertyByName(name);
}

bool VTSettings::containsProperty(const QString &name) const
{
    return descriptor()->propertyByName(name) != nullptr;
}

bool VTSettings::isPropertySet(const QString &name) const
{
    AbstractMetaDescription *d = descriptor()->propertyByName(name);
    return d && (!d->noDefault() || d->isValueSet());
}

bool VTSettings::isPropertyVisible(const QString &name) const
{
    AbstractMetaDescription *d = descriptor()->propertyByName(name);
    if (!d || d->isNotVisible())
        return false;
    const VisibleBoundRule rule = d->visibleBound();
    if (!rule.isValid())
        return true;
    AbstractMetaDescription *bound = descriptor()->propertyByName(rule.property());
    if (!bound)
        return true;
    // Compare in the bound setting's own text form, so "1" and "true" agree for a boolean.
    bool ok = false;
    const QVariant wanted = bound->fromText(rule.value(), &ok);
    const QString wantedText = ok ? bound->toText(wanted) : rule.value();
    return bound->textValue() == wantedText;
}

QVariantMap VTSettings::getPropertyCapabilities(const QString &name) const
{
    AbstractMetaDescription *d = descriptor()->propertyByName(name);
    if (!d)
        return {};
    QVariantMap caps = d->capabilities();
    caps.insert(QStringLiteral("visible"), isPropertyVisible(name));
    return caps;
}

QVariantList VTSettings::getAllCapabilities() const
{
    QVariantList list;
    for (const QString &name : getPropertiesNames())
        list.append(getPropertyCapabilities(name));
    return list;
}

QJsonArray VTSettings::getAllCapabilitiesJson() const
{
    QJsonArray array;
    for (const QString &name : getPropertiesNames()) {
        QVariantMap caps = getPropertyCapabilities(name);
        // Enumerations go by key name, as in the file; colours and geometry have no JSON form of
        // their own and go as their file text.
        const QVariant value = caps.value(QStringLiteral("value"));
        const QJsonValue json = QJsonValue::fromVariant(value);
        if (getPropertyByName(name)->enumerator().isValid() || json.isNull() || json.isUndefined())
            caps.insert(QStringLiteral("value"), caps.value(QStringLiteral("textValue")));
        for (const char *key : {"minimum", "maximum", "step"})
            if (caps.contains(QLatin1String(key)))
                caps.insert(QLatin1String(key), caps.value(QLatin1String(key)).toDouble());
        array.append(QJsonObject::fromVariantMap(caps));
    }
    return array;
}

QString VTSettings::getClassName() const
{
    return QString::fromLatin1(metaObject()->className());
}
