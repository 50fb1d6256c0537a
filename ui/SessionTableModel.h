#pragma once

#include "session/SessionCatalog.h"
#include "toolkit/ConnectionHelper.h"

#include <QAbstractTableModel>
#include <QPointer>

class CorvidaSettings;
class RecordDatabase;

// The sessions among the records of the records page, one row each: rodent, date, unit,
// accepted of measured cycles, mean ± SD of SBP, DBP, MAP and heart rate, and the flags. Built
// from the records alone, and again whenever a record's verdict or values change, so a cycle
// accepted or rejected by hand shows in its session's statistics at once.
class SessionTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Column {
        RodentColumn,
        DateColumn,
        UnitColumn,
        AcceptedColumn,
        SBPColumn,
        DBPColumn,
        MAPColumn,
        HeartRateColumn,
        FlagColumn,
        ColumnCount
    };
    // What the columns sort by: dates as dates and means as numbers.
    static constexpr int SortRole = Qt::UserRole;

    SessionTableModel(RecordDatabase *database, const CorvidaSettings *settings,
                      QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    const SessionCatalog::Session &session(int row) const { return m_sessions.at(row); }
    // The row of the session with this identity; -1 when it is not listed.
    int rowOf(const QString &sessionId) const;
    // "120.4 ± 3.1"; only the mean with a single value, "–" with none.
    static QString meanSd(const SessionStatistics::Measure &m, int decimals);

public slots:
    void rebuild();

private:
    void watchRecords();

    QPointer<RecordDatabase> m_database;
    QPointer<const CorvidaSettings> m_settings;
    ConnectionHelper m_connections;
    ConnectionHelper m_recordConnections;
    QList<SessionCatalog::Session> m_sessions;
    bool m_rebuildQueued = false;
};
