#pragma once

#include <QStringList>

class CliContext;
struct SessionPlan;

// "corvida-cli session": a whole measurement session on one unit, acclimation and measurement
// cycles, each saved as a record; prints the cycles and the session's result.
class SessionCommand
{
public:
    static QString usage()
    {
        return QStringLiteral("session (--simulated [--animal NAME] | --port PATH) [--limits U/L] "
                              "[--acclimation N] [--cycles M] [--interval S] [--rodent TEXT] "
                              "[--comment TEXT] [--json]");
    }
    static int run(const QStringList &arguments, CliContext &context);

    // Reads the counts and the interval into the plan; false with a one-line reason.
    static bool parseCounts(const QString &acclimation, const QString &cycles,
                            const QString &interval, SessionPlan *plan, QString *why);
};
