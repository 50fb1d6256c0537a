#pragma once

#include "settings/AbstractMetaDescriptor.h"

#include <QPointer>

// The settings of an object, read from its meta-object: one MetaDescription per property that
// the object's classes declare (QObject's own objectName is not a setting), in declaration
// order, with the object's class name as the root element of its file.
class MetaDescriptor : public AbstractMetaDescriptor
{
    Q_OBJECT
public:
    explicit MetaDescriptor(QObject *parent = nullptr);

    // Describes the object's properties. The descriptor follows the object's meta-object as it
    // is at this call, so call it once the object is fully constructed.
    void set(QObject *object);
    QObject *item() const { return m_item; }
    // The object's class name, unless another root element name was given.
    QString rootName() const override;
    void setRootOverride(const QString &name) { m_rootOverride = name; }
    void clear() override;

public slots:
    // Describes another object (or none) and announces it, for views that follow a selection.
    void setItem(QObject *object);

signals:
    void itemChanged(QObject *item);

private:
    QPointer<QObject> m_item;
    QString m_rootOverride;
};
