#include "settings/AbstractMetaDescriptor.h"

#include "settings/AbstractMetaDescription.h"
#include "toolkit/FileUtilities.h"

#include <QDebug>
#include <QFile>
#include <QJsonArray>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

enum class Nesting { None, Map, List };

Nesting nestingOf(const AbstractMetaDescription *d)
{
    if (d->specialType() == QLatin1String("StringMap") ||
        d->metaType().id() == QMetaType::QVariantMap)
        return Nesting::Map;
    if (d->metaType().id() == QMetaType::QStringList)
        return Nesting::List;
    return Nesting::None;
}

// XML 1.0 cannot carry most control characters, not even escaped; one in a text would make the
// whole file unreadable, so they are dropped on writing.
QString xmlSafe(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        const ushort u = c.unicode();
        if (u >= 0x20 || u == 0x09 || u == 0x0A || u == 0x0D)
            out.append(c);
    }
    return out;
}

QJsonValue jsonValueOf(const AbstractMetaDescription *d)
{
    const QVariant value = d->getValue();
    if (d->enumerator().isValid())
        return d->textValue();
    switch (d->metaType().id()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::LongLong:
    case QMetaType::Long:
    case QMetaType::SChar:
    case QMetaType::UChar:
        return value.toLongLong();
    case QMetaType::Char:
        return int(static_cast<signed char>(value.toInt()));
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toDouble();
    case QMetaType::QVariantMap:
        return QJsonObject::fromVariantMap(value.toMap());
    case QMetaType::QStringList:
        return QJsonArray::fromStringList(value.toStringList());
    default:
        return d->textValue();
    }
}

} // namespace

AbstractMetaDescriptor::AbstractMetaDescriptor(QObject *parent)
    : QObject(parent)
{}

AbstractMetaDescriptor::~AbstractMetaDescriptor()
{
    clear();
}

AbstractMetaDescription *AbstractMetaDescriptor::at(int index) const
{
    return index >= 0 && index < m_items.size() ? m_items[index] : nullptr;
}

AbstractMetaDescription *AbstractMetaDescriptor::propertyByName(const QString &name) const
{
    for (AbstractMetaDescription *d : m_items)
        if (d->name() == name)
            return d;
    return nullptr;
}

void AbstractMetaDescriptor::append(AbstractMetaDescription *description)
{
    if (!description)
        return;
    description->setParent(this);
    m_items.append(description);
}

void AbstractMetaDescriptor::clear()
{
    qDeleteAll(m_items);
    m_items.clear();
}

bool AbstractMetaDescriptor::fail(const QString &error)
{
    m_lastError = error;
    qDebug().noquote() << "SETTINGS:" << error;
    return false;
}

void AbstractMetaDescriptor::saveXmlContent(QXmlStreamWriter &writer) const
{
    writer.writeStartElement(rootName());
    for (const AbstractMetaDescription *d : m_items) {
        if (!d->isStored())
            continue;
        switch (nestingOf(d)) {
        case Nesting::Map: {
            writer.writeStartElement(d->name());
            const QVariantMap map = d->getValue().toMap();
            for (auto it = map.cbegin(); it != map.cend(); ++it) {
                writer.writeStartElement(QStringLiteral("Entry"));
                writer.writeAttribute(QStringLiteral("key"), xmlSafe(it.key()));
                writer.writeCharacters(xmlSafe(it.value().toString()));
                writer.writeEndElement();
            }
            writer.writeEndElement();
            break;
        }
        case Nesting::List:
            writer.writeStartElement(d->name());
            for (const QString &item : d->getValue().toStringList())
                writer.writeTextElement(QStringLiteral("Item"), xmlSafe(item));
            writer.writeEndElement();
            break;
        case Nesting::None:
            writer.writeTextElement(d->name(), xmlSafe(d->textValue()));
            break;
        }
    }
    writer.writeEndElement();
}

QString AbstractMetaDescriptor::saveAsXmlString() const
{
    return QString::fromUtf8(saveAsXmlBytes());
}

QByteArray AbstractMetaDescriptor::saveAsXmlBytes() const
{
    // Written as bytes so that the declaration names the encoding the file is stored in.
    QByteArray xml;
    QXmlStreamWriter writer(&xml);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    saveXmlContent(writer);
    writer.writeEndDocument();
    return xml;
}

bool AbstractMetaDescriptor::save(const QString &filePath)
{
    QString error;
    if (!FileUtilities::writeAtomically(filePath, saveAsXmlBytes(), &error))
        return fail(QStringLiteral("cannot write %1: %2").arg(filePath, error));
    m_lastError.clear();
    return true;
}

QJsonObject AbstractMetaDescriptor::saveToJson() const
{
    QJsonObject object;
    for (const AbstractMetaDescription *d : m_items)
        if (d->isStored())
            object.insert(d->name(), jsonValueOf(d));
    return object;
}

QByteArray AbstractMetaDescriptor::saveToJsonByteArray(QJsonDocument::JsonFormat format) const
{
    return QJsonDocument(saveToJson()).toJson(format);
}

QString AbstractMetaDescriptor::saveToJsonString(QJsonDocument::JsonFormat format) const
{
    return QString::fromUtf8(saveToJsonByteArray(format));
}

bool AbstractMetaDescriptor::saveToJsonFile(const QString &filePath,
                                            QJsonDocument::JsonFormat format)
{
    QString error;
    if (!FileUtilities::writeAtomically(filePath, saveToJsonByteArray(format), &error))
        return fail(QStringLiteral("cannot write %1: %2").arg(filePath, error));
    m_lastError.clear();
    return true;
}

bool AbstractMetaDescriptor::loadXmlContent(QXmlStreamReader &reader)
{
    if (!reader.isStartElement() && !reader.readNextStartElement()) {
        if (reader.hasError())
            return fail(QStringLiteral("XML error at line %1: %2")
                            .arg(reader.lineNumber())
                            .arg(reader.errorString()));
        return fail(QStringLiteral("no settings element found"));
    }
    if (reader.name() != rootName())
        qDebug().noquote() << "SETTINGS: root element" << reader.name().toString() << "where"
                           << rootName() << "was expected; reading its settings";
    while (reader.readNextStartElement()) {
        const QString name = reader.name().toString();
        AbstractMetaDescription *d = propertyByName(name);
        if (!d) {
            qDebug().noquote() << "SETTINGS: unknown element" << name << "in" << rootName()
                               << "at line" << reader.lineNumber() << "ignored";
            reader.skipCurrentElement();
            continue;
        }
        switch (nestingOf(d)) {
        case Nesting::Map: {
            QVariantMap map;
            while (reader.readNextStartElement()) {
                if (reader.name() == QLatin1String("Entry")) {
                    const QString key = reader.attributes().value(QLatin1String("key")).toString();
                    map.insert(key, reader.readElementText(QXmlStreamReader::SkipChildElements));
                } else {
                    qDebug().noquote() << "SETTINGS: unknown element" << reader.name().toString()
                                       << "inside" << name << "ignored";
                    reader.skipCurrentElement();
                }
            }
            d->setValue(map);
            break;
        }
        case Nesting::List: {
            QStringList list;
            while (reader.readNextStartElement()) {
                if (reader.name() == QLatin1String("Item")) {
                    list.append(reader.readElementText(QXmlStreamReader::SkipChildElements));
                } else {
                    qDebug().noquote() << "SETTINGS: unknown element" << reader.name().toString()
                                       << "inside" << name << "ignored";
                    reader.skipCurrentElement();
                }
            }
            d->setValue(list);
            break;
        }
        case Nesting::None:
            d->setTextValue(reader.readElementText(QXmlStreamReader::SkipChildElements));
            break;
        }
    }
    if (reader.hasError())
        return fail(QStringLiteral("XML error at line %1: %2")
                        .arg(reader.lineNumber())
                        .arg(reader.errorString()));
    m_lastError.clear();
    return true;
}

bool AbstractMetaDescriptor::readXmlDocument(QXmlStreamReader &reader, const QString &source)
{
    if (!loadXmlContent(reader)) {
        m_lastError = source + QStringLiteral(": ") + m_lastError;
        return false;
    }
    // Whatever follows the root element must still be well-formed; junk there means the file was
    // damaged, and the caller should know even though the settings themselves were read.
    while (!reader.atEnd())
        reader.readNext();
    if (reader.hasError())
        return fail(QStringLiteral("%1: XML error at line %2: %3")
                        .arg(source)
                        .arg(reader.lineNumber())
                        .arg(reader.errorString()));
    return true;
}

bool AbstractMetaDescriptor::loadFromXmlString(const QString &xml)
{
    QXmlStreamReader reader(xml);
    return readXmlDocument(reader, QStringLiteral("XML text"));
}

bool AbstractMetaDescriptor::load(const QString &filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot open %1: %2").arg(filePath, file.errorString()));
    QXmlStreamReader reader(file.readAll());
    return readXmlDocument(reader, filePath);
}

bool AbstractMetaDescriptor::loadFromJson(const QJsonObject &object)
{
    if (object.isEmpty())
        return fail(QStringLiteral("JSON object is empty"));
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        AbstractMetaDescription *d = propertyByName(it.key());
        if (!d) {
            qDebug().noquote() << "SETTINGS: unknown key" << it.key() << "in" << rootName()
                               << "ignored";
            continue;
        }
        if (it.value().isString())
            d->setTextValue(it.value().toString());
        else
            d->setValue(it.value().toVariant());
    }
    m_lastError.clear();
    return true;
}

bool AbstractMetaDescriptor::loadFromJsonByteArray(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(json, &error);
    if (doc.isNull())
        return fail(QStringLiteral("Failed to create JSON doc."));
    if (!doc.isObject())
        return fail(QStringLiteral("JSON is not an object."));
    return loadFromJson(doc.object());
}

bool AbstractMetaDescriptor::loadFromJsonString(const QString &json)
{
    return loadFromJsonByteArray(json.toUtf8());
}

bool AbstractMetaDescriptor::loadFromJsonFile(const QString &filePath)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot open %1: %2").arg(filePath, file.errorString()));
    return loadFromJsonByteArray(file.readAll());
}

bool AbstractMetaDescriptor::loadFromQVariantMap(const QVariantMap &map)
{
    for (auto it = map.cbegin(); it != map.cend(); ++it) {
        AbstractMetaDescription *d = propertyByName(it.key());
        if (d)
            d->setValue(it.value());
        else
            qDebug().noquote() << "SETTINGS: unknown key" << it.key() << "in" << rootName()
                               << "ignored";
    }
    return true;
}

QVariantMap AbstractMetaDescriptor::getQVariantMap() const
{
    QVariantMap map;
    for (const AbstractMetaDescription *d : m_items)
        if (d->isStored())
            map.insert(d->name(), d->getValue());
    return map;
}

QList<QPair<QString, QString>> AbstractMetaDescriptor::getPropertiesNameAndType() const
{
    QList<QPair<QString, QString>> list;
    for (const AbstractMetaDescription *d : m_items)
        list.append({d->name(), QString::fromLatin1(d->metaType().name())});
    return list;
}

QStringList AbstractMetaDescriptor::names() const
{
    QStringList list;
    for (const AbstractMetaDescription *d : m_items)
        list.append(d->name());
    return list;
}

void AbstractMetaDescriptor::defaults()
{
    for (AbstractMetaDescription *d : m_items)
        if (!d->noDefault() && d->hasDefault())
            d->resetValue();
}

QVariantMap AbstractMetaDescriptor::defaultValues() const
{
    QVariantMap map;
    for (const AbstractMetaDescription *d : m_items)
        if (d->hasDefault())
            map.insert(d->name(), d->defaultValue());
    return map;
}

bool AbstractMetaDescriptor::setTextValue(const QString &name, const QString &text)
{
    AbstractMetaDescription *d = propertyByName(name);
    return d && d->setTextValue(text);
}

bool AbstractMetaDescriptor::setValue(const QString &name, const QVariant &value)
{
    AbstractMetaDescription *d = propertyByName(name);
    return d && d->setValue(value);
}
