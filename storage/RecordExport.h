#pragma once

#include "storage/XLSXHelper.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

class CorvidaExperiment;
class CorvidaSettings;

// Exporting records to a spreadsheet (XLSX) or a CSV text file: everything of the export but the
// dialogs and the opening of the result, which the records page and the command-line tool do
// themselves.
//
// The workbook holds, when several records are exported, a "Summary" sheet with the records'
// rows as the list shows them, then one sheet per record, named by the record, with the record's
// own export table. Sheets are produced one at a time while the file is written, so exporting
// many long recordings never holds them all in memory.
class RecordExport
{
public:
    enum class Content { Essential, Full };
    // What the caller does with a written file.
    enum class AfterExport { OpenFile, ShowInFolder, Nothing };
    enum class Result { Written, Cancelled, Failed };
    // Called with the records done so far and the whole; returning false cancels.
    using Progress = std::function<bool(int done, int total)>;

    // The save dialog's four filters, in order: Essential XLSX, Essential CSV, Full XLSX,
    // Full CSV; and the same joined by ";;".
    static QStringList filters();
    static QString filterString();
    static bool isCsvFilter(const QString &filter);
    static Content contentOf(const QString &filter);
    // "xlsx" or "csv".
    static QString suffixOf(const QString &filter);
    // The path with the filter's suffix added when it has a different one or none.
    static QString withSuffix(const QString &path, const QString &filter);

    // The first record's name, and "-" with the last one's when there are several.
    static QString suggestedFileName(const QList<CorvidaExperiment *> &records);
    // The last export folder when it is set and still exists, otherwise `defaultFolder`.
    static QString startFolder(const CorvidaSettings *settings, const QString &defaultFolder);
    // The last filter used when it is one of ours, otherwise the first.
    static QString preselectedFilter(const CorvidaSettings *settings);
    // Remembers the folder of the chosen path and the chosen filter.
    static void storeChoice(CorvidaSettings *settings, const QString &path, const QString &filter);

    // The "Summary" sheet: a header row with the list's column titles, then one row per record;
    // after the list's columns SBP, DBP and the heart rate as numbers and the start as a date,
    // and, when any record was found the refined way, the way of each.
    static XLSXTable summaryTable(const QList<CorvidaExperiment *> &records);
    // When the recording started, from the record's name or else its file's header; invalid
    // when neither tells.
    static QDateTime recordStart(const CorvidaExperiment *record);
    // Sheet names in order ("Summary" first when there are several records).
    static QStringList sheetNames(const QList<CorvidaExperiment *> &records);
    // One record's sheet. For full content the samples are read from a separate copy of the
    // record, so the listed record does not keep its whole recording in memory afterwards.
    // With `withMethod` a "Method" row follows the result rows.
    static XLSXTable recordTable(CorvidaExperiment *record, Content content,
                                 bool withMethod = false);
    // Whether any of the records places its markers the refined way.
    static bool anyRefined(const QList<CorvidaExperiment *> &records);

    // Writes the records, in the order given, to `path` in the format and content of `filter`.
    // On failure `error` gets the message to show and no file is left under `path` (an older
    // file there stays as it was); a cancelled export leaves nothing either.
    // `extraSheets` (the sessions of the records, say) come after "Summary", before the records.
    static Result write(const QList<CorvidaExperiment *> &records, const QString &path,
                        const QString &filter, QString *error = nullptr,
                        const Progress &progress = {}, const QList<XLSXSheet> &extraSheets = {});
    static QString errorText(const QString &path);

    // What the "ExportBehavior" setting asks for after a successful export.
    static AfterExport afterExport(int exportBehavior);
    static AfterExport afterExport(const CorvidaSettings *settings);
};
