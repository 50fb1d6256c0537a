#pragma once

#include <QStringList>

class CliContext;

// "corvida-cli verdict": the operator accepts or rejects cycles of a session by hand, or gives
// the decision back to the automatic rules.
class VerdictCommand
{
public:
    static QString usage()
    {
        return QStringLiteral("verdict (--accept | --reject | --automatic) RECORD...");
    }
    static int run(const QStringList &arguments, CliContext &context);
};
