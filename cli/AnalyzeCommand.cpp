#include "cli/AnalyzeCommand.h"

#include "analysis/CorvidaExperiment.h"
#include "cli/CliContext.h"
#include "session/AcceptanceRules.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <cmath>

namespace {
// Numbers as the program holds them, with a point; NaN (no regular beat left) as "nan".
QString number(double v)
{
    if (std::isnan(v))
        return QStringLiteral("nan");
    return QString::number(v, 'g', QLocale::FloatingPointShortest);
}

QJsonValue jsonNumber(double v)
{
    return std::isfinite(v) ? QJsonValue(v) : QJsonValue(QJsonValue::Null);
}
} // namespace

QString AnalyzeCommand::header()
{
    return QStringLiteral("file;SBP;SBPTime;DBP;DBPTime;BPM;beats;MAP");
}

QString AnalyzeCommand::resultLine(const QString &file, CorvidaExperiment &e)
{
    return CliContext::tableLine({file, number(e.getSBP()), number(e.getSBPTime()),
                                  number(e.getDBP()), number(e.getDBPTime()), number(e.getBPM()),
                                  QString::number(e.beats().size()),
                                  number(e.meanArterialPressure())});
}

QJsonObject AnalyzeCommand::resultObject(const QString &file, CorvidaExperiment &e)
{
    return QJsonObject{{QStringLiteral("file"), file},
                       {QStringLiteral("SBP"), jsonNumber(e.getSBP())},
                       {QStringLiteral("SBPTime"), jsonNumber(e.getSBPTime())},
                       {QStringLiteral("DBP"), jsonNumber(e.getDBP())},
                       {QStringLiteral("DBPTime"), jsonNumber(e.getDBPTime())},
                       {QStringLiteral("BPM"), jsonNumber(e.getBPM())},
                       {QStringLiteral("beats"), int(e.beats().size())},
                       {QStringLiteral("MAP"), e.meanArterialPressure() > 0
                                                   ? QJsonValue(e.meanArterialPressure())
                                                   : QJsonValue(QJsonValue::Null)}};
}

int AnalyzeCommand::run(const QStringList &arguments, CliContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption reset(QStringLiteral("reset"),
                                   QStringLiteral("Forget the markers and find them anew."));
    const QCommandLineOption save(
        QStringLiteral("save"),
        QStringLiteral("Store the results in each record (.exp file and marks)."));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Print JSON."));
    parser.addOptions({reset, save, json});
    parser.addPositionalArgument(QStringLiteral("RECORD"), QStringLiteral(".edf files"));
    if (CliContext::asksForHelp(arguments))
        return context.help(usage(), &parser);
    if (!parser.parse(arguments))
        return context.fail(parser.errorText());
    const QStringList records = parser.positionalArguments();
    if (records.isEmpty())
        return context.fail(QStringLiteral("usage: corvida-cli ") + usage());

    int status = 0;
    QJsonArray results;
    if (!parser.isSet(json))
        context.out() << header() << '\n';
    for (const QString &path : records) {
        QString why;
        if (!CliContext::checkRecord(path, &why)) {
            status = context.fail(why);
            continue;
        }
        CorvidaExperiment experiment(CliContext::expPathFor(path));
        // The file named, in whatever case its name is spelt.
        experiment.setRecordingPath(path);
        // Reading wrote nothing; from here on only an explicit --save does.
        experiment.setAutoSave(false);
        experiment.recalculate(parser.isSet(reset));
        // A cycle of a session is judged again on what was found now.
        if (experiment.isSessionCycle())
            AcceptanceRules(AcceptanceRules::limitsFrom(*context.settings())).apply(experiment);
        QString error;
        if (parser.isSet(save) && !experiment.saveProperties(&error)) {
            status = context.fail(QStringLiteral("%1: %2").arg(path, error));
            continue;
        }
        if (parser.isSet(json))
            results.append(resultObject(path, experiment));
        else
            context.out() << resultLine(path, experiment) << '\n';
        context.out().flush();
    }
    if (parser.isSet(json))
        context.out() << QJsonDocument(results).toJson(QJsonDocument::Indented);
    context.out().flush();
    return status;
}
