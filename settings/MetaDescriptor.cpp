#include "settings/MetaDescriptor.h"

#include "settings/MetaDescription.h"

MetaDescriptor::MetaDescriptor(QObject *parent)
    : AbstractMetaDescriptor(parent)
{}

void MetaDescriptor::set(QObject *object)
{
    clear();
    m_item = object;
    if (!object)
        return;
    const QMetaObject *meta = object->metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
        auto *d = new MetaDescription(this);
        if (d->set(i, object))
            append(d);
        else
            delete d;
    }
}

void MetaDescriptor::setItem(QObject *object)
{
    if (object == m_item && (object || m_items.isEmpty()))
        return;
    set(object);
    emit itemChanged(object);
}

QString MetaDescriptor::rootName() const
{
    if (!m_rootOverride.isEmpty())
        return m_rootOverride;
    return m_item ? QString::fromLatin1(m_item->metaObject()->className())
                  : AbstractMetaDescriptor::rootName();
}

void MetaDescriptor::clear()
{
    AbstractMetaDescriptor::clear();
    m_item = nullptr;
}
