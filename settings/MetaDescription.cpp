#include "settings/MetaDescription.h"

MetaDescription::MetaDescription(QObject *parent)
    : AbstractMetaDescription(parent)
{}

bool MetaDescription::set(int propertyIndex, QObject *object)
{
    if (m_notifyConnection)
        disconnect(m_notifyConnection);
    m_object = object;
    m_property = QMetaProperty();
    if (!object)
        return false;
    const QMetaObject *meta = object->metaObject();
    if (propertyIndex < 0 || propertyIndex >= meta->propertyCount())
        return false;
    m_property = meta->property(propertyIndex);
    if (!m_property.isReadable())
        return false;
    m_name = QString::fromLatin1(m_property.name());
    m_context = QByteArray(meta->className());
    m_metaType = m_property.metaType();
    m_enumerator =
        m_property.isEnumType() || m_property.isFlagType() ? m_property.enumerator() : QMetaEnum();
    m_valueSet = false;
    readHints(meta);
    interpretHints();
    if (m_property.hasNotifySignal()) {
        const int slot = staticMetaObject.indexOfSlot("valueChangedSlot()");
        m_notifyConnection = QMetaObject::connect(object, m_property.notifySignalIndex(), this,
                                                  slot, Qt::DirectConnection);
    }
    return true;
}

bool MetaDescription::isStored() const
{
    return m_property.isValid() && m_property.isStored() && m_property.isWritable() &&
           AbstractMetaDescription::isStored();
}

QVariant MetaDescription::readValue() const
{
    return m_object ? m_property.read(m_object) : QVariant();
}

bool MetaDescription::writeValue(const QVariant &value)
{
    return m_object && m_property.isWritable() && m_property.write(m_object, value);
}

QString MetaDescription::logName() const
{
    return m_object ? QString::fromLatin1(m_object->metaObject()->className()) + QLatin1Char('.') +
                          m_name
                    : m_name;
}
