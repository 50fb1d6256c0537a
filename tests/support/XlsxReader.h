#pragma once

#include <QJsonArray>
#include <QString>

// Reads an XLSX workbook with an independent reader (openpyxl under Debian's own Python) and
// returns it as [{ "name": ..., "rows": [[cell, ...], ...], "comments": {"A1": text} }, ...].
// Numbers come back as JSON numbers and texts as JSON strings, so a test can tell them apart.
namespace XlsxReader {
bool available();
QJsonArray read(const QString &path, QString *error = nullptr);
} // namespace XlsxReader
