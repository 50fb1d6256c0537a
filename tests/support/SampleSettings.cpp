#include "SampleSettings.h"

#include <QMetaProperty>

SampleSettings::SampleSettings(const QString &filePath, bool autoSave, VTSettingsFormat format)
    : SettingsWithLanguage(filePath, autoSave, nullptr, format)
{
    const QMetaObject *meta = metaObject();
    const int slot = meta->indexOfSlot("anyPropertyChanged()");
    for (int i = SettingsWithLanguage::staticMetaObject.propertyCount(); i < meta->propertyCount();
         ++i)
        QMetaObject::connect(this, meta->property(i).notifySignalIndex(), this, slot);
}

void SampleSettings::anyPropertyChanged()
{
    const QMetaObject *meta = metaObject();
    for (int i = 0; i < meta->propertyCount(); ++i)
        if (meta->property(i).notifySignalIndex() == senderSignalIndex())
            changedProperty(QString::fromLatin1(meta->property(i).name()));
}
