#include "support/ExpFile.h"

#include <QFile>
#include <QXmlStreamReader>

QMap<QString, QString> ExpFile::values(const QString &path)
{
    QMap<QString, QString> values;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return values;
    QXmlStreamReader xml(&file);
    if (!xml.readNextStartElement())
        return values;
    while (xml.readNextStartElement())
        values.insert(xml.name().toString(),
                      xml.readElementText(QXmlStreamReader::SkipChildElements));
    return values;
}
