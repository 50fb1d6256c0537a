#pragma once

#include <QStringList>

class CliContext;

// "corvida-cli list": the records folder as the records page lists it.
class ListCommand
{
public:
    static QString usage() { return QStringLiteral("list"); }
    static int run(const QStringList &arguments, CliContext &context);
};
