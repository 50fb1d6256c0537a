#include "session/SessionCatalog.h"

#include "analysis/CorvidaExperiment.h"
#include "toolkit/GenericText.h"

#include <QCoreApplication>
#include <QHash>
#include <QJsonArray>
#include <algorithm>
#include <cmath>

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("SessionCatalog", text);
}

// A value for a sheet cell: the number, or an empty cell where there is none.
QVariant cell(double v)
{
    return std::isfinite(v) ? QVariant(v) : QVariant(QString());
}

QJsonValue pressure(double v)
{
    return v > 0 ? SessionStatistics::jsonNumber(v) : QJsonValue(QJsonValue::Null);
}
} // namespace

QDateTime SessionCatalog::startOf(const QString &sessionId)
{
    return QDateTime::fromString(sessionId.section(QLatin1Char(' '), 0, 0), Qt::ISODate);
}

QList<SessionCatalog::Session> SessionCatalog::group(const QList<CorvidaExperiment *> &records,
                                                     const SessionStatistics &statistics)
{
    QList<Session> sessions;
    QHash<QString, qsizetype> byId;
    for (CorvidaExperiment *record : records) {
        if (!record || !record->isSessionCycle())
            continue;
        const QString id = record->getSession();
        auto found = byId.constFind(id);
        if (found == byId.constEnd()) {
            Session s;
            s.id = id;
            s.started = startOf(id);
            s.unit = id.section(QLatin1Char(' '), 1);
            found = byId.insert(id, sessions.size());
            sessions << s;
        }
        sessions[*found].cycles << record;
    }
    for (Session &s : sessions) {
        std::stable_sort(s.cycles.begin(), s.cycles.end(),
                         [](const CorvidaExperiment *a, const CorvidaExperiment *b) {
                             return a->getCycle() < b->getCycle();
                         });
        QList<SessionStatistics::Cycle> cycles;
        for (const CorvidaExperiment *record : s.cycles) {
            cycles << SessionStatistics::Cycle::of(*record);
            s.planned = std::max(s.planned, int(record->getPlanned()));
            if (s.rodent.isEmpty())
                s.rodent = record->getRodent();
            if (s.unit.isEmpty())
                s.unit = record->getSN();
        }
        s.summary = statistics.summarize(cycles, s.planned);
    }
    std::stable_sort(sessions.begin(), sessions.end(), [](const Session &a, const Session &b) {
        return a.started < b.started || (a.started == b.started && a.id < b.id);
    });
    return sessions;
}

QString SessionCatalog::sheetName()
{
    return tr("Sessions");
}

QList<XLSXSheet> SessionCatalog::exportSheets(const QList<CorvidaExperiment *> &records,
                                              const SessionStatistics &statistics)
{
    const QList<Session> sessions = group(records, statistics);
    if (sessions.isEmpty())
        return {};
    return {XLSXSheet(sheetName(), sessionsTable(sessions))};
}

XLSXTable SessionCatalog::sessionsTable(const QList<Session> &sessions)
{
    const QString sd = tr("SD");
    const QString sbp = genericText(QT_TRANSLATE_NOOP("Generic", "SBP"));
    const QString dbp = genericText(QT_TRANSLATE_NOOP("Generic", "DBP"));
    const QString map = tr("MAP");
    const QString rate = tr("Heart rate");
    XLSXTable table;
    table << QList<QVariant>{genericText(QT_TRANSLATE_NOOP("Generic", "Rodent")),
                             tr("Date"),
                             tr("Unit"),
                             tr("Accepted"),
                             sbp,
                             sbp + QLatin1Char(' ') + sd,
                             dbp,
                             dbp + QLatin1Char(' ') + sd,
                             map,
                             map + QLatin1Char(' ') + sd,
                             rate,
                             rate + QLatin1Char(' ') + sd,
                             tr("Flag")};
    for (const Session &s : sessions) {
        const SessionStatistics::Summary &m = s.summary;
        table << QList<QVariant>{s.rodent,
                                 s.started.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")),
                                 s.unit,
                                 QStringLiteral("%1/%2").arg(m.accepted).arg(m.total),
                                 cell(m.sbp.mean),
                                 cell(m.sbp.sd),
                                 cell(m.dbp.mean),
                                 cell(m.dbp.sd),
                                 cell(m.map.mean),
                                 cell(m.map.sd),
                                 cell(m.bpm.mean),
                                 cell(m.bpm.sd),
                                 m.flags.join(QStringLiteral("; "))};
    }
    return table;
}

QJsonObject SessionCatalog::cycleJson(int cycle, bool acclimation, const QString &file, double sbp,
                                      double dbp, double bpm, bool accepted, const QString &reason)
{
    const double map = sbp > 0 && dbp > 0 ? dbp + (sbp - dbp) / 3.0 : 0.0;
    return {{QStringLiteral("cycle"), cycle},       {QStringLiteral("acclimation"), acclimation},
            {QStringLiteral("file"), file},         {QStringLiteral("SBP"), pressure(sbp)},
            {QStringLiteral("DBP"), pressure(dbp)}, {QStringLiteral("MAP"), pressure(map)},
            {QStringLiteral("BPM"), pressure(bpm)}, {QStringLiteral("accepted"), accepted},
            {QStringLiteral("reason"), reason}};
}

QJsonObject SessionCatalog::cycleJson(const CorvidaExperiment &record, const QString &file)
{
    return cycleJson(record.getCycle(), record.getAcclimation(), file, record.getSBP(),
                     record.getDBP(), record.getBPM(), record.isAccepted(), record.verdictText());
}

QJsonObject SessionCatalog::sessionJson(const Session &session,
                                        const std::function<QString(CorvidaExperiment *)> &fileOf)
{
    QJsonArray cycles;
    for (CorvidaExperiment *record : session.cycles)
        cycles << cycleJson(*record, fileOf ? fileOf(record) : record->getFilepath());
    return {{QStringLiteral("rodent"), session.rodent},
            {QStringLiteral("unit"), session.unit},
            {QStringLiteral("started"), session.started.toString(Qt::ISODate)},
            {QStringLiteral("cycles"), cycles},
            {QStringLiteral("summary"), session.summary.toJson()}};
}
