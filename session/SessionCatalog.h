#pragma once

#include "session/SessionStatistics.h"
#include "storage/XLSXHelper.h"

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>

class CorvidaExperiment;

// The sessions of a set of records, found from the records alone: every record measured in a
// session carries the session's identity, so grouping by it gives the session back, and
// nothing else on disk can disagree with the records.
class SessionCatalog
{
public:
    struct Session {
        QString id;
        QString rodent;
        QString unit;
        QDateTime started;
        int planned = 0;                   // measurement cycles the session was to run
        QList<CorvidaExperiment *> cycles; // by cycle number; not owned
        SessionStatistics::Summary summary;
    };

    // Groups the session records among `records` (others are passed over), oldest session first.
    static QList<Session> group(const QList<CorvidaExperiment *> &records,
                                const SessionStatistics &statistics);

    // The start written at the head of a session identity; invalid when there is none.
    static QDateTime startOf(const QString &sessionId);

    // The "Sessions" sheet: a header row, then one row per session.
    static XLSXTable sessionsTable(const QList<Session> &sessions);
    static QString sheetName();
    // What an export of `records` adds: the "Sessions" sheet when any of them belongs to a
    // session, nothing otherwise.
    static QList<XLSXSheet> exportSheets(const QList<CorvidaExperiment *> &records,
                                         const SessionStatistics &statistics);

    // One cycle as the command-line tool reports it; pressures and rate are null where none.
    static QJsonObject cycleJson(int cycle, bool acclimation, const QString &file, double sbp,
                                 double dbp, double bpm, bool accepted, const QString &reason);
    static QJsonObject cycleJson(const CorvidaExperiment &record, const QString &file);
    // {"rodent", "unit", "started", "cycles": [...], "summary": {...}}
    static QJsonObject sessionJson(const Session &session,
                                   const std::function<QString(CorvidaExperiment *)> &fileOf);
};
