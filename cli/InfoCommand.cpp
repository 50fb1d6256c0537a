#include "cli/InfoCommand.h"

#include "cli/CliContext.h"
#include "storage/EDFReader.h"

#include <QFileInfo>

int InfoCommand::run(const QStringList &arguments, CliContext &context)
{
    if (CliContext::asksForHelp(arguments))
        return context.help(usage());
    const QStringList files = arguments.mid(1);
    if (files.isEmpty())
        return context.fail(QStringLiteral("usage: corvida-cli ") + usage());
    int status = 0;
    for (const QString &path : files) {
        if (!QFileInfo::exists(path)) {
            status = context.fail(QStringLiteral("%1: no such file").arg(path));
            continue;
        }
        EDFReader reader(path);
        if (!reader.open()) {
            status = context.fail(QStringLiteral("%1: not an EDF+ file").arg(path));
            continue;
        }
        if (files.size() > 1)
            context.out() << "== " << path << '\n';
        context.out() << reader.infoFull() << '\n';
        context.out().flush();
    }
    return status;
}
