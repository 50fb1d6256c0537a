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
    QJsonObject o{
        {QStringLiteral("file"), file},
        {QStringLiteral("SBP"), jsonNumber(e.getSBP())},
        {QStringLiteral("SBPTime"), jsonNumber(e.getSBPTime())},
        {QStringLiteral("DBP"), jsonNumber(e.getDBP())},
        {QStringLiteral("DBPTime"), jsonNumber(e.getDBPTime())},
        {QStringLiteral("BPM"), jsonNumber(e.getBPM())},
        {QStringLiteral("beats"), int(e.beats().size())},
        {QStringLiteral("MAP"), e.meanArterialPressure() > 0 ? QJsonValue(e.meanArterialPressure())
                                                             : QJsonValue(QJsonValue::Null)},
        {QStringLiteral("method"), e.usesRefinedMethod() ? CorvidaExperiment::refinedMethod()
                                                         : QStringLiteral("documented")}};
    // Why no markers were placed, when the refined way found no pulse.
    if (!e.detectionNote().isEmpty())
        o.insert(QStringLiteral("reason"), e.detectionNote());
    return o;
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
    const QCommandLineOption method(
        QStringLiteral("method"),
        QStringLiteral("How the markers are found: documented or refined. Changes the record's "
                       "own way; with --reset the markers are found anew that way."),
        QStringLiteral("NAME"));
    parser.addOptions({reset, save, json, method});
    parser.addPositionalArgument(QStringLiteral("RECORD"), QStringLiteral(".edf files"));
    if (CliContext::asksForHelp(arguments))
        return context.help(usage(), &parser);
    if (!parser.parse(arguments))
        return context.fail(parser.errorText());
    const QString methodName = parser.value(method);
    if (parser.isSet(method) && methodName != QLatin1String("documented") &&
        methodName != CorvidaExperiment::refinedMethod())
        return context.fail(
            QStringLiteral("unknown method \"%1\"; use documented or refined").arg(methodName));
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
        if (parser.isSet(method))
            experiment.setMethod(methodName == QLatin1String("documented") ? QString()
                                                                           : methodName);
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
