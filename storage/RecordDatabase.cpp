#include "storage/RecordDatabase.h"

#include "analysis/CorvidaExperiment.h"
#include "settings/CorvidaSettings.h"
#include "storage/EDFFixedHeader.h"
#include "storage/EDFHeaderCheck.h"
#include "storage/EDFReader.h"
#include "storage/RecordFileNames.h"
#include "toolkit/FileUtilities.h"
#include "toolkit/GenericText.h"
#include "toolkit/QuorvexCommon.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QXmlStreamReader>
#include <algorithm>

namespace {
const QLatin1String kEdf(".edf");
const QLatin1String kExp(".exp");
// What a save writes the recording to before it takes its own name; one left behind is a save
// that was interrupted.
const QLatin1String kPart(".edf.part");

bool isUnfinishedSave(const QString &name)
{
    return name.endsWith(kPart, Qt::CaseInsensitive) && name.size() > kPart.size();
}

// The path without its ".edf" or ".exp" suffix (in any case), so either file names the record.
QString basePath(const QString &path)
{
    const QString clean = QDir::cleanPath(QDir::fromNativeSeparators(path));
    if (clean.endsWith(kEdf, Qt::CaseInsensitive) || clean.endsWith(kExp, Qt::CaseInsensitive))
        return clean.left(clean.size() - 4);
    return clean;
}

// Whether the reader will open the recording, judged from its header bytes and its size alone:
// the library reads a whole file's marks when it opens one, far too slow for listing.
bool recordingLooksReadable(const QString &path)
{
    const EDFHeaderCheck check = EDFHeaderCheck::ofFile(path);
    if (!check.isReadable())
        qDebug().noquote() << "RECORDS:" << path << "-" << check.detail();
    return check.isReadable();
}

// The ".exp" file beside a recording, spelt in any case (files carried over from Windows often
// are "NAME.EXP"); empty when there is none.
QString companionOf(const QFileInfo &recording)
{
    const QString wanted = recording.completeBaseName() + kExp;
    const QString exact = recording.absolutePath() + QLatin1Char('/') + wanted;
    if (QFile::exists(exact))
        return exact;
    const QDir folder = recording.absoluteDir();
    for (const QString &name : folder.entryList(QDir::Files | QDir::Hidden)) {
        if (name.compare(wanted, Qt::CaseInsensitive) == 0)
            return folder.filePath(name);
    }
    return QString();
}

// Texts as a person reads them: runs of digits by their value ("rat 9" before "rat 10"), the
// rest without regard to case. The same for every language, so a list sorts alike everywhere.
int naturalCompare(const QString &a, const QString &b)
{
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        if (a[i].isDigit() && b[j].isDigit()) {
            const qsizetype si = i;
            const qsizetype sj = j;
            while (i < a.size() && a[i].isDigit())
                ++i;
            while (j < b.size() && b[j].isDigit())
                ++j;
            // Compare the numbers without leading zeros: the longer is the larger, else digit
            // by digit; no conversion, so any length works.
            QStringView x = QStringView(a).mid(si, i - si);
            QStringView y = QStringView(b).mid(sj, j - sj);
            while (x.size() > 1 && x.front() == QLatin1Char('0'))
                x = x.mid(1);
            while (y.size() > 1 && y.front() == QLatin1Char('0'))
                y = y.mid(1);
            if (x.size() != y.size())
                return x.size() < y.size() ? -1 : 1;
            const int c = x.compare(y);
            if (c != 0)
                return c;
            continue;
        }
        const char16_t x = a[i].toCaseFolded().unicode();
        const char16_t y = b[j].toCaseFolded().unicode();
        if (x != y)
            return x < y ? -1 : 1;
        ++i;
        ++j;
    }
    if (i < a.size())
        return 1;
    return j < b.size() ? -1 : 0;
}

// The settings store gives up on a file exactly when it is not well-formed XML with a root
// element; the same test here lets the list say so instead of showing blank properties.
bool propertiesLookReadable(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QXmlStreamReader reader(&file);
    if (!reader.readNextStartElement())
        return false;
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}
} // namespace

RecordDatabase::RecordDatabase(const QString &recordsFolder, CorvidaSettings *settings,
                               QObject *parent)
    : QObject(parent)
    , m_folder(QDir::cleanPath(QDir::fromNativeSeparators(recordsFolder)))
    , m_settings(settings)
{
    if (m_settings) {
        m_sortColumn = std::clamp(m_settings->getSortingColumn(), 0, int(ColumnCount) - 1);
        m_sortOrder = m_settings->getSortingOrder();
    }
}

RecordDatabase::~RecordDatabase() = default;

bool RecordDatabase::reload(const Progress &progress)
{
    if (!QuorvexCommon::CreateDirIfNotExists(m_folder))
        qDebug().noquote() << "RECORDS: cannot create the folder" << m_folder;

    QHash<QString, Entry> previous;
    for (const Entry &e : std::as_const(m_entries))
        previous.insert(e.edfPath, e);

    // One listing of the folder gives the sizes and times of both files of every record.
    const QFileInfoList files = QDir(m_folder).entryInfoList(QDir::Files, QDir::Name);
    QHash<QString, QFileInfo> byName;
    QList<QFileInfo> recordings;
    for (const QFileInfo &info : files) {
        byName.insert(info.fileName(), info);
        if (info.suffix().compare(QLatin1String("edf"), Qt::CaseInsensitive) == 0 ||
            isUnfinishedSave(info.fileName()))
            recordings << info;
    }

    QList<Entry> entries;
    QList<CorvidaExperiment *> created;
    const int total = int(recordings.size());
    for (int i = 0; i < total; ++i) {
        if (progress && !progress(i, total)) {
            qDeleteAll(created);
            return false;
        }
        const QFileInfo &edf = recordings[i];
        const bool unfinished = isUnfinishedSave(edf.fileName());
        const QString base = edf.completeBaseName();
        // An unfinished save is shown on its own: its ".exp" file, if any, is not yet its own.
        const QFileInfo exp = unfinished ? QFileInfo() : byName.value(base + kExp);

        Entry e;
        e.edfPath = edf.absoluteFilePath();
        e.edfSize = edf.size();
        e.edfModified = edf.lastModified();
        e.expSize = exp.exists() ? exp.size() : -1;
        e.expModified = exp.exists() ? exp.lastModified() : QDateTime();
        const auto old = previous.constFind(e.edfPath);
        const bool sameRecording = old != previous.cend() && old->edfSize == e.edfSize &&
                                   old->edfModified == e.edfModified;
        const bool sameProperties =
            sameRecording && old->expSize == e.expSize && old->expModified == e.expModified;
        if (sameProperties) {
            // Nothing changed since the last look: what was found then still holds.
            e.damage = old->damage;
        } else if (unfinished) {
            e.damage = recordingLooksReadable(e.edfPath) ? Damage::Unfinished
                                                         : Damage::UnfinishedIncomplete;
        } else {
            // The record reads its recording as "<base>.edf"; another spelling of the suffix
            // it cannot find on a file system that minds case.
            const bool recordingOk =
                edf.fileName() == base + kEdf && recordingLooksReadable(e.edfPath);
            const bool propertiesOk =
                !exp.exists() || propertiesLookReadable(exp.absoluteFilePath());
            e.damage = !recordingOk ? Damage::Recording
                                    : (!propertiesOk ? Damage::Properties : Damage::None);
        }

        if (sameRecording) {
            e.record = old->record;
            // Our own saves change the ".exp" file too; reading it again is harmless.
            if (!sameProperties)
                e.record->reload();
        } else {
            // An unfinished save gets an empty record: nothing of it is read or written until it
            // is recovered.
            e.record = new CorvidaExperiment(
                unfinished ? QString() : m_folder + QLatin1Char('/') + base + kExp, this);
            created << e.record;
        }
        if (e.damage != Damage::None)
            qDebug().noquote() << "RECORDS:" << e.edfPath << "-" << damageText(e.damage);
        e.unfinished = unfinished;
        entries << e;
    }
    if (progress)
        progress(total, total);

    QSet<CorvidaExperiment *> kept;
    for (const Entry &e : std::as_const(entries))
        kept.insert(e.record);
    for (const Entry &e : std::as_const(m_entries)) {
        if (!kept.contains(e.record))
            delete e.record;
    }
    m_entries = entries;
    sortEntries();
    emit reloaded();
    return true;
}

CorvidaExperiment *RecordDatabase::record(int row) const
{
    return row >= 0 && row < m_entries.size() ? m_entries[row].record : nullptr;
}

QList<CorvidaExperiment *> RecordDatabase::records() const
{
    QList<CorvidaExperiment *> list;
    list.reserve(m_entries.size());
    for (const Entry &e : m_entries)
        list << e.record;
    return list;
}

QString RecordDatabase::edfPath(int row) const
{
    return row >= 0 && row < m_entries.size() ? m_entries[row].edfPath : QString();
}

RecordDatabase::Damage RecordDatabase::damage(int row) const
{
    return row >= 0 && row < m_entries.size() ? m_entries[row].damage : Damage::None;
}

QString RecordDatabase::damageText(int row) const
{
    return damageText(damage(row));
}

QString RecordDatabase::damageText(Damage damage)
{
    switch (damage) {
    case Damage::Recording:
        return tr("The recording cannot be read");
    case Damage::Properties:
        return tr("The record's properties cannot be read");
    case Damage::Unfinished:
        return tr("An interrupted save; the recording is complete and can be recovered");
    case Damage::UnfinishedIncomplete:
        return tr("An interrupted save; the recording is incomplete and cannot be recovered");
    case Damage::None:
        break;
    }
    return QString();
}

int RecordDatabase::rowOf(const QString &path) const
{
    const QString base = basePath(QFileInfo(path).absoluteFilePath());
    for (int row = 0; row < m_entries.size(); ++row) {
        if (basePath(m_entries[row].edfPath) == base)
            return row;
    }
    return -1;
}

int RecordDatabase::rowOf(const CorvidaExperiment *record) const
{
    for (int row = 0; row < m_entries.size(); ++row) {
        if (m_entries[row].record == record)
            return row;
    }
    return -1;
}

QList<CorvidaExperiment *>
RecordDatabase::inListOrder(const QList<CorvidaExperiment *> &records) const
{
    QList<CorvidaExperiment *> ordered;
    for (const Entry &e : m_entries) {
        if (records.contains(e.record))
            ordered << e.record;
    }
    return ordered;
}

QStringList RecordDatabase::columnHeaders()
{
    return {genericText(QT_TRANSLATE_NOOP("Generic", "Title")),
            genericText(QT_TRANSLATE_NOOP("Generic", "Rodent")),
            genericText(QT_TRANSLATE_NOOP("Generic", "Comment")),
            genericText(QT_TRANSLATE_NOOP("Generic", "Pressure")),
            genericText(QT_TRANSLATE_NOOP("Generic", "MAP")),
            genericText(QT_TRANSLATE_NOOP("Generic", "Heart rate")),
            genericText(QT_TRANSLATE_NOOP("Generic", "Method"))};
}

QString RecordDatabase::cellText(const CorvidaExperiment *record, int column)
{
    if (!record)
        return QString();
    switch (column) {
    case TitleColumn:
        return record->listLabel();
    case RodentColumn:
        return record->getRodent();
    case CommentColumn:
        return record->getComment();
    case PressureColumn:
        return record->bpText();
    case MAPColumn: {
        // Worked out from SBP and DBP, so only where both are there and in mmHg.
        const double map = record->isUncalibrated() ? 0.0 : record->meanArterialPressure();
        return map > 0 ? QString::number(map, 'f', 0) : QString();
    }
    case HeartRateColumn:
        return record->getBPM() > 0 ? QString::number(record->getBPM(), 'f', 0)
                                    : QStringLiteral("?");
    case MethodColumn:
        return record->methodText();
    default:
        return QString();
    }
}

QString RecordDatabase::text(int row, int column) const
{
    // An unfinished save has no properties; its file name is all there is to show.
    if (isUnfinished(row))
        return column == TitleColumn ? QFileInfo(m_entries[row].edfPath).fileName() : QString();
    return cellText(record(row), column);
}

bool RecordDatabase::isUnfinished(int row) const
{
    return row >= 0 && row < m_entries.size() && m_entries[row].unfinished;
}

QString RecordDatabase::recordName(const CorvidaExperiment *record)
{
    const QString path = record ? record->getFilepath() : QString();
    return path.isEmpty() ? QStringLiteral("?") : QFileInfo(basePath(path)).fileName();
}

void RecordDatabase::sortEntries()
{
    // The texts are taken once per row rather than once per comparison.
    struct Key {
        QString text;
        double sbp = 0.0;
        double dbp = 0.0;
        qsizetype index = 0;
    };
    const int column = m_sortColumn;
    QList<Key> keys(m_entries.size());
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        const CorvidaExperiment *r = m_entries[i].record;
        keys[i].index = i;
        if (column == PressureColumn) {
            keys[i].sbp = r->getSBP();
            keys[i].dbp = r->getDBP();
        } else if (column == MAPColumn || column == HeartRateColumn) {
            keys[i].sbp = column == MAPColumn ? r->meanArterialPressure() : r->getBPM();
        } else {
            keys[i].text = cellText(r, column);
        }
    }
    const auto compare = [column](const Key &a, const Key &b) {
        if (column != PressureColumn && column != MAPColumn && column != HeartRateColumn)
            return naturalCompare(a.text, b.text);
        if (a.sbp != b.sbp)
            return a.sbp < b.sbp ? -1 : 1;
        if (a.dbp != b.dbp)
            return a.dbp < b.dbp ? -1 : 1;
        return 0;
    };
    const bool descending = m_sortOrder == Qt::DescendingOrder;
    const QList<Entry> &entries = m_entries;
    // Equal rows keep the order of their file names, so the list does not shuffle on reload.
    std::sort(keys.begin(), keys.end(), [&](const Key &a, const Key &b) {
        const int c = compare(a, b);
        if (c != 0)
            return descending ? c > 0 : c < 0;
        return entries[a.index].edfPath < entries[b.index].edfPath;
    });
    QList<Entry> sorted;
    sorted.reserve(keys.size());
    for (const Key &k : std::as_const(keys))
        sorted << m_entries[k.index];
    m_entries = sorted;
}

void RecordDatabase::sort(int column, Qt::SortOrder order)
{
    m_sortColumn = std::clamp(column, 0, int(ColumnCount) - 1);
    m_sortOrder = order;
    sortEntries();
    if (m_settings) {
        m_settings->setSortingColumn(m_sortColumn);
        m_settings->setSortingOrder(m_sortOrder);
        if (!m_settings->getAutoSave())
            m_settings->save();
    }
}

RecordDatabase::ImportResult RecordDatabase::importRecords(const QStringList &files,
                                                           const Progress &progress)
{
    ImportResult result;
    QuorvexCommon::CreateDirIfNotExists(m_folder);
    QSet<QString> taken = RecordFileNames::takenNames(m_folder);

    const int total = int(files.size());
    QString lastFolder;
    for (int i = 0; i < total; ++i) {
        if (progress && !progress(i, total)) {
            result.cancelled = true;
            break;
        }
        const QFileInfo source(files[i]);
        lastFolder = source.absolutePath();
        if (!source.isFile() ||
            source.suffix().compare(QLatin1String("edf"), Qt::CaseInsensitive) != 0) {
            qDebug().noquote() << "RECORDS: not a recording to import:" << files[i];
            result.failed << files[i];
            continue;
        }
        const QString sourceBase = source.completeBaseName();
        const QString base = RecordFileNames::freeBaseName(taken, sourceBase);
        // The record reads "<base>.edf", so the copy takes that spelling of the suffix.
        const QString targetName = base + kEdf;
        const QString target = m_folder + QLatin1Char('/') + targetName;
        const QString sourceExp = companionOf(source);
        const QString targetExp = m_folder + QLatin1Char('/') + base + kExp;

        // The properties go first: the ".edf" file is what makes a record, and it should not
        // appear without them.
        const bool withExp = !sourceExp.isEmpty();
        if (withExp && !QFile::copy(sourceExp, targetExp)) {
            qDebug().noquote() << "RECORDS: cannot copy" << sourceExp << "to" << targetExp;
            result.failed << files[i];
            continue;
        }
        if (!QFile::copy(source.absoluteFilePath(), target)) {
            qDebug().noquote() << "RECORDS: cannot copy" << source.absoluteFilePath() << "to"
                               << target;
            if (withExp)
                QFile::remove(targetExp);
            result.failed << files[i];
            continue;
        }
        // On Windows a copy keeps the source's read-only mark; one from a read-only medium would
        // silently refuse every later edit of the rodent or comment.
        for (const QString &copied : {target, targetExp}) {
            if (QFile::exists(copied))
                QFile::setPermissions(copied, QFile::permissions(copied) | QFile::WriteOwner);
        }
        RecordFileNames::take(taken, base);
        result.imported << target;
        if (base != sourceBase) {
            result.notes << tr("File") + QStringLiteral(" \"") + source.fileName() +
                                QStringLiteral("\" \n") + tr("was imported as") +
                                QStringLiteral(" \"") + targetName + QLatin1Char('"');
        }
    }
    if (progress && !result.cancelled)
        progress(total, total);
    if (m_settings && !lastFolder.isEmpty())
        m_settings->setLastImportFolder(lastFolder);
    reload();
    return result;
}

QString RecordDatabase::importDialogTitle()
{
    return tr("Import records");
}

QString RecordDatabase::importFilter()
{
    return tr("Corvida records") + QStringLiteral(" (*.edf)");
}

bool RecordDatabase::removeRecords(const QStringList &paths, QString *error)
{
    QStringList failed;
    for (const QString &path : paths) {
        const QString base = basePath(QFileInfo(path).absoluteFilePath());
        // Only records of this folder: a wrong path from a caller must not throw away a file
        // that was never listed here.
        if (QFileInfo(base).absolutePath() != QFileInfo(m_folder).absoluteFilePath()) {
            qDebug().noquote() << "RECORDS: not in the records folder, not removed:" << path;
            failed << path;
            continue;
        }
        // An interrupted save is one file; the ".exp" file beside it may belong to another record.
        if (isUnfinishedSave(base)) {
            if (QFile::exists(base) && !QFile::moveToTrash(base)) {
                qDebug().noquote() << "RECORDS: cannot move to the trash:" << base;
                failed << base;
            }
            continue;
        }
        // Without its recording the properties are no record; if the recording stays, they stay
        // with it.
        bool recordingGone = true;
        for (const QLatin1String suffix : {kEdf, kExp}) {
            const QString file = base + suffix;
            if (!QFile::exists(file) || !recordingGone)
                continue;
            if (!QFile::moveToTrash(file)) {
                qDebug().noquote() << "RECORDS: cannot move to the trash:" << file;
                failed << file;
                recordingGone = false;
            }
        }
    }
    reload();
    if (!failed.isEmpty() && error) {
        QStringList quoted;
        for (const QString &f : std::as_const(failed))
            quoted << QLatin1Char('"') + QDir::toNativeSeparators(f) + QLatin1Char('"');
        *error =
            tr("Cannot move to the trash") + QLatin1Char(' ') + quoted.join(QStringLiteral(", "));
    }
    return failed.isEmpty();
}

QString RecordDatabase::removeTitle()
{
    return tr("Remove");
}

QString RecordDatabase::removeQuestion(int count)
{
    if (count == 1)
        return tr("Remove selected experiment") + QLatin1Char('?');
    return tr("Remove") + QLatin1Char(' ') + QString::number(count) + QLatin1Char(' ') +
           tr("selected experiments") + QLatin1Char('?');
}

bool RecordDatabase::recalculate(const QList<CorvidaExperiment *> &records, QStringList *errors,
                                 const Progress &progress)
{
    bool ok = true;
    const int total = int(records.size());
    for (int i = 0; i < total; ++i) {
        if (progress && !progress(i, total))
            return false;
        CorvidaExperiment *record = records[i];
        if (!record)
            continue;
        // Dropping the markers of a record whose recording is gone would lose the only results
        // left of that measurement.
        if (record->getPulse().isEmpty() || record->getPressure().isEmpty()) {
            const QString text = tr("Cannot read the recording of") + QStringLiteral(" \"") +
                                 recordName(record) + QLatin1Char('"');
            qDebug().noquote() << "RECORDS:" << text;
            if (errors)
                *errors << text;
            ok = false;
            continue;
        }
        record->recalculate(true);
        // The properties, and the marks in the recording when the markers moved; the samples
        // keep their bytes.
        QString text;
        if (!record->getFilepath().isEmpty() && !record->saveProperties(&text)) {
            qDebug().noquote() << "RECORDS:" << text;
            if (errors)
                *errors << text;
            ok = false;
        }
    }
    if (progress)
        progress(total, total);
    return ok;
}

QString RecordDatabase::recalculateTitle()
{
    return tr("Recalculate");
}

QString RecordDatabase::recalculateQuestion()
{
    return tr("All blood pressure data\nin this experiment will be reset.\nContinue?");
}

bool RecordDatabase::recoverUnfinished(const QString &partPath, QString *recoveredPath,
                                       QString *error)
{
    const auto failWith = [error, &partPath](const QString &why) {
        qDebug().noquote() << "RECORDS: cannot recover" << partPath << "-" << why;
        if (error)
            *error = why;
        return false;
    };
    const QFileInfo part(partPath);
    if (!part.isFile() || !isUnfinishedSave(part.fileName()))
        return failWith(tr("Not an interrupted save") + QStringLiteral(" \"") +
                        QDir::toNativeSeparators(partPath) + QLatin1Char('"'));
    // The header check says whether the file is whole; the reader has the last word.
    if (!EDFHeaderCheck::ofFile(part.absoluteFilePath()).isReadable())
        return failWith(damageText(Damage::UnfinishedIncomplete));
    {
        EDFReader reader(part.absoluteFilePath());
        if (!reader.open())
            return failWith(damageText(Damage::UnfinishedIncomplete));
    }

    const QDir folder = part.absoluteDir();
    const QSet<QString> taken = RecordFileNames::takenNames(folder.absolutePath());
    const QString wanted = part.fileName().chopped(kPart.size());
    // The save wrote the ".exp" file before it was interrupted, so under the name it chose the
    // recording finds its properties again. Under another name it stays a bare recording: a
    // ".exp" file there belongs to the record that already has the name.
    const QString base = taken.contains((wanted + kEdf).toLower())
                             ? RecordFileNames::freeBaseName(taken, wanted)
                             : wanted;
    const QString target = folder.filePath(base + kEdf);
    // The rename never replaces a file, so a record appearing meanwhile under that name is
    // safe as well.
    if (!FileUtilities::renameNoReplace(part.absoluteFilePath(), target))
        return failWith(tr("Cannot rename") + QStringLiteral(" \"") +
                        QDir::toNativeSeparators(partPath) + QLatin1Char('"'));
    qDebug().noquote() << "RECORDS: recovered" << partPath << "as" << target;
    if (recoveredPath)
        *recoveredPath = target;
    if (QDir(m_folder).absolutePath() == folder.absolutePath())
        reload();
    return true;
}
