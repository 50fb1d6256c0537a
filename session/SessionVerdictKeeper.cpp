#include "session/SessionVerdictKeeper.h"

#include "analysis/CorvidaExperiment.h"
#include "session/AcceptanceRules.h"
#include "settings/CorvidaSettings.h"
#include "storage/RecordDatabase.h"

SessionVerdictKeeper::SessionVerdictKeeper(RecordDatabase *database,
                                           const CorvidaSettings *settings, QObject *parent)
    : QObject(parent)
    , m_database(database)
    , m_settings(settings)
{
    if (m_database) {
        m_connections << connect(m_database, &RecordDatabase::reloaded, this,
                                 &SessionVerdictKeeper::watchDatabase);
        watchDatabase();
    }
}

SessionVerdictKeeper::SessionVerdictKeeper(const CorvidaSettings *settings, QObject *parent)
    : SessionVerdictKeeper(nullptr, settings, parent)
{}

SessionVerdictKeeper::~SessionVerdictKeeper() = default;

void SessionVerdictKeeper::watchDatabase()
{
    // Records that left the list are deleted with their connections; the kept ones are watched
    // anew, so a record is never watched twice.
    m_recordConnections.clear();
    for (CorvidaExperiment *record : m_database->records())
        watch(record);
}

void SessionVerdictKeeper::watch(CorvidaExperiment *record)
{
    if (!record || !record->isSessionCycle())
        return;
    const auto again = [this, record] { rejudge(record); };
    m_recordConnections << connect(record, &CorvidaExperiment::changedSBP, this, again);
    m_recordConnections << connect(record, &CorvidaExperiment::changedDBP, this, again);
    m_recordConnections << connect(record, &CorvidaExperiment::changedBPM, this, again);
}

void SessionVerdictKeeper::rejudge(CorvidaExperiment *record)
{
    // Judging reads the record's beats, which may load its recording, which recalculates and
    // announces its values again: one judgement at a time per record.
    if (m_busy.contains(record))
        return;
    m_busy.insert(record);
    record->getSamplingRate();
    const AcceptanceRules rules(m_settings ? AcceptanceRules::limitsFrom(*m_settings)
                                           : AcceptanceRules::Limits());
    rules.apply(*record);
    m_busy.remove(record);
}
