#include "ui/SessionTableModel.h"

#include "analysis/CorvidaExperiment.h"
#include "settings/CorvidaSettings.h"
#include "storage/RecordDatabase.h"

#include <QColor>
#include <QLocale>
#include <QTimer>

#include <cmath>

SessionTableModel::SessionTableModel(RecordDatabase *database, const CorvidaSettings *settings,
                                     QObject *parent)
    : QAbstractTableModel(parent)
    , m_database(database)
    , m_settings(settings)
{
    if (m_database)
        m_connections << connect(m_database, &RecordDatabase::reloaded, this,
                                 &SessionTableModel::rebuild);
    rebuild();
}

int SessionTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_sessions.size());
}

int SessionTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

int SessionTableModel::rowOf(const QString &sessionId) const
{
    for (int row = 0; row < m_sessions.size(); ++row) {
        if (m_sessions[row].id == sessionId)
            return row;
    }
    return -1;
}

QString SessionTableModel::meanSd(const SessionStatistics::Measure &m, int decimals)
{
    if (m.n == 0 || !std::isfinite(m.mean))
        return QStringLiteral("–");
    if (!std::isfinite(m.sd))
        return QString::number(m.mean, 'f', decimals);
    return QStringLiteral("%1 ± %2").arg(QString::number(m.mean, 'f', decimals),
                                         QString::number(m.sd, 'f', decimals));
}

QVariant SessionTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_sessions.size())
        return {};
    const SessionCatalog::Session &s = m_sessions[index.row()];
    const SessionStatistics::Summary &sum = s.summary;
    if (role == Qt::DisplayRole) {
        switch (index.column()) {
        case RodentColumn:
            return s.rodent;
        case DateColumn:
            return QLocale().toString(s.started.toLocalTime(), QLocale::ShortFormat);
        case UnitColumn:
            return s.unit;
        case AcceptedColumn:
            return QStringLiteral("%1/%2").arg(sum.accepted).arg(sum.total);
        case SBPColumn:
            return meanSd(sum.sbp, 1);
        case DBPColumn:
            return meanSd(sum.dbp, 1);
        case MAPColumn:
            return meanSd(sum.map, 1);
        case HeartRateColumn:
            return meanSd(sum.bpm, 0);
        case FlagColumn:
            return sum.flagged ? QStringLiteral("⚑") : QString();
        }
    } else if (role == SortRole) {
        switch (index.column()) {
        case RodentColumn:
            return s.rodent;
        case DateColumn:
            return s.started;
        case UnitColumn:
            return s.unit;
        case AcceptedColumn:
            return sum.accepted;
        case SBPColumn:
            return sum.sbp.mean;
        case DBPColumn:
            return sum.dbp.mean;
        case MAPColumn:
            return sum.map.mean;
        case HeartRateColumn:
            return sum.bpm.mean;
        case FlagColumn:
            return sum.flagged;
        }
    } else if (role == Qt::ToolTipRole) {
        if (index.column() == FlagColumn || sum.flagged)
            return sum.flags.join(QLatin1Char('\n'));
    } else if (role == Qt::ForegroundRole && index.column() == FlagColumn && sum.flagged) {
        return QColor(0xCC, 0x33, 0x00);
    } else if (role == Qt::TextAlignmentRole && index.column() >= AcceptedColumn) {
        return int(Qt::AlignRight | Qt::AlignVCenter);
    }
    return {};
}

QVariant SessionTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case RodentColumn:
        return tr("Rodent");
    case DateColumn:
        return tr("Date");
    case UnitColumn:
        return tr("Unit");
    case AcceptedColumn:
        return tr("Accepted");
    case SBPColumn:
        return tr("SBP");
    case DBPColumn:
        return tr("DBP");
    case MAPColumn:
        return tr("MAP");
    case HeartRateColumn:
        return tr("HR");
    case FlagColumn:
        return tr("Flag");
    }
    return {};
}

void SessionTableModel::rebuild()
{
    m_rebuildQueued = false;
    beginResetModel();
    const SessionStatistics statistics(m_settings ? SessionStatistics::limitsFrom(*m_settings)
                                                  : SessionStatistics::Limits());
    m_sessions = m_database ? SessionCatalog::group(m_database->records(), statistics)
                            : QList<SessionCatalog::Session>();
    endResetModel();
    watchRecords();
}

void SessionTableModel::watchRecords()
{
    m_recordConnections.clear();
    // A verdict by hand and the automatic verdict that follows a moved marker both arrive as
    // several changes at once: the table is built again once for all of them.
    const auto later = [this] {
        if (m_rebuildQueued)
            return;
        m_rebuildQueued = true;
        QTimer::singleShot(0, this, &SessionTableModel::rebuild);
    };
    for (const SessionCatalog::Session &s : std::as_const(m_sessions)) {
        for (CorvidaExperiment *record : s.cycles) {
            m_recordConnections << connect(record, &CorvidaExperiment::changedAccepted, this,
                                           later);
            m_recordConnections << connect(record, &CorvidaExperiment::changedVerdict, this, later);
            m_recordConnections << connect(record, &CorvidaExperiment::changedSBP, this, later);
            m_recordConnections << connect(record, &CorvidaExperiment::changedDBP, this, later);
            m_recordConnections << connect(record, &CorvidaExperiment::changedBPM, this, later);
        }
    }
}
