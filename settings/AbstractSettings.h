#pragma once

#include <QObject>
#include <QString>

// Base of every settings object: announces which setting changed, by name, so that views and
// stores can follow any settings object without knowing its class.
class AbstractSettings : public QObject
{
    Q_OBJECT
public:
    explicit AbstractSettings(QObject *parent = nullptr);

signals:
    void propertyChanged(QString name);
};
