#include "cli/ExportCommand.h"

#include "analysis/CorvidaExperiment.h"
#include "cli/CliContext.h"
#include "session/SessionCatalog.h"
#include "storage/RecordExport.h"

#include <QCommandLineParser>
#include <memory>
#include <vector>

int ExportCommand::run(const QStringList &arguments, CliContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption essential(QStringLiteral("essential"),
                                       QStringLiteral("The results only."));
    const QCommandLineOption full(QStringLiteral("full"), QStringLiteral("Results and samples."));
    const QCommandLineOption out(QStringLiteral("out"), QStringLiteral("The file to write."),
                                 QStringLiteral("FILE"));
    parser.addOptions({essential, full, out});
    if (CliContext::asksForHelp(arguments))
        return context.help(usage(), &parser);
    if (!parser.parse(arguments))
        return context.fail(parser.errorText());
    if (parser.isSet(essential) == parser.isSet(full))
        return context.fail(QStringLiteral("choose --essential or --full"));
    const QString path = parser.value(out);
    const bool csv = path.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive);
    if (!csv && !path.endsWith(QLatin1String(".xlsx"), Qt::CaseInsensitive))
        return context.fail(QStringLiteral("--out wants a file ending in .xlsx or .csv"));
    if (parser.positionalArguments().isEmpty())
        return context.fail(QStringLiteral("usage: corvida-cli ") + usage());

    // The same four choices the export dialog offers, in its order.
    const QString filter =
        RecordExport::filters().value((parser.isSet(full) ? 2 : 0) + (csv ? 1 : 0));
    std::vector<std::unique_ptr<CorvidaExperiment>> owned;
    QList<CorvidaExperiment *> records;
    for (const QString &edf : parser.positionalArguments()) {
        QString why;
        if (!CliContext::checkRecord(edf, &why))
            return context.fail(why);
        owned.push_back(std::make_unique<CorvidaExperiment>(CliContext::expPathFor(edf)));
        owned.back()->setAutoSave(false); // exporting never changes a record
        owned.back()->setRecordingPath(edf);
        records << owned.back().get();
    }
    // Records measured in sessions bring their sessions' results along.
    const QList<XLSXSheet> extra = SessionCatalog::exportSheets(
        records, SessionStatistics(SessionStatistics::limitsFrom(*context.settings())));
    QString error;
    if (RecordExport::write(records, path, filter, &error, {}, extra) !=
        RecordExport::Result::Written)
        return context.fail(error.isEmpty() ? RecordExport::errorText(path) : error);
    context.out() << path << '\n';
    context.out().flush();
    return 0;
}
