#include "cli/RecoverCommand.h"

#include "cli/CliContext.h"
#include "storage/RecordDatabase.h"

int RecoverCommand::run(const QStringList &arguments, CliContext &context)
{
    const QStringList files = arguments.mid(1);
    if (files.isEmpty())
        return context.fail(QStringLiteral("usage: corvida-cli ") + usage());
    RecordDatabase database(context.recordsFolder());
    int status = 0;
    for (const QString &path : files) {
        QString recovered;
        QString error;
        if (!database.recoverUnfinished(path, &recovered, &error)) {
            status = context.fail(QStringLiteral("%1: %2").arg(path, error));
            continue;
        }
        // The new name, for a script to go on with (analyze, export).
        context.out() << recovered << '\n';
        context.out().flush();
    }
    return status;
}
