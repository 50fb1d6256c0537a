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
    // What was found in the old file says nothing about the new one.
    m_fileState = FileState::Read;
    m_keptCopy.clear();
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
    if (!saveOwnFile())
        return false;
    emit saved();
    return true;
}

bool VTSettings::saveOwnFile()
{
    if (m_filePath.isEmpty())
        return false;
    bool ok = true;
    if (m_fileState == FileState::Unreadable && QFile::exists(m_filePath)) {
        // We do not know what it holds; writing our values over it could lose all of it.
        qDebug().noquote() << "SETTINGS: not saving over" << m_filePath << "- it could not be read";
        ok = false;
    } else if (m_fileState == FileState::Damaged && QFile::exists(m_filePath)) {
        // The part after the damage may still matter to a person: keep the file first.
        m_keptCopy = FileUtilities::keepAside(m_filePath, QStringLiteral(".bad"));
        if (m_keptCopy.isEmpty()) {
            qDebug().noquote() << "SETTINGS: not saving over the damaged" << m_filePath
                               << "- no copy of it could be kept";
            ok = false;
        } else {
            qDebug().noquote() << "SETTINGS: damaged" << m_filePath << "kept as" << m_keptCopy;
            m_fileState = FileState::Read;
        }
    }
    ok = ok && saveAs(m_filePath);
    if (ok && m_fileState == FileState::Missing)
        m_fileState = FileState::Read;
    const bool firstFailure = !ok && !m_lastSaveFailed;
    m_lastSaveFailed = !ok;
    if (firstFailure)
        qDebug().noquote() << "SETTINGS: cannot save" << m_filePath;
    if (!ok)
        emit saveFailed(m_filePath);
    return ok;
}

bool VTSettings::readFile()
{
    if (!QFile::exists(m_filePath)) {
        qDebug().noquote() << "SETTINGS: no file" << m_filePath << "yet; current values stay";
        m_fileState = FileState::Missing;
        return true;
    }
    {
        QFile probe(m_filePath);
        if (!probe.open(QIODevice::ReadOnly)) {
            // Not a damaged file, just one we may not read: leave it and the values alone.
            qDebug().noquote() << "SETTINGS: cannot open" << m_filePath << "-"
                               << probe.errorString();
            m_fileState = FileState::Unreadable;
            return false;
        }
    }
    MetaDescriptor *d = descriptor();
    const bool ok = m_format == JSON ? d->loadFromJsonFile(m_filePath) : d->load(m_filePath);
    if (ok) {
        m_fileState = FileState::Read;
        return true;
    }
    // What was read before the damage stands; the rest keeps its current value. Reading writes
    // nothing: the file is kept aside only when a save is about to replace it.
    qDebug().noquote() << "SETTINGS: cannot parse" << m_filePath << "(" << d->lastError() << ")"
                       << "- values read before the damage apply";
    m_fileState = FileState::Damaged;
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
        saveOwnFile();
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
