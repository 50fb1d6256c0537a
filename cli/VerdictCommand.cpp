#include "cli/VerdictCommand.h"

#include "analysis/CorvidaExperiment.h"
#include "cli/CliContext.h"

#include <QCommandLineParser>

int VerdictCommand::run(const QStringList &arguments, CliContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption accept(QStringLiteral("accept"), QStringLiteral("Accept."));
    const QCommandLineOption reject(QStringLiteral("reject"), QStringLiteral("Reject."));
    const QCommandLineOption automatic(QStringLiteral("automatic"),
                                       QStringLiteral("Leave it to the rules."));
    parser.addOptions({accept, reject, automatic});
    if (!parser.parse(arguments))
        return context.fail(parser.errorText());
    const int chosen =
        int(parser.isSet(accept)) + int(parser.isSet(reject)) + int(parser.isSet(automatic));
    if (chosen != 1 || parser.positionalArguments().isEmpty())
        return context.fail(QStringLiteral("usage: corvida-cli ") + usage());
    const qint32 verdict = parser.isSet(accept)   ? CorvidaExperiment::VerdictAccepted
                           : parser.isSet(reject) ? CorvidaExperiment::VerdictRejected
                                                  : CorvidaExperiment::VerdictAutomatic;

    int status = 0;
    context.out() << "file;accepted;reason\n";
    for (const QString &path : parser.positionalArguments()) {
        QString why;
        if (!CliContext::checkRecord(path, &why)) {
            status = context.fail(why);
            continue;
        }
        CorvidaExperiment record(CliContext::expPathFor(path));
        record.setAutoSave(false);
        if (!record.isSessionCycle()) {
            status = context.fail(QStringLiteral("%1: not a cycle of a session").arg(path));
            continue;
        }
        record.setVerdict(verdict);
        if (!record.saveProperties()) {
            status = context.fail(
                QStringLiteral("%1: cannot write %2").arg(path, CliContext::expPathFor(path)));
            continue;
        }
        context.out() << path << ';' << (record.isAccepted() ? "yes" : "no") << ';'
                      << record.verdictText() << '\n';
    }
    context.out().flush();
    return status;
}
