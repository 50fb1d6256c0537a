#pragma once

#include "storage/RecordDatabase.h"
#include "toolkit/ConnectionHelper.h"

#include <QAbstractTableModel>

class CorvidaExperiment;

// The records folder as the records page's table: the database's four columns, with "Rodent"
// and "Comment" editable. An edit that leaves the text as it was writes nothing; any other is
// written to the record's ".exp" file at once. Sorting is the database's own (natural order,
// stored in the settings), so the table and the export's "Summary" sheet always agree.
//
// Rows follow their records: a moved marker, a recalculation or an edit made elsewhere shows in
// the row without a reload.
class RecordTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Role {
        // The record's ".edf" path, on every cell.
        PathRole = Qt::UserRole,
        // "Rodent" or "Comment" on the editable cells; empty elsewhere.
        FieldRole,
        // RecordDatabase::Damage as an int.
        DamageRole,
    };

    explicit RecordTableModel(RecordDatabase *database, QObject *parent = nullptr);

    // What a "?" in the Pressure column means for this record; empty when both points are there.
    static QString pressureTip(const CorvidaExperiment *record);

    RecordDatabase *database() const { return m_database; }
    CorvidaExperiment *record(int row) const { return m_database->record(row); }
    QString path(int row) const { return m_database->edfPath(row); }
    int rowOf(const QString &path) const { return m_database->rowOf(path); }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

    // The database's operations that rebuild the list, wrapped so that views see one reset.
    bool reload(const RecordDatabase::Progress &progress = {});
    RecordDatabase::ImportResult importRecords(const QStringList &files,
                                               const RecordDatabase::Progress &progress = {});
    bool removeRecords(const QStringList &paths, QString *error = nullptr);
    bool recoverUnfinished(const QString &partPath, QString *recoveredPath, QString *error);

signals:
    // The record's ".exp" file could not be written; the cell keeps its old text.
    void saveFailed(const QString &path);

private:
    void beginRebuild();
    void endRebuild();
    void watchRecords();
    void recordChanged(const CorvidaExperiment *record, int column);

    RecordDatabase *m_database;
    ConnectionHelper m_recordConnections;
    bool m_rebuilding = false;
};
