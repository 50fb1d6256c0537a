#include "cli/ListCommand.h"

#include "cli/CliContext.h"
#include "storage/RecordDatabase.h"

#include <QDir>

int ListCommand::run(const QStringList &arguments, CliContext &context)
{
    if (CliContext::asksForHelp(arguments))
        return context.help(usage());
    if (arguments.size() > 1)
        return context.fail(QStringLiteral("list takes no arguments"));
    if (!QDir(context.recordsFolder()).exists())
        return context.fail(QStringLiteral("%1: no records folder").arg(context.recordsFolder()));
    RecordDatabase database(context.recordsFolder(), context.settings());
    database.reload();
    // The page's columns up to the heart rate (scripts read these lines; "analyze" tells the
    // method), then the file and what is wrong with it, if anything.
    constexpr int kColumns = RecordDatabase::MethodColumn;
    context.out() << RecordDatabase::columnHeaders().mid(0, kColumns).join(QLatin1Char(';'))
                  << ";file;problem\n";
    for (int row = 0; row < database.count(); ++row) {
        QStringList cells;
        for (int column = 0; column < kColumns; ++column)
            cells << database.text(row, column);
        cells << database.edfPath(row) << database.damageText(row);
        context.out() << CliContext::tableLine(cells) << '\n';
    }
    context.out().flush();
    return 0;
}
