#include "ui/RecordTableModel.h"

#include "analysis/CorvidaExperiment.h"

#include <QApplication>
#include <QColor>
#include <QStyle>

namespace {
bool isEditable(int column)
{
    return column == RecordDatabase::RodentColumn || column == RecordDatabase::CommentColumn;
}

QString fieldOf(int column)
{
    if (column == RecordDatabase::RodentColumn)
        return QStringLiteral("Rodent");
    if (column == RecordDatabase::CommentColumn)
        return QStringLiteral("Comment");
    return QString();
}
} // namespace

RecordTableModel::RecordTableModel(RecordDatabase *database, QObject *parent)
    : QAbstractTableModel(parent)
    , m_database(database)
{
    // Someone else reloading the database (the import and removal below do it too) still ends
    // in a consistent table.
    connect(m_database, &RecordDatabase::reloaded, this, [this] {
        if (m_rebuilding)
            return;
        beginResetModel();
        endResetModel();
        watchRecords();
    });
    watchRecords();
}

int RecordTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_database->count();
}

int RecordTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(RecordDatabase::ColumnCount);
}

QString RecordTableModel::pressureTip(const CorvidaExperiment *record)
{
    if (!record)
        return QString();
    QStringList missing;
    if (record->getSBP() <= 0)
        missing << tr("no systolic point found");
    if (record->getDBP() <= 0)
        missing << tr("no diastolic point found");
    if (missing.isEmpty())
        return QString();
    // "?" alone says nothing; say what is missing and what the operator can do about it.
    return missing.join(QStringLiteral(", ")) + QStringLiteral(". ") +
           tr("Open the record and place the marker by hand, or measure again.");
}

QVariant RecordTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_database->count())
        return QVariant();
    const int row = index.row();
    const int column = index.column();
    const RecordDatabase::Damage damage = m_database->damage(row);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return m_database->text(row, column);
    case Qt::ToolTipRole:
        if (damage != RecordDatabase::Damage::None)
            return m_database->damageText(row);
        // Long comments do not fit the column.
        if (column == RecordDatabase::CommentColumn)
            return m_database->text(row, column);
        if (column == RecordDatabase::PressureColumn)
            return pressureTip(m_database->record(row));
        return QVariant();
    case Qt::DecorationRole:
        if (damage != RecordDatabase::Damage::None && column == RecordDatabase::TitleColumn)
            return QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning);
        return QVariant();
    case Qt::ForegroundRole:
        if (damage != RecordDatabase::Damage::None)
            return QColor(0xcc, 0x33, 0x00);
        return QVariant();
    case PathRole:
        return m_database->edfPath(row);
    case FieldRole:
        return fieldOf(column);
    case DamageRole:
        return int(damage);
    default:
        return QVariant();
    }
}

QVariant RecordTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return RecordDatabase::columnHeaders().value(section);
    return QAbstractTableModel::headerData(section, orientation, role);
}

Qt::ItemFlags RecordTableModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags f = QAbstractTableModel::flags(index);
    if (index.isValid() && isEditable(index.column()) && !m_database->isUnfinished(index.row()))
        f |= Qt::ItemIsEditable;
    return f;
}

bool RecordTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || !isEditable(index.column()))
        return false;
    CorvidaExperiment *r = record(index.row());
    if (!r)
        return false;
    const bool rodent = index.column() == RecordDatabase::RodentColumn;
    const QString old = rodent ? r->getRodent() : r->getComment();
    const QString text = value.toString();
    // Closing an editor without a change must not touch the file: its time is what tells the
    // next reload whether to read the record again, and a read-only file would raise an error.
    if (text == old)
        return false;

    // Saved here rather than by the record itself, so a failure is seen and the row does not
    // show a text the file does not have.
    const bool autoSave = r->getAutoSave();
    r->setAutoSave(false);
    rodent ? r->setRodent(text) : r->setComment(text);
    const bool saved = r->saveProperties();
    if (!saved)
        rodent ? r->setRodent(old) : r->setComment(old);
    r->setAutoSave(autoSave);
    if (!saved) {
        emit saveFailed(r->getFilepath());
        return false;
    }
    // The record's change signal has refreshed the cell already.
    return true;
}

void RecordTableModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= RecordDatabase::ColumnCount)
        return;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    // Selection and current cell stay on their records.
    const QModelIndexList before = persistentIndexList();
    QList<const CorvidaExperiment *> records;
    records.reserve(before.size());
    for (const QModelIndex &i : before)
        records << record(i.row());
    m_database->sort(column, order);
    QModelIndexList after;
    after.reserve(before.size());
    for (qsizetype i = 0; i < before.size(); ++i) {
        const int row = m_database->rowOf(records[i]);
        after << (row < 0 ? QModelIndex() : index(row, before[i].column()));
    }
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

bool RecordTableModel::reload(const RecordDatabase::Progress &progress)
{
    beginRebuild();
    const bool done = m_database->reload(progress);
    endRebuild();
    return done;
}

RecordDatabase::ImportResult
RecordTableModel::importRecords(const QStringList &files, const RecordDatabase::Progress &progress)
{
    beginRebuild();
    RecordDatabase::ImportResult result = m_database->importRecords(files, progress);
    endRebuild();
    return result;
}

bool RecordTableModel::removeRecords(const QStringList &paths, QString *error)
{
    beginRebuild();
    const bool done = m_database->removeRecords(paths, error);
    endRebuild();
    return done;
}

bool RecordTableModel::recoverUnfinished(const QString &partPath, QString *recoveredPath,
                                         QString *error)
{
    beginRebuild();
    const bool done = m_database->recoverUnfinished(partPath, recoveredPath, error);
    endRebuild();
    return done;
}

void RecordTableModel::beginRebuild()
{
    m_rebuilding = true;
    beginResetModel();
}

void RecordTableModel::endRebuild()
{
    endResetModel();
    m_rebuilding = false;
    watchRecords();
}

void RecordTableModel::watchRecords()
{
    m_recordConnections.clear();
    const QList<CorvidaExperiment *> records = m_database->records();
    for (CorvidaExperiment *r : records) {
        const auto cell = [this, r](int column) { return [=] { recordChanged(r, column); }; };
        m_recordConnections << connect(r, &CorvidaExperiment::changedRodent, this,
                                       cell(RecordDatabase::RodentColumn));
        m_recordConnections << connect(r, &CorvidaExperiment::changedComment, this,
                                       cell(RecordDatabase::CommentColumn));
        m_recordConnections << connect(r, &CorvidaExperiment::changedSBP, this,
                                       cell(RecordDatabase::PressureColumn));
        m_recordConnections << connect(r, &CorvidaExperiment::changedDBP, this,
                                       cell(RecordDatabase::PressureColumn));
        m_recordConnections << connect(r, &CorvidaExperiment::changedSBP, this,
                                       cell(RecordDatabase::MAPColumn));
        m_recordConnections << connect(r, &CorvidaExperiment::changedDBP, this,
                                       cell(RecordDatabase::MAPColumn));
        m_recordConnections << connect(r, &CorvidaExperiment::changedBPM, this,
                                       cell(RecordDatabase::HeartRateColumn));
        m_recordConnections << connect(r, &CorvidaExperiment::changedMethod, this,
                                       cell(RecordDatabase::MethodColumn));
    }
}

void RecordTableModel::recordChanged(const CorvidaExperiment *record, int column)
{
    const int row = m_database->rowOf(record);
    if (row >= 0)
        emit dataChanged(index(row, column), index(row, column));
}
