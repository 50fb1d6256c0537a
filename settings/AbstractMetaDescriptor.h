#pragma once

#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QPair>
#include <QStringList>
#include <QVariantMap>

class AbstractMetaDescription;
class QXmlStreamReader;
class QXmlStreamWriter;

// The settings of one object as a list of descriptions, in declaration order, and their files.
//
// XML: one root element named rootName(), one child element per stored setting holding its
// text value. Maps are written as nested <Entry key="...">value</Entry> elements and text
// lists as nested <Item> elements, so that a person can read and diff the file.
// JSON: one object of setting name to value.
//
// Reading is forgiving, because files outlive program versions: an unknown element, a value that
// does not fit and a different root element each cost one log line and nothing else; the
// affected setting keeps its value and the rest of the file loads. Only a file that is not
// well-formed (or not a JSON object) makes loading fail.
class AbstractMetaDescriptor : public QObject
{
    Q_OBJECT
public:
    explicit AbstractMetaDescriptor(QObject *parent = nullptr);
    ~AbstractMetaDescriptor() override;

    int count() const { return int(m_items.size()); }
    AbstractMetaDescription *at(int index) const;
    AbstractMetaDescription *propertyByName(const QString &name) const;
    // Takes ownership.
    void append(AbstractMetaDescription *description);
    virtual void clear();

    virtual QString rootName() const { return m_rootName; }
    void setRootName(const QString &name) { m_rootName = name; }

    // Writes the XML form atomically; an interrupted save leaves the previous file.
    bool save(const QString &filePath);
    bool saveToJsonFile(const QString &filePath,
                        QJsonDocument::JsonFormat format = QJsonDocument::Indented);
    QString saveAsXmlString() const;
    QByteArray saveAsXmlBytes() const;
    void saveXmlContent(QXmlStreamWriter &writer) const;
    QJsonObject saveToJson() const;
    QString saveToJsonString(QJsonDocument::JsonFormat format = QJsonDocument::Indented) const;
    QByteArray
    saveToJsonByteArray(QJsonDocument::JsonFormat format = QJsonDocument::Indented) const;

    bool load(const QString &filePath);
    bool loadFromXmlString(const QString &xml);
    // Reads one settings element (the root, or an element inside a larger document) from the
    // reader's position; stops at its end element.
    bool loadXmlContent(QXmlStreamReader &reader);
    bool loadFromJson(const QJsonObject &object);
    bool loadFromJsonString(const QString &json);
    bool loadFromJsonByteArray(const QByteArray &json);
    bool loadFromJsonFile(const QString &filePath);
    bool loadFromQVariantMap(const QVariantMap &map);

    // Stored settings by name.
    QVariantMap getQVariantMap() const;
    // (name, type name) of every description, in order.
    QList<QPair<QString, QString>> getPropertiesNameAndType() const;
    QStringList names() const;
    // Gives every setting that has a default and no NoDefault hint its default value.
    void defaults();
    QVariantMap defaultValues() const;
    bool setTextValue(const QString &name, const QString &text);
    bool setValue(const QString &name, const QVariant &value);

    // Why the last load or save failed; empty after success.
    QString lastError() const { return m_lastError; }

protected:
    bool fail(const QString &error);
    bool readXmlDocument(QXmlStreamReader &reader, const QString &source);

    QList<AbstractMetaDescription *> m_items;
    QString m_rootName = QStringLiteral("Settings");
    QString m_lastError;
};
