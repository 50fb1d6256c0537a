#pragma once

#include "settings/AbstractSettings.h"

#include <QJsonArray>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

class AbstractMetaDescription;
class MetaDescriptor;

// A settings object backed by a file. Subclasses declare their settings as properties with
// hints in class-information entries (see AbstractMetaDescription) and follow one pattern in
// every setter: compare, store, emit the property's change signal, then call
// changedProperty(name). With automatic saving on, that writes the whole object to its file.
//
// The descriptions are built on first use from the object's most derived meta-object, so a
// subclass constructor may call loadDefaults() and reload() once its own members are set up.
class VTSettings : public AbstractSettings
{
    Q_OBJECT
public:
    enum VTSettingsFormat { XML = 0, JSON = 1 };
    Q_ENUM(VTSettingsFormat)

    // What the last reading of the file found.
    enum class FileState {
        Read,       // read whole, or nothing read yet
        Missing,    // no file yet: the current values stay and the first save creates it
        Unreadable, // there, but it may not be read: it is never written over
        Damaged     // read up to the damage; kept aside before the first save replaces it
    };
    Q_ENUM(FileState)

    explicit VTSettings(const QString &filePath = QString(), bool autoSave = true,
                        QObject *parent = nullptr, VTSettingsFormat format = XML);
    ~VTSettings() override;

    bool getAutoSave() const { return m_autoSave; }
    void setAutoSave(bool autoSave) { m_autoSave = autoSave; }
    QString getFilepath() const { return m_filePath; }
    void setFilepath(const QString &filePath);
    VTSettingsFormat getFormat() const { return m_format; }
    void setFormat(VTSettingsFormat format) { m_format = format; }

    // Writes the whole object to its file and emits saved. False with an empty path or when
    // the file cannot be written (the previous file then stays as it was). A file that could
    // not be read is never written over; a damaged one is first kept aside (see keptCopy).
    bool save();
    // Writes the whole object to another file; the object's own path does not change.
    bool saveAs(const QString &filePath);
    // Reads the file over the current values without writing anything. A missing or unreadable
    // file leaves everything as it is; a damaged one gives the values read before the damage.
    // See fileState(). False only with an empty path.
    bool reload();
    FileState fileState() const { return m_fileState; }
    // The copy a damaged file was kept as when it was first saved over; empty until then.
    QString keptCopy() const { return m_keptCopy; }
    // Whether the last attempt to write the file failed (cleared by the next good save).
    bool lastSaveFailed() const { return m_lastSaveFailed; }
    // Gives every setting its default (settings with NoDefault keep their value). Does not
    // write the file.
    void loadDefaults();
    bool isReloading() const { return m_reloading > 0; }

    QVariant getValue(const QString &name) const;
    bool setValue(const QString &name, const QVariant &value);
    QString getTextValue(const QString &name) const;
    bool setTextValue(const QString &name, const QString &text);
    bool resetValue(const QString &name);

    QStringList getPropertiesNames() const;
    AbstractMetaDescription *getPropertyByName(const QString &name) const;
    bool containsProperty(const QString &name) const;
    // Whether a NoDefault setting has been given a value (always true for the others).
    bool isPropertySet(const QString &name) const;
    // NotVisible, and the VisibleBound rule against the current value of the named setting.
    bool isPropertyVisible(const QString &name) const;

    // The description of one setting for an editor (AbstractMetaDescription::capabilities plus
    // "visible"), all settings in declaration order, and the same as JSON.
    QVariantMap getPropertyCapabilities(const QString &name) const;
    QVariantList getAllCapabilities() const;
    QJsonArray getAllCapabilitiesJson() const;

    QString getClassName() const;
    MetaDescriptor *descriptor() const;

signals:
    void reloaded();
    void saved();
    void filePathChanged(QString filePath);
    // Writing the file failed (or was refused to protect a file that could not be read).
    void saveFailed(QString filePath);

protected slots:
    // Every property change reaches the store here.
    void changedProperty(const QString &name);

protected:
    // Name of the file's root element: the class name. A subclass that only adds behaviour (a
    // record while it is being recorded, say) can keep its base's name, so the files of both
    // read the same.
    virtual QString rootElementName() const { return getClassName(); }

private:
    bool readFile();
    // saveAs(m_filePath) with the protection of a file that could not be read.
    bool saveOwnFile();

    QString m_filePath;
    bool m_autoSave = true;
    VTSettingsFormat m_format = XML;
    int m_reloading = 0;
    FileState m_fileState = FileState::Read;
    QString m_keptCopy;
    bool m_lastSaveFailed = false;
    mutable MetaDescriptor *m_descriptor = nullptr;
    mutable const QMetaObject *m_describedMeta = nullptr;
};
