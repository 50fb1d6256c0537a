#pragma once

#include <QJsonObject>
#include <QStringList>

class CliContext;

// "corvida-cli simulate": one measurement cycle of a simulated animal, saved as a record pair
// (FILE.edf and FILE.exp) like a measured one, and its truth printed as JSON.
class SimulateCommand
{
public:
    static QString usage()
    {
        return QStringLiteral("simulate --animal mouse|rat|hypertensive-rat [--condition NAME] "
                              "[--seed N] --out FILE.edf");
    }
    static int run(const QStringList &arguments, CliContext &context);
};
