#include "cli/SessionsCommand.h"

#include "analysis/CorvidaExperiment.h"
#include "cli/CliContext.h"
#include "session/SessionCatalog.h"
#include "storage/RecordDatabase.h"

#include <QCommandLineParser>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <cmath>

namespace {
QString cell(double v)
{
    return std::isfinite(v) ? QString::number(v, 'f', 1) : QString();
}
} // namespace

int SessionsCommand::run(const QStringList &arguments, CliContext &context)
{
    QCommandLineParser parser;
    const QCommandLineOption rodent(QStringLiteral("rodent"),
                                    QStringLiteral("Only this animal's sessions."),
                                    QStringLiteral("TEXT"));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Print JSON."));
    parser.addOptions({rodent, json});
    if (!parser.parse(arguments))
        return context.fail(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return context.fail(QStringLiteral("usage: corvida-cli ") + usage());
    if (!QDir(context.recordsFolder()).exists())
        return context.fail(QStringLiteral("%1: no records folder").arg(context.recordsFolder()));

    RecordDatabase database(context.recordsFolder(), context.settings());
    database.reload();
    const SessionStatistics statistics(SessionStatistics::limitsFrom(*context.settings()));
    QList<SessionCatalog::Session> sessions = SessionCatalog::group(database.records(), statistics);
    if (parser.isSet(rodent)) {
        const QString wanted = parser.value(rodent).trimmed();
        sessions.removeIf([&](const SessionCatalog::Session &s) {
            return s.rodent.trimmed().compare(wanted, Qt::CaseInsensitive) != 0;
        });
    }

    QTextStream &out = context.out();
    if (parser.isSet(json)) {
        QJsonArray array;
        const auto fileOf = [&](CorvidaExperiment *record) {
            return database.edfPath(database.rowOf(record));
        };
        for (const SessionCatalog::Session &s : sessions)
            array << SessionCatalog::sessionJson(s, fileOf);
        out << QJsonDocument(array).toJson(QJsonDocument::Indented);
        out.flush();
        return 0;
    }
    out << "started;unit;rodent;accepted;total;SBP;SBP SD;DBP;DBP SD;MAP;MAP SD;BPM;BPM SD;"
           "flags\n";
    for (const SessionCatalog::Session &s : sessions) {
        const SessionStatistics::Summary &m = s.summary;
        out << QStringList{s.started.toString(Qt::ISODate),
                           s.unit,
                           s.rodent,
                           QString::number(m.accepted),
                           QString::number(m.total),
                           cell(m.sbp.mean),
                           cell(m.sbp.sd),
                           cell(m.dbp.mean),
                           cell(m.dbp.sd),
                           cell(m.map.mean),
                           cell(m.map.sd),
                           cell(m.bpm.mean),
                           cell(m.bpm.sd),
                           m.flags.join(QStringLiteral(", "))}
                   .join(QLatin1Char(';'))
            << '\n';
    }
    out.flush();
    return 0;
}
