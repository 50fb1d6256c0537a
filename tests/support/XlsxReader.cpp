#include "support/XlsxReader.h"

#include <QFile>
#include <QJsonDocument>
#include <QProcess>

namespace {
const char *kPython = "/usr/bin/python3";
const char *kScript = R"(
import json, sys, openpyxl
wb = openpyxl.load_workbook(sys.argv[1])
out = []
for ws in wb.worksheets:
    rows = [[c for c in row] for row in ws.iter_rows(values_only=True)]
    comments = {}
    for row in ws.iter_rows():
        for c in row:
            if c.comment is not None:
                comments[c.coordinate] = c.comment.text
    width = ws.column_dimensions["A"].width if "A" in ws.column_dimensions else None
    out.append({"name": ws.title, "rows": rows, "comments": comments, "widthA": width})
# A date cell comes back as {"datetime": "2026-11-21T10:00:00"}, apart from texts.
json.dump(out, sys.stdout, default=lambda o: {"datetime": o.isoformat()})
)";
} // namespace

bool XlsxReader::available()
{
    if (!QFile::exists(QString::fromLatin1(kPython)))
        return false;
    return QProcess::execute(QString::fromLatin1(kPython),
                             {QStringLiteral("-c"), QStringLiteral("import openpyxl")}) == 0;
}

QJsonArray XlsxReader::read(const QString &path, QString *error)
{
    QProcess p;
    p.start(QString::fromLatin1(kPython), {QStringLiteral("-c"), QString::fromUtf8(kScript), path});
    if (!p.waitForFinished(120000) || p.exitCode() != 0) {
        if (error)
            *error = QString::fromUtf8(p.readAllStandardError());
        return {};
    }
    return QJsonDocument::fromJson(p.readAllStandardOutput()).array();
}
