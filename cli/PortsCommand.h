#pragma once

#include <QStringList>

class CliContext;

// "corvida-cli ports": the serial ports, and which of them the program would take as a unit.
class PortsCommand
{
public:
    static QString usage() { return QStringLiteral("ports"); }
    static int run(const QStringList &arguments, CliContext &context);
};
