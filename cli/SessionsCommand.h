#pragma once

#include <QStringList>

class CliContext;

// "corvida-cli sessions": the sessions found in the records folder, each with its result.
class SessionsCommand
{
public:
    static QString usage() { return QStringLiteral("sessions [--rodent TEXT] [--json]"); }
    static int run(const QStringList &arguments, CliContext &context);
};
