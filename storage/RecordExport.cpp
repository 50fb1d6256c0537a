#include "storage/RecordExport.h"

#include "analysis/CorvidaExperiment.h"
#include "settings/CorvidaSettings.h"
#include "storage/RecordDatabase.h"
#include "toolkit/GenericText.h"

#include <QCoreApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

namespace {
QString essential()
{
    return QCoreApplication::translate("RecordExport", "Essential data");
}

QString full()
{
    return QCoreApplication::translate("RecordExport", "Full data");
}
} // namespace

QStringList RecordExport::filters()
{
    const QString xlsx = QStringLiteral(" (*.xlsx)");
    const QString csv = QStringLiteral(" (*.csv)");
    return {essential() + xlsx, essential() + csv, full() + xlsx, full() + csv};
}

QString RecordExport::filterString()
{
    return filters().join(QStringLiteral(";;"));
}

bool RecordExport::isCsvFilter(const QString &filter)
{
    return filter.trimmed().endsWith(QLatin1String("(*.csv)"), Qt::CaseInsensitive);
}

RecordExport::Content RecordExport::contentOf(const QString &filter)
{
    return filter.startsWith(essential()) ? Content::Essential : Content::Full;
}

QString RecordExport::suffixOf(const QString &filter)
{
    return isCsvFilter(filter) ? QStringLiteral("csv") : QStringLiteral("xlsx");
}

QString RecordExport::withSuffix(const QString &path, const QString &filter)
{
    const QString suffix = suffixOf(filter);
    if (QFileInfo(path).suffix().compare(suffix, Qt::CaseInsensitive) == 0)
        return path;
    return path + QLatin1Char('.') + suffix;
}

QString RecordExport::suggestedFileName(const QList<CorvidaExperiment *> &records)
{
    if (records.isEmpty())
        return QString();
    QString name = RecordDatabase::recordName(records.first());
    if (records.size() > 1)
        name += QLatin1Char('-') + RecordDatabase::recordName(records.last());
    return name;
}

QString RecordExport::startFolder(const CorvidaSettings *settings, const QString &defaultFolder)
{
    const QString last = settings ? settings->getLastExportFolder() : QString();
    if (!last.isEmpty() && QDir(last).exists())
        return last;
    return defaultFolder;
}

QString RecordExport::preselectedFilter(const CorvidaSettings *settings)
{
    const QStringList all = filters();
    const QString last = settings ? settings->getLastExportFilter() : QString();
    return all.contains(last) ? last : all.first();
}

void RecordExport::storeChoice(CorvidaSettings *settings, const QString &path,
                               const QString &filter)
{
    if (!settings)
        return;
    settings->setLastExportFolder(QFileInfo(path).absolutePath());
    settings->setLastExportFilter(filter);
}

XLSXTable RecordExport::summaryTable(const QList<CorvidaExperiment *> &records)
{
    XLSXTable table;
    QList<QVariant> header;
    const QStringList titles = RecordDatabase::columnHeaders();
    for (int c = 0; c < RecordDatabase::MethodColumn; ++c)
        header << titles[c];
    // Beside the list's texts, the values a statistician computes with: numbers, a real date,
    // and an empty cell for what was not found (a 0 would pull a mean down).
    const auto withUnit = [](const char *name, const char *unit) {
        return genericText(name) + QStringLiteral(", ") + genericText(unit);
    };
    header << withUnit(QT_TRANSLATE_NOOP("Generic", "SBP"), QT_TRANSLATE_NOOP("Generic", "mmHg"))
           << withUnit(QT_TRANSLATE_NOOP("Generic", "DBP"), QT_TRANSLATE_NOOP("Generic", "mmHg"))
           << withUnit(QT_TRANSLATE_NOOP("Generic", "Pulse"), QT_TRANSLATE_NOOP("Generic", "bpm"))
           << QCoreApplication::translate("RecordExport", "Start");
    const bool withMethod = anyRefined(records);
    if (withMethod)
        header << titles[RecordDatabase::MethodColumn];
    table << header;
    for (const CorvidaExperiment *record : records) {
        QList<QVariant> row;
        for (int c = 0; c < RecordDatabase::MethodColumn; ++c)
            row << RecordDatabase::cellText(record, c);
        // Pressures of a unit without its calibration are sensor values: no mmHg to compute with.
        const bool mmHg = !record->isUncalibrated();
        const auto found = [](double value, bool usable) {
            return usable && value > 0 ? QVariant(value) : QVariant();
        };
        row << found(record->getSBP(), mmHg) << found(record->getDBP(), mmHg)
            << found(record->getBPM(), true);
        const QDateTime start = recordStart(record);
        row << (start.isValid() ? QVariant(start) : QVariant());
        if (withMethod)
            row << record->methodText();
        table << row;
    }
    return table;
}

QDateTime RecordExport::recordStart(const CorvidaExperiment *record)
{
    if (!record)
        return {};
    // Records are named after their start; an imported one with another name says it in its
    // header, which is read without the samples.
    const QString name = RecordDatabase::recordName(record);
    const QDateTime named =
        QDateTime::fromString(name.left(19), QStringLiteral("yyyy-MM-dd_HH-mm-ss"));
    if (named.isValid())
        return named;
    const QString path = record->getFilepath();
    QFile edf(path.left(path.size() - 4) + QStringLiteral(".edf"));
    if (path.isEmpty() || !edf.open(QIODevice::ReadOnly))
        return {};
    const QByteArray header = edf.read(192);
    if (header.size() < 192)
        return {};
    const QString text = QString::fromLatin1(header.mid(168, 16));
    QDateTime start = QDateTime::fromString(text, QStringLiteral("dd.MM.yyHH.mm.ss"));
    // Two-digit years of EDF: 85 to 99 are 19xx, the rest 20xx.
    if (start.isValid() && start.date().year() < 1985)
        start = start.addYears(100);
    return start;
}

QStringList RecordExport::sheetNames(const QList<CorvidaExperiment *> &records)
{
    QStringList names;
    if (records.size() > 1)
        names << QCoreApplication::translate("RecordExport", "Summary");
    for (const CorvidaExperiment *record : records)
        names << RecordDatabase::recordName(record);
    return names;
}

bool RecordExport::anyRefined(const QList<CorvidaExperiment *> &records)
{
    return std::any_of(records.cbegin(), records.cend(),
                       [](const CorvidaExperiment *r) { return r && r->usesRefinedMethod(); });
}

XLSXTable RecordExport::recordTable(CorvidaExperiment *record, Content content, bool withMethod)
{
    if (!record)
        return {};
    // The results come from the listed record, so the sheet says what the list says.
    XLSXTable results = record->exportTable(true);
    if (withMethod)
        results << QList<QVariant>{genericText(QT_TRANSLATE_NOOP("Generic", "Method")),
                                   record->methodText()};
    if (content == Content::Essential)
        return results;
    const QString path = record->getFilepath();
    XLSXTable table;
    if (path.isEmpty()) {
        table = record->exportTable(false);
    } else {
        CorvidaExperiment copy(path);
        // Reading the recording may fill in missing markers; the copy must not write them.
        copy.setAutoSave(false);
        copy.setRecordingPath(record->recordingPath());
        table = copy.exportTable(false);
    }
    const qsizetype resultRows = results.size() - (withMethod ? 1 : 0);
    for (qsizetype i = 0; i < resultRows && i < table.size(); ++i)
        table[i] = results[i];
    if (withMethod)
        table.insert(std::min(resultRows, table.size()), results.last());
    return table;
}

RecordExport::Result RecordExport::write(const QList<CorvidaExperiment *> &records,
                                         const QString &path, const QString &filter, QString *error,
                                         const Progress &progress,
                                         const QList<XLSXSheet> &extraSheets)
{
    if (records.isEmpty()) {
        if (error)
            *error = QCoreApplication::translate("RecordExport", "Nothing to export");
        return Result::Failed;
    }
    const Content content = contentOf(filter);
    const bool several = records.size() > 1;
    const int total = int(records.size());
    // Records of the documented way alone export as they always have; once one of them was
    // found the refined way, every sheet says which way found its markers.
    const bool withMethod = anyRefined(records);
    bool cancelled = false;
    const XLSXHelper::SheetSource source = [&](int index, XLSXTable *table) {
        if (several && index == 0) {
            *table = summaryTable(records);
            return true;
        }
        const int extra = index - (several ? 1 : 0);
        if (extra < extraSheets.size()) {
            *table = extraSheets[extra].second;
            return true;
        }
        const int r = extra - int(extraSheets.size());
        if (progress && !progress(r, total)) {
            cancelled = true;
            return false;
        }
        *table = recordTable(records[r], content, withMethod);
        return true;
    };

    QString detail;
    QStringList names = sheetNames(records);
    for (qsizetype i = 0; i < extraSheets.size(); ++i)
        names.insert((several ? 1 : 0) + i, extraSheets[i].first);
    const bool ok = isCsvFilter(filter)
                        ? XLSXHelper::dataToCSV(names, source, path, QStringLiteral(";"),
                                                QStringLiteral("\r\n"), &detail)
                        : XLSXHelper::dataToXLSX(names, source, path, &detail);
    if (ok) {
        if (progress)
            progress(total, total);
        return Result::Written;
    }
    if (cancelled) {
        qDebug().noquote() << "EXPORT: cancelled, nothing written to" << path;
        return Result::Cancelled;
    }
    qDebug().noquote() << "EXPORT:" << detail;
    if (error)
        *error = errorText(path);
    return Result::Failed;
}

QString RecordExport::errorText(const QString &path)
{
    return QCoreApplication::translate("Generic", "Error saving") + QStringLiteral(" \"") +
           QDir::toNativeSeparators(path) + QLatin1Char('"');
}

RecordExport::AfterExport RecordExport::afterExport(int exportBehavior)
{
    switch (exportBehavior) {
    case 0:
        return AfterExport::OpenFile;
    case 1:
        return AfterExport::ShowInFolder;
    default:
        return AfterExport::Nothing;
    }
}

RecordExport::AfterExport RecordExport::afterExport(const CorvidaSettings *settings)
{
    return settings ? afterExport(int(settings->getExportBehavior())) : AfterExport::Nothing;
}
