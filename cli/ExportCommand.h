#pragma once

#include <QStringList>

class CliContext;

// "corvida-cli export": the records page's spreadsheet export.
class ExportCommand
{
public:
    static QString usage()
    {
        return QStringLiteral("export (--essential|--full) --out FILE.xlsx|FILE.csv RECORD...");
    }
    static int run(const QStringList &arguments, CliContext &context);
};
