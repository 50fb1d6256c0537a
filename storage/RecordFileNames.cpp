#include "storage/RecordFileNames.h"

#include <QDir>

QSet<QString> RecordFileNames::takenNames(const QString &folder)
{
    QSet<QString> taken;
    for (const QString &name : QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System))
        taken.insert(name.toLower());
    return taken;
}

QString RecordFileNames::freeBaseName(const QSet<QString> &takenLowerCase, const QString &base)
{
    // A ".exp" file without its recording still holds a name: it may be someone's, and a
    // ".edf.part" file may be the only copy of a measurement whose save was cut short.
    const auto isTaken = [&takenLowerCase](const QString &candidate) {
        const QString lower = candidate.toLower();
        for (const QString &suffix : {edfSuffix(), expSuffix(), partSuffix()})
            if (takenLowerCase.contains(lower + suffix))
                return true;
        return false;
    };
    QString name = base;
    for (int n = 2; isTaken(name); ++n)
        name = base + QStringLiteral(" (%1)").arg(n);
    return name;
}

void RecordFileNames::take(QSet<QString> &takenLowerCase, const QString &base)
{
    const QString lower = base.toLower();
    for (const QString &suffix : {edfSuffix(), expSuffix(), partSuffix()})
        takenLowerCase.insert(lower + suffix);
}
