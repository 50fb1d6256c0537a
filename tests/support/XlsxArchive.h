#pragma once

#include <QByteArray>
#include <QString>

// One member of an XLSX file (a zip archive) as stored, read with Python's own zip module, so a
// test can look at the sheet XML a spreadsheet program would see.
namespace XlsxArchive {
QByteArray member(const QString &path, const QString &name, QString *error = nullptr);
} // namespace XlsxArchive
