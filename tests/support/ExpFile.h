#pragma once

#include <QMap>
#include <QString>

// The properties of a record's ".exp" file as a plain XML reader sees them, name to text, so a
// test checks what is on disk without the settings store that wrote it.
namespace ExpFile {
QMap<QString, QString> values(const QString &path);
} // namespace ExpFile
