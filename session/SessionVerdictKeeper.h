#pragma once

#include "toolkit/ConnectionHelper.h"

#include <QObject>
#include <QPointer>
#include <QSet>

class CorvidaExperiment;
class CorvidaSettings;
class RecordDatabase;

// Keeps the automatic verdict of session records true to their markers: when the operator
// moves a marker, or a recalculation finds other values, the cycle is judged again with the
// current limits and the record's file follows (it saves itself). A verdict the operator gave
// by hand stays as it is; only the automatic one beneath it is brought up to date.
class SessionVerdictKeeper : public QObject
{
    Q_OBJECT
public:
    // Watches every session record of `database`, again after each reload. `settings` (may be
    // null: the default limits) is read at each judgement, so changed limits apply at once.
    SessionVerdictKeeper(RecordDatabase *database, const CorvidaSettings *settings,
                         QObject *parent = nullptr);
    explicit SessionVerdictKeeper(const CorvidaSettings *settings, QObject *parent = nullptr);
    ~SessionVerdictKeeper() override;

    // Watches one record (ordinary records are passed over).
    void watch(CorvidaExperiment *record);

private:
    void watchDatabase();
    void rejudge(CorvidaExperiment *record);

    QPointer<RecordDatabase> m_database;
    QPointer<const CorvidaSettings> m_settings;
    ConnectionHelper m_connections;
    ConnectionHelper m_recordConnections;
    QSet<CorvidaExperiment *> m_busy;
};
