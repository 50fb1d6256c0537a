#pragma once

#include <QStringList>

class CliContext;

// "corvida-cli info": the full description of each recording file.
class InfoCommand
{
public:
    static QString usage() { return QStringLiteral("info RECORD..."); }
    static int run(const QStringList &arguments, CliContext &context);
};
