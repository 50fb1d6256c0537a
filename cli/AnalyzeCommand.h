#pragma once

#include <QJsonObject>
#include <QStringList>

class CliContext;
class CorvidaExperiment;

// "corvida-cli analyze": recalculates records and prints their results, one line each.
class AnalyzeCommand
{
public:
    static QString usage()
    {
        return QStringLiteral(
            "analyze [--reset] [--save] [--json] [--method documented|refined] RECORD...");
    }
    static int run(const QStringList &arguments, CliContext &context);

    // "file;SBP;SBPTime;DBP;DBPTime;BPM;beats;MAP" and one record's line of it.
    static QString header();
    static QString resultLine(const QString &file, CorvidaExperiment &experiment);
    static QJsonObject resultObject(const QString &file, CorvidaExperiment &experiment);
};
