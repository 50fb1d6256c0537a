#pragma once

#include "settings/AbstractMetaDescription.h"

#include <QMetaProperty>
#include <QPointer>

// A setting that is a property of an object: the value lives in the object and is read and
// written through the meta-object, so the object's own setter (with its change signal) runs.
class MetaDescription : public AbstractMetaDescription
{
    Q_OBJECT
public:
    explicit MetaDescription(QObject *parent = nullptr);

    // Binds to the property with the given index of the object's meta-object and reads that
    // property's hints. False when the index names no readable property.
    bool set(int propertyIndex, QObject *object);

    QObject *object() const { return m_object; }
    QMetaProperty metaProperty() const { return m_property; }
    bool isStored() const override;

protected:
    QVariant readValue() const override;
    bool writeValue(const QVariant &value) override;
    QString logName() const override;

private:
    QPointer<QObject> m_object;
    QMetaProperty m_property;
    QMetaObject::Connection m_notifyConnection;
};
